#include "rehearsal/users.h"

#include <utility>

namespace rehearsal {

void ViewedUser::box(const platform::BoxView& view) {
    boxes.push_back(view);
    view_.box(view);
}

bool ScriptUser::act() {
    if (left_)
        return false;
    if (next_ == actions_.size())
        return leave("leaves");
    const Action& action = actions_[next_++];
    view_.action(action.shown);
    const std::string reason = perform(action);
    if (reason.empty())
        return true;
    problem = "line " + std::to_string(action.line) + ": " + action.shown + ": " + reason;
    return leave("can't do that, as " + reason + ", and leaves");
}

bool ScriptUser::leave(const std::string& shown) {
    left_ = true;
    view_.action(shown);
    return false;
}

bool Person::act() {
    if (!std::exchange(asked_, true))
        out_ << "\n" << action_help << "; quit leaves\n";
    for (;;) {
        out_ << "\n> " << std::flush;
        std::string line;
        if (!std::getline(in_, line) || line == "quit")
            return false;
        try {
            Action action;
            if (!parse_action(line, action))
                continue;
            const std::string reason = perform(action);
            if (reason.empty())
                return true;
            out_ << "  " << reason << "\n";
        } catch (const ScriptError& error) {
            out_ << "  " << error.what() << "\n";
        }
    }
}

} // namespace rehearsal
