#include "rehearsal/users.h"

namespace rehearsal {

void ViewedUser::box(const platform::BoxView& view) {
    boxes.push_back(view);
    view_.box(view);
}

bool ScriptUser::act() {
    if (next_ == actions_.size() || !problem.empty())
        return false;
    const Action& action = actions_[next_++];
    view_.action(action.shown);
    const std::string reason = perform(action);
    if (!reason.empty())
        problem = "line " + std::to_string(action.line) + ": " + action.shown + ": " + reason;
    return reason.empty();
}

bool Person::act() {
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
