#include "rehearsal/users.h"

#include "calls/run/session.h"
#include "calls/windows/user_input.h"
#include "machine/text.h"
#include "rehearsal/shown_text.h"

#include <algorithm>
#include <sstream>
#include <utility>

namespace rehearsal {
namespace {

std::vector<std::string> queue_names(const platform::Machine& machine) {
    std::vector<std::string> names;
    for (const platform::PrintQueue& queue : machine.spooler.queues)
        names.push_back(platform::to_utf8(queue.name));
    return names;
}

std::string do_or_check(const Action& action, const std::vector<platform::BoxView>& boxes) {
    if (!action.expects())
        return perform(action);
    return check_expectation(action, {platform::dialogs(), boxes, queue_names(platform::session().machine)});
}

// The whole text of the page's agreement, which a drawn dialog shortens.
void print_long_texts(std::ostream& out) {
    for (const platform::DialogView& dialog : platform::dialogs())
        for (const platform::ControlView& control : dialog.controls) {
            if (!dialog.visible || !control.visible || (control.kind != "edit" && control.kind != "static"))
                continue;
            std::istringstream lines(control.text);
            for (std::string line; std::getline(lines, line);) {
                if (!line.empty() && line.back() == '\r')
                    line.pop_back();
                out << "  " << shown_text(line) << "\n";
            }
        }
}

} // namespace

void ViewedUser::box(const platform::BoxView& view) {
    boxes.push_back(view);
    view_.box(view);
}

bool ScriptUser::act() {
    while (!left_ && !only_expectations_left()) {
        const Action& action = actions_[next_++];
        view_.action(action.shown);
        const std::string reason = do_or_check(action, boxes);
        if (!reason.empty()) {
            problem = place_of(action) + action.shown + ": " + reason;
            return leave("can't do that, as " + reason + ", and leaves");
        }
        if (!action.expects())
            return true;
    }
    return left_ ? false : leave("leaves");
}

void ScriptUser::finish(const Outcome& outcome) {
    if (!problem.empty() || !outcome.refusal.empty())
        return;
    if (!only_expectations_left()) {
        problem =
            place_of(actions_[next_]) + actions_[next_].shown + ": the run was over before it came to this";
        return;
    }
    for (; next_ < actions_.size() && problem.empty(); ++next_) {
        const Action& action = actions_[next_];
        const std::string reason =
            check_expectation(action, {outcome.dialogs, boxes, queue_names(outcome.after)});
        view_.action(action.shown);
        if (!reason.empty())
            problem = place_of(action) + action.shown + ": " + reason;
    }
}

bool ScriptUser::leave(const std::string& shown) {
    left_ = true;
    view_.action(shown);
    return false;
}

bool ScriptUser::only_expectations_left() const {
    return std::all_of(actions_.begin() + static_cast<std::ptrdiff_t>(next_), actions_.end(),
                       [](const Action& action) { return action.expects(); });
}

std::string ScriptUser::place_of(const Action& action) const {
    return file_ + ":" + std::to_string(action.line) + ":" + std::to_string(action.column) + ": ";
}

bool Person::act() {
    if (left_)
        return false;
    if (!std::exchange(asked_, true))
        out_ << "\n" << action_help << ";\n  help, more (the whole texts), quit\n";
    for (;;) {
        out_ << "\n> " << std::flush;
        std::string line;
        if (!std::getline(in_, line) || line == "quit") {
            left_ = true;
            return false;
        }
        if (line == "help")
            out_ << action_help << ";\n  help, more (the whole texts), quit\n";
        else if (line == "more")
            print_long_texts(out_);
        else if (try_line(line))
            return true;
    }
}

bool Person::try_line(const std::string& line) {
    try {
        Action action;
        if (!parse_action(line, action))
            return false;
        const std::string reason = do_or_check(action, boxes);
        if (reason.empty())
            done.push_back(action.shown);
        else
            out_ << "  " << shown_text(reason) << "\n";
        return reason.empty() && !action.expects();
    } catch (const ScriptError& error) {
        out_ << "  " << shown_text(error.what()) << "\n";
        return false;
    }
}

} // namespace rehearsal
