#include "acceptance/pilot/scene.h"

#include "acceptance/pilot/window_text.h"

#include <algorithm>
#include <optional>
#include <string_view>

namespace pilot {
namespace {

// A message box keeps its text in a control of this id and its icon, if it has one, in the other.
constexpr int box_text_id = 0xFFFF;
constexpr int box_icon_id = 1088;

struct Search {
    const std::vector<DWORD>* processes;
    std::vector<HWND> found;
};

BOOL CALLBACK on_window(HWND window, LPARAM parameter) {
    Search& search = *reinterpret_cast<Search*>(parameter);
    DWORD process = 0;
    GetWindowThreadProcessId(window, &process);
    const std::vector<DWORD>& wanted = *search.processes;
    if (std::find(wanted.begin(), wanted.end(), process) != wanted.end() && class_of(window) == L"#32770")
        search.found.push_back(window);
    return TRUE;
}

BOOL CALLBACK on_child(HWND window, LPARAM parameter) {
    reinterpret_cast<std::vector<HWND>*>(parameter)->push_back(window);
    return TRUE;
}

// The oldest first: a new window comes in front of the others.
std::vector<HWND> find_dialogs(const std::vector<DWORD>& processes) {
    Search search = {&processes, {}};
    EnumWindows(on_window, reinterpret_cast<LPARAM>(&search));
    std::reverse(search.found.begin(), search.found.end());
    return search.found;
}

std::vector<HWND> children(HWND window) {
    std::vector<HWND> found;
    EnumChildWindows(window, on_child, reinterpret_cast<LPARAM>(&found));
    return found;
}

LONG style_of(HWND window) {
    return GetWindowLongW(window, GWL_STYLE);
}

std::string button_kind(HWND window) {
    switch (style_of(window) & BS_TYPEMASK) {
    case BS_AUTOCHECKBOX:
        return "check box";
    case BS_DEFPUSHBUTTON:
        return "default button";
    default:
        return "button";
    }
}

std::string kind_of(HWND window) {
    const std::wstring name = class_of(window);
    const auto is = [&name](const wchar_t* wanted) { return lstrcmpiW(name.c_str(), wanted) == 0; };
    if (is(L"Button"))
        return button_kind(window);
    if (is(L"Edit"))
        return "edit";
    if (is(L"ListBox"))
        return "list";
    return (style_of(window) & SS_TYPEMASK) == SS_BITMAP ? "picture" : "static";
}

bool read_list(Control& control) {
    const std::optional<LRESULT> count = ask(control.window, LB_GETCOUNT);
    const std::optional<LRESULT> selected = ask(control.window, LB_GETCURSEL);
    if (!count || !selected)
        return false;
    control.selected = static_cast<int>(*selected);
    for (int row = 0; row < *count; ++row) {
        std::optional<std::string> text = row_of(control.window, row);
        if (!text)
            return false;
        control.rows.push_back(std::move(*text));
    }
    return true;
}

bool read_control(HWND window, Control& control) {
    control.window = window;
    control.id = GetDlgCtrlID(window) & 0xFFFF;
    control.kind = kind_of(window);
    control.visible = (style_of(window) & WS_VISIBLE) != 0;
    control.enabled = (style_of(window) & WS_DISABLED) == 0;
    if (control.kind == "list")
        return read_list(control);
    const std::optional<std::string> text = text_of(window);
    if (!text)
        return false;
    control.text = *text;
    if (control.kind == "check box") {
        const std::optional<LRESULT> checked = ask(window, BM_GETCHECK);
        control.checked = checked == BST_CHECKED;
        return checked.has_value();
    }
    return true;
}

bool read_dialog(HWND window, Dialog& dialog) {
    const std::optional<std::string> caption = text_of(window);
    if (!caption)
        return false;
    dialog.window = window;
    dialog.caption = *caption;
    dialog.visible = (style_of(window) & WS_VISIBLE) != 0;
    dialog.enabled = (style_of(window) & WS_DISABLED) == 0;
    for (const HWND child : children(window)) {
        Control control;
        if (!read_control(child, control))
            return false;
        dialog.controls.push_back(std::move(control));
    }
    return true;
}

const Control* find_control(const Dialog& dialog, int id) {
    const auto found = std::find_if(dialog.controls.begin(), dialog.controls.end(),
                                    [id](const Control& control) { return control.id == id; });
    return found == dialog.controls.end() ? nullptr : &*found;
}

Box box_of(const Dialog& dialog) {
    Box box = {dialog.window, find_control(dialog, box_text_id)->text, dialog.caption, false};
    const Control* const icon = find_control(dialog, box_icon_id);
    box.icon = icon != nullptr && ask(icon->window, STM_GETICON).value_or(0) != 0;
    return box;
}

template<class Record>
Record* find_window(std::vector<Record>& records, HWND window) {
    const auto found = std::find_if(records.begin(), records.end(),
                                    [window](const Record& record) { return record.window == window; });
    return found == records.end() ? nullptr : &*found;
}

} // namespace

bool Scene::look(const std::vector<DWORD>& processes) {
    for (const HWND window : find_dialogs(processes)) {
        Dialog dialog;
        if (!read_dialog(window, dialog))
            return false;
        if (find_control(dialog, box_text_id) != nullptr) {
            if (dialog.visible && find_window(boxes_, window) == nullptr)
                boxes_.push_back(box_of(dialog));
        } else if (Dialog* const known = find_window(dialogs_, window); known != nullptr) {
            *known = std::move(dialog);
        } else {
            dialogs_.push_back(std::move(dialog));
        }
    }
    return true;
}

const Box* Scene::open_box() const {
    const bool waits = !boxes_.empty() && IsWindow(boxes_.back().window);
    return waits ? &boxes_.back() : nullptr;
}

const Dialog* Scene::topmost() const {
    const auto found = std::find_if(dialogs_.rbegin(), dialogs_.rend(),
                                    [](const Dialog& dialog) { return dialog.visible && dialog.enabled; });
    return found == dialogs_.rend() ? nullptr : &*found;
}

bool Scene::at_work() const {
    const Dialog* const dialog = topmost();
    if (dialog == nullptr)
        return true;
    const Control* const cancel = find_control(*dialog, IDCANCEL);
    return cancel != nullptr && !cancel->enabled;
}

} // namespace pilot
