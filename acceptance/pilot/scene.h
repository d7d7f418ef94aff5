// What there is to see of the program: its dialogs with their controls, and the message boxes that come up.
#pragma once

#include <windows.h>

#include <string>
#include <vector>

namespace pilot {

struct Control {
    HWND window = nullptr;
    int id = 0;
    std::string kind; // as in the rehearsal's report
    std::string text;
    bool visible = false; // by its own style, whether the dialog is shown or not
    bool enabled = false;
    bool checked = false;
    std::vector<std::string> rows;
    int selected = -1;
    bool operator==(const Control&) const = default;
};

struct Dialog {
    HWND window = nullptr;
    std::string caption;
    bool visible = false;
    bool enabled = false;
    std::vector<Control> controls;
    bool operator==(const Dialog&) const = default;
};

struct Box {
    HWND window = nullptr;
    std::string text;
    std::string caption;
    bool icon = false;
};

class Scene {
public:
    // Looks at all windows of the processes. False when one of them can't answer now: its thread is at work,
    // and what was seen last of it stays.
    bool look(const std::vector<DWORD>& processes);

    // The box that waits for an answer, or null.
    const Box* open_box() const;

    // The shown and enabled dialog that was created last, or null.
    const Dialog* topmost() const;

    // The program works without taking input: the dialog that one would answer can't even be cancelled.
    bool at_work() const;

    const std::vector<Dialog>& dialogs() const { return dialogs_; } // in the order of their creation
    const std::vector<Box>& boxes() const { return boxes_; }

private:
    std::vector<Dialog> dialogs_;
    std::vector<Box> boxes_;
};

} // namespace pilot
