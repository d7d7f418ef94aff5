#include "calls/windows/user_input.h"

#include "calls/run/session.h"
#include "calls/windows/messages.h"
#include "calls/windows/resources.h"
#include "machine/text.h"

namespace platform {
namespace {

DWORD button_type(const Window& window) {
    return window.style & button_type_bits;
}

// What an action goes to, copied under the lock, or why it can't.
struct Target {
    Window window;
    std::string problem;
};

const Window* topmost_dialog() {
    WindowModel& model = window_model();
    for (auto dialog = model.dialogs.rbegin(); dialog != model.dialogs.rend(); ++dialog)
        if (const Window* window = model.find(*dialog); model.usable(*window))
            return window;
    return nullptr;
}

std::string problem_with(const Window& window, const std::string& name) {
    const Window& dialog = *window_model().find(window.parent);
    if (dialog.disabled())
        return "dialog " + std::to_string(dialog.id) + " is disabled";
    if (!window.shown())
        return name + " is hidden";
    return window.disabled() ? name + " is greyed" : "";
}

// The control in the topmost visible dialog that has one which fits.
template<class Fits>
Target find_target(const std::string& name, Fits fits) {
    const RunLock lock = run_threads().lock();
    WindowModel& model = window_model();
    for (auto dialog = model.dialogs.rbegin(); dialog != model.dialogs.rend(); ++dialog) {
        const Window& window = *model.find(*dialog);
        if (!model.visible(window))
            continue;
        for (const HWND handle : window.controls)
            if (const Window& control = *model.find(handle); fits(control))
                return {control, problem_with(control, name)};
    }
    return {{}, "no dialog shows " + name};
}

Target find_target(int id, WindowKind kind, const char* kind_name) {
    const std::string name = "control " + std::to_string(id);
    Target target = find_target(name, [id](const Window& window) { return window.id == id; });
    if (target.problem.empty() && target.window.kind != kind)
        target.problem = name + " is no " + kind_name;
    return target;
}

void post_click(HWND window, LPARAM place) {
    constexpr WPARAM left_button_down = 1;
    post_message(window, WM_LBUTTONDOWN, left_button_down, place, true);
    post_message(window, WM_LBUTTONUP, 0, place, true);
}

LPARAM middle_of(const Window& window) {
    return MAKELPARAM(window.width / 2, window.height / 2);
}

std::string set_tick(int id, bool ticked) {
    Target target = find_target(id, WindowKind::button, "check box");
    if (target.problem.empty() && button_type(target.window) != BS_AUTOCHECKBOX)
        target.problem = "control " + std::to_string(id) + " is no check box";
    if (target.problem.empty() && target.window.checked != ticked)
        post_click(target.window.handle, middle_of(target.window));
    return target.problem;
}

std::string kind_name(const Window& window) {
    switch (window.kind) {
    case WindowKind::button:
        if (button_type(window) == BS_AUTOCHECKBOX)
            return "check box";
        return button_type(window) == BS_DEFPUSHBUTTON ? "default button" : "button";
    case WindowKind::edit:
        return "edit";
    case WindowKind::list:
        return "list";
    case WindowKind::picture:
        return "picture";
    default:
        return "static";
    }
}

ControlView view_of(const Window& window) {
    ControlView view;
    view.id = window.id;
    view.kind = kind_name(window);
    view.text = to_utf8(window.text);
    view.visible = window.shown();
    view.enabled = !window.disabled();
    view.checked = window.checked;
    view.left = window.units.left;
    view.top = window.units.top;
    view.width = window.units.width;
    view.height = window.units.height;
    for (const std::u16string& row : window.rows)
        view.rows.push_back(to_utf8(row));
    view.selected = window.selected;
    return view;
}

} // namespace

std::string press(int id) {
    const Target target = find_target(id, WindowKind::button, "button");
    if (target.problem.empty())
        post_click(target.window.handle, middle_of(target.window));
    return target.problem;
}

std::string tick(int id) {
    return set_tick(id, true);
}

std::string untick(int id) {
    return set_tick(id, false);
}

std::string select_row(int row) {
    Target target =
        find_target("a list", [](const Window& window) { return window.kind == WindowKind::list; });
    const std::size_t rows = target.window.rows.size();
    if (target.problem.empty() && (row < 0 || static_cast<std::size_t>(row) >= rows))
        target.problem = "the list has " + std::to_string(rows) + " rows, and no row " + std::to_string(row);
    if (!target.problem.empty())
        return target.problem;
    const int column = column_showing(target.window, row);
    if (column != target.window.left_column) {
        if ((target.window.style & WS_HSCROLL) == 0)
            return "row " + std::to_string(row) + " is out of sight, and the list has no scroll bar";
        post_message(target.window.handle, WM_HSCROLL, MAKEWPARAM(SB_THUMBPOSITION, column), 0, true);
    }
    const POINT place = row_place(target.window, row, column);
    post_click(target.window.handle, MAKELPARAM(place.x, place.y));
    return {};
}

std::string type_text(int id, const std::string& utf8) {
    Target target = find_target(id, WindowKind::edit, "edit control");
    if (target.problem.empty() && (target.window.style & ES_READONLY) != 0)
        target.problem = "control " + std::to_string(id) + " can only be read";
    if (!target.problem.empty())
        return target.problem;
    const HWND edit = target.window.handle;
    post_click(edit, middle_of(target.window));
    post_message(edit, EM_SETSEL, 0, -1, true);
    post_message(edit, WM_CHAR, VK_BACK, 0, true);
    for (const char16_t unit : to_utf16(utf8))
        post_message(edit, WM_CHAR, unit, 0, true);
    return {};
}

std::string close_dialog() {
    HWND handle = nullptr;
    {
        const RunLock lock = run_threads().lock();
        const Window* dialog = topmost_dialog();
        if (dialog == nullptr)
            return "no dialog is open";
        handle = dialog->handle;
    }
    post_message(handle, WM_SYSCOMMAND, SC_CLOSE, 0, true);
    return {};
}

std::string press_key(unsigned virtual_key) {
    HWND handle = nullptr;
    {
        const RunLock lock = run_threads().lock();
        const Window* dialog = topmost_dialog();
        if (dialog == nullptr)
            return "no dialog is open";
        const Window* focus = window_model().find(dialog->focus);
        handle = focus != nullptr && window_model().usable(*focus) ? focus->handle : dialog->handle;
    }
    post_message(handle, WM_KEYDOWN, virtual_key, 0, true);
    post_message(handle, WM_KEYUP, virtual_key, 0, true);
    return {};
}

std::vector<DialogView> dialogs() {
    const RunLock lock = run_threads().lock();
    std::vector<DialogView> views;
    for (const HWND handle : window_model().dialogs) {
        const Window& dialog = *window_model().find(handle);
        DialogView view{dialog.id, to_utf8(dialog.text), dialog.shown(), !dialog.disabled(), {}};
        for (const HWND control : dialog.controls)
            view.controls.push_back(view_of(*window_model().find(control)));
        views.push_back(std::move(view));
    }
    return views;
}

} // namespace platform
