#include "acceptance/pilot/hand.h"

#include "acceptance/pilot/window_text.h"

namespace pilot {
namespace {

using rehearsal::Action;
using rehearsal::Verb;

struct Target {
    const Dialog* dialog = nullptr;
    const Control* control = nullptr;
    std::string problem;
};

std::string problem_with(const Dialog& dialog, const Control& control, const std::string& name) {
    if (!dialog.enabled)
        return "the dialog \"" + dialog.caption + "\" is disabled";
    if (!control.visible)
        return name + " is hidden";
    return control.enabled ? "" : name + " is greyed";
}

template<class Fits>
Target find_target(const Scene& scene, const std::string& name, Fits fits) {
    for (auto dialog = scene.dialogs().rbegin(); dialog != scene.dialogs().rend(); ++dialog) {
        if (!dialog->visible)
            continue;
        for (const Control& control : dialog->controls)
            if (fits(control))
                return {&*dialog, &control, problem_with(*dialog, control, name)};
    }
    return {nullptr, nullptr, "no dialog shows " + name};
}

Target find_control(const Scene& scene, int id) {
    return find_target(scene, "control " + std::to_string(id),
                       [id](const Control& control) { return control.id == id; });
}

std::string click(const Target& target, const char* kind) {
    if (!target.problem.empty())
        return target.problem;
    if (target.control->kind.find(kind) == std::string::npos)
        return "control " + std::to_string(target.control->id) + " is no " + kind;
    PostMessageW(target.control->window, BM_CLICK, 0, 0);
    return {};
}

std::string set_tick(const Target& target, bool ticked) {
    if (target.problem.empty() && target.control->checked == ticked)
        return {};
    return click(target, "check box");
}

// Brings the row into sight by the list's scroll bar, if it has one and needs to, and clicks it.
std::string click_row(HWND list, int row) {
    RECT inside = {};
    GetClientRect(list, &inside);
    RECT place = {};
    const auto look = [&] {
        return ask(list, LB_GETITEMRECT, static_cast<WPARAM>(row), reinterpret_cast<LPARAM>(&place))
            .has_value();
    };
    if (!look())
        return "the list doesn't answer";
    const bool scrolls = (GetWindowLongPtrW(list, GWL_STYLE) & WS_HSCROLL) != 0;
    const auto hidden = [&] { return place.left < 0 || place.right > inside.right; };
    for (LONG before = place.left + 1; scrolls && hidden() && place.left != before; look()) {
        before = place.left;
        ask(list, WM_HSCROLL, place.left < 0 ? SB_LINELEFT : SB_LINERIGHT);
    }
    if (place.left < 0 || place.left >= inside.right || place.bottom > inside.bottom)
        return "row " + std::to_string(row) + " is out of sight";
    const LPARAM point = MAKELPARAM(place.left + 2, (place.top + place.bottom) / 2);
    PostMessageW(list, WM_LBUTTONDOWN, MK_LBUTTON, point);
    PostMessageW(list, WM_LBUTTONUP, 0, point);
    return {};
}

std::string select_row(const Scene& scene, int row) {
    const Target target = find_target(scene, "a list", [](const Control& c) { return c.kind == "list"; });
    if (!target.problem.empty())
        return target.problem;
    const Control& list = *target.control;
    if (static_cast<std::size_t>(row) >= list.rows.size())
        return "the list has " + std::to_string(list.rows.size()) + " rows, and no row " +
               std::to_string(row);
    return click_row(list.window, row);
}

std::string type_text(const Target& target, const std::string& text) {
    if (!target.problem.empty())
        return target.problem;
    const HWND edit = target.control->window;
    if (target.control->kind != "edit")
        return "control " + std::to_string(target.control->id) + " is no edit control";
    PostMessageW(edit, EM_SETSEL, 0, -1);
    PostMessageW(edit, WM_CHAR, VK_BACK, 0);
    for (const wchar_t unit : to_wide(text))
        PostMessageW(edit, WM_CHAR, unit, 0);
    return {};
}

std::string press_key(const Scene& scene, int key) {
    const Dialog* const dialog = scene.topmost();
    if (dialog == nullptr)
        return "no dialog is open";
    GUITHREADINFO information = {};
    information.cbSize = sizeof information;
    HWND target = dialog->window;
    if (GetGUIThreadInfo(GetWindowThreadProcessId(target, nullptr), &information) &&
        IsChild(target, information.hwndFocus))
        target = information.hwndFocus;
    PostMessageW(target, WM_KEYDOWN, static_cast<WPARAM>(key), 0);
    PostMessageW(target, WM_KEYUP, static_cast<WPARAM>(key), 0);
    return {};
}

std::string close_topmost(const Scene& scene) {
    const Dialog* const dialog = scene.topmost();
    if (dialog == nullptr)
        return "no dialog is open";
    PostMessageW(dialog->window, WM_SYSCOMMAND, SC_CLOSE, 0);
    return {};
}

} // namespace

std::string perform(const Action& action, const Scene& scene) {
    if (!action.name.empty())
        return "a control is known by its id alone here";
    switch (action.verb) {
    case Verb::press:
        return click(find_control(scene, action.number), "button");
    case Verb::select:
        return select_row(scene, action.number);
    case Verb::tick:
        return set_tick(find_control(scene, action.number), true);
    case Verb::untick:
        return set_tick(find_control(scene, action.number), false);
    case Verb::type:
        return type_text(find_control(scene, action.number), action.text);
    case Verb::key:
        return press_key(scene, action.number);
    case Verb::close:
        return close_topmost(scene);
    default: // an expectation is a rehearsal's
        return "unknown action";
    }
}

void answer(const Box& box) {
    PostMessageW(box.window, WM_COMMAND, IDOK, 0);
}

} // namespace pilot
