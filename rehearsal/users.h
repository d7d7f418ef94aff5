// Who answers in a rehearsal: a script, or a person who types the same actions. Both tell the view what they
// do.
#pragma once

#include "rehearsal/action_script.h"
#include "rehearsal/outcome.h"
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
    // The run is over: what of the user's wishes it left open becomes the problem.
    virtual void finish(const Outcome&) {}

    std::vector<platform::BoxView> boxes;
    std::vector<std::string> done; // by a person, as a script's lines
    std::string problem;           // the action that couldn't be done, with its place

protected:
    TerminalView& view_;
};

// Follows the script, stops at an action that can't be done, and leaves at its end. The expectations that
// close it are looked at when the run is over.
class ScriptUser : public ViewedUser {
public:
    ScriptUser(TerminalView& view, std::vector<Action> actions, std::string file = {})
        : ViewedUser(view), actions_(std::move(actions)), file_(std::move(file)) {}
    bool act() override;
    void finish(const Outcome& outcome) override;

private:
    bool leave(const std::string& shown);
    bool only_expectations_left() const;
    std::string place_of(const Action& action) const;

    std::vector<Action> actions_;
    std::string file_;
    std::size_t next_ = 0;
    bool left_ = false;
};

// Asks for one action after the other; a mistake is told and asked again. Leaves at the end of the input.
// What was done is kept in `done`, in a script's form.
class Person : public ViewedUser {
public:
    Person(TerminalView& view, std::istream& in, std::ostream& out) : ViewedUser(view), in_(in), out_(out) {}
    bool act() override;

private:
    bool try_line(const std::string& line);

    std::istream& in_;
    std::ostream& out_;
    bool asked_ = false;
    bool left_ = false; // asked no more, though each dialog that is still open asks
};

} // namespace rehearsal
