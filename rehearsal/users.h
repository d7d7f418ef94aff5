// Who answers in a rehearsal: a script, or a person who types the same actions. Both tell the view what they
// do.
#pragma once

#include "rehearsal/action_script.h"
#include "rehearsal/terminal_view.h"

#include <istream>
#include <optional>
#include <string>
#include <vector>

namespace rehearsal {

class ViewedUser : public platform::User {
public:
    explicit ViewedUser(TerminalView& view) : view_(view) {}
    void box(const platform::BoxView& view) override;
    void changed() override { view_.look(); }
    void file_flushed() override { view_.look_at_log(); }

    std::vector<platform::BoxView> boxes;
    std::string problem; // the action that couldn't be done, with its line

protected:
    TerminalView& view_;
};

// Follows the script, stops at an action that can't be done, and leaves at its end.
class ScriptUser : public ViewedUser {
public:
    ScriptUser(TerminalView& view, std::vector<Action> actions)
        : ViewedUser(view), actions_(std::move(actions)) {}
    bool act() override;

private:
    bool leave(const std::string& shown);

    std::vector<Action> actions_;
    std::size_t next_ = 0;
    bool left_ = false;
};

// Asks for one action after the other; a mistake is told and asked again. Leaves at the end of the input.
class Person : public ViewedUser {
public:
    Person(TerminalView& view, std::istream& in, std::ostream& out) : ViewedUser(view), in_(in), out_(out) {}
    bool act() override;

private:
    std::istream& in_;
    std::ostream& out_;
    bool asked_ = false;
};

} // namespace rehearsal
