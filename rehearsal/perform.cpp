#include "rehearsal/action_script.h"
#include "rehearsal/shown_text.h"

#include "calls/windows/user_input.h"

#include <algorithm>

namespace rehearsal {
namespace {

// What stands on the control, without the mark of its key and in small letters.
std::string label_of(const std::string& text) {
    std::string label = folded(text);
    std::erase(label, '&');
    return label;
}

bool fits_verb(const platform::ControlView& control, Verb verb) {
    switch (verb) {
    case Verb::press:
        return control.kind == "button" || control.kind == "default button";
    case Verb::tick:
    case Verb::untick:
        return control.kind == "check box";
    default:
        return control.kind == "edit";
    }
}

// The id of the control of that name in the topmost dialog that shows one.
std::string find_control(const Action& action, int& id) {
    const std::vector<platform::DialogView> dialogs = platform::dialogs();
    std::string others;
    for (auto dialog = dialogs.rbegin(); dialog != dialogs.rend(); ++dialog) {
        for (const platform::ControlView& control : dialog->controls) {
            if (!dialog->visible || !control.visible || !fits_verb(control, action.verb) ||
                control.text.empty())
                continue;
            id = control.id;
            if (label_of(control.text) == label_of(action.name))
                return {};
            others += (others.empty() ? "" : ", ") + ("\"" + control.text + "\"");
        }
    }
    return "nothing that is shown is called \"" + action.name + "\"" +
           (others.empty() ? "" : "; there is " + others);
}

// The row with the text in it, if it is the only one.
std::string find_row(const std::string& part, int& row) {
    int found = 0;
    for (const platform::DialogView& dialog : platform::dialogs())
        for (const platform::ControlView& control : dialog.controls)
            for (std::size_t index = 0; dialog.visible && control.visible && index < control.rows.size();
                 ++index)
                if (folded(control.rows[index]).find(folded(part)) != std::string::npos && ++found == 1)
                    row = static_cast<int>(index);
    if (found == 1)
        return {};
    return (found == 0 ? "no row has \"" : std::to_string(found) + " rows have \"") + part + "\" in it";
}

std::string perform_by_number(const Action& action) {
    switch (action.verb) {
    case Verb::press:
        return platform::press(action.number);
    case Verb::select:
        return platform::select_row(action.number);
    case Verb::tick:
        return platform::tick(action.number);
    case Verb::untick:
        return platform::untick(action.number);
    case Verb::type:
        return platform::type_text(action.number, action.text);
    case Verb::key:
        return platform::press_key(static_cast<unsigned>(action.number));
    case Verb::close:
        return platform::close_dialog();
    default:
        return "nothing to do";
    }
}

std::string listed(const std::vector<std::string>& texts) {
    std::string list;
    for (const std::string& text : texts)
        list += (list.empty() ? "" : ", ") + ("\"" + text + "\"");
    return list.empty() ? "none" : list;
}

bool is_control(const platform::ControlView& control, const Action& action) {
    return action.name.empty() ? control.id == action.number
                               : label_of(control.text) == label_of(action.name);
}

} // namespace

std::string perform(const Action& action) {
    Action known = action;
    const std::string reason = action.name.empty()           ? ""
                               : action.verb == Verb::select ? find_row(action.name, known.number)
                                                             : find_control(action, known.number);
    return reason.empty() ? perform_by_number(known) : reason;
}

std::string check_expectation(const Action& action, const Sight& sight) {
    std::vector<std::string> there;
    if (action.verb == Verb::expect_box)
        for (const platform::BoxView& box : sight.boxes)
            there.push_back(box.text);
    else if (action.verb == Verb::expect_queue)
        there = sight.queues;
    else
        for (const platform::DialogView& dialog : sight.dialogs)
            for (const platform::ControlView& control : dialog.controls)
                if (is_control(control, action))
                    there.push_back(control.text);
    const bool met = std::any_of(there.begin(), there.end(), [&](const std::string& text) {
        return action.verb == Verb::expect_queue ? text == action.text : text.find(action.text) != text.npos;
    });
    return met ? "" : "there is " + listed(there);
}

} // namespace rehearsal
