// The user of a run: who answers when the program waits for input. A script, a person or a test derives from
// it.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace platform {

struct ControlView {
    int id = 0;
    std::string kind; // "button", "default button", "check box", "edit", "static", "list", "picture"
    std::string text; // UTF-8
    bool visible = false;
    bool enabled = false;
    bool checked = false;
    int left = 0, top = 0, width = 0, height = 0; // dialog units, as in the template
    std::vector<std::string> rows;                // list rows
    int selected = -1;
};

struct DialogView {
    int id = 0; // the template's id: 101, 104, 105
    std::string caption;
    bool visible = false;
    bool enabled = false;
    std::vector<ControlView> controls; // in the template's order
};

struct BoxView {
    std::string text;
    std::string caption;
    std::uint32_t flags = 0;
};

class User {
public:
    virtual ~User() = default;
    // The program waits for input and nothing else goes on. Act through user_input.h and return true, or
    // return false to leave: the layer then closes what is open.
    virtual bool act() = 0;
    virtual void box(const BoxView&) {} // a message box was shown and answered by OK
    virtual void changed() {} // the program comes to rest: dialogs may have changed; from its main thread
    virtual void file_flushed() {} // a file, the log perhaps, has grown; from any thread
};

} // namespace platform
