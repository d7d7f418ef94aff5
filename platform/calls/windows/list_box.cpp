// The window procedure of list boxes: unsorted, one selection at most.
#include "calls/run/session.h"
#include "calls/windows/messages.h"

#include <algorithm>

namespace platform {
namespace {

constexpr int row_height = 13;
constexpr int usual_column_width = 100; // pixels; only clicks go by it

int row_count(const Window& list) {
    return static_cast<int>(list.rows.size());
}

bool has_row(const Window& list, WPARAM row) {
    return row < list.rows.size();
}

int column_rows(const Window& list) {
    if ((list.style & LBS_MULTICOLUMN) == 0)
        return std::max(1, row_count(list));
    return std::max(1, (list.height - 2) / row_height);
}

int column_width(const Window& list) {
    return list.column_width > 0 ? list.column_width : usual_column_width;
}

LRESULT add_row(Window& list, LPARAM lparam) {
    const auto* text = reinterpret_cast<const WCHAR*>(lparam);
    list.rows.push_back(text == nullptr ? u"" : text);
    return static_cast<LRESULT>(list.rows.size()) - 1;
}

// The number of rows left. Rows behind the deleted one move up, and the selection with them.
LRESULT delete_row(Window& list, WPARAM row) {
    if (!has_row(list, row))
        return LB_ERR;
    list.rows.erase(list.rows.begin() + static_cast<std::ptrdiff_t>(row));
    const int deleted = static_cast<int>(row);
    if (list.selected == deleted)
        list.selected = LB_ERR;
    else if (list.selected > deleted)
        --list.selected;
    return row_count(list);
}

LRESULT select_row_of(Window& list, WPARAM row) {
    list.selected = has_row(list, row) ? static_cast<int>(row) : LB_ERR;
    return list.selected;
}

// The buffer has to have room for the text and its terminator; the message knows no capacity.
LRESULT copy_row(const Window& list, WPARAM row, LPARAM buffer) {
    if (!has_row(list, row))
        return LB_ERR;
    const std::u16string& text = list.rows[row];
    auto* out = reinterpret_cast<WCHAR*>(buffer);
    text.copy(out, text.size());
    out[text.size()] = 0;
    return static_cast<LRESULT>(text.size());
}

int row_at(const Window& list, LPARAM lparam) {
    const auto place = static_cast<DWORD_PTR>(lparam);
    const int row = LOWORD(place) / column_width(list) * column_rows(list) + HIWORD(place) / row_height;
    return row < row_count(list) ? row : LB_ERR;
}

// A press selects the row; the notification comes when the button goes up.
void on_press(HWND handle, LPARAM lparam) {
    const RunLock lock = run_threads().lock();
    Window& list = *window_model().find(handle);
    if (Window* dialog = window_model().find(list.parent))
        dialog->focus = handle;
    const int row = row_at(list, lparam);
    list.pressed = row != LB_ERR;
    if (list.pressed)
        list.selected = row;
}

void on_release(HWND handle) {
    bool notify = false;
    {
        const RunLock lock = run_threads().lock();
        Window& list = *window_model().find(handle);
        notify = list.pressed && (list.style & LBS_NOTIFY) != 0;
        list.pressed = false;
    }
    if (notify)
        notify_dialog(handle, LBN_SELCHANGE);
}

LRESULT on_list_message(Window& list, UINT message, WPARAM wparam, LPARAM lparam) {
    switch (message) {
    case LB_ADDSTRING:
        return add_row(list, lparam);
    case LB_DELETESTRING:
        return delete_row(list, wparam);
    case LB_RESETCONTENT:
        list.rows.clear();
        list.selected = LB_ERR;
        return 0;
    case LB_SETCURSEL:
        return select_row_of(list, wparam);
    case LB_GETCURSEL:
        return list.selected;
    case LB_GETTEXT:
        return copy_row(list, wparam, lparam);
    case LB_GETTEXTLEN:
        return has_row(list, wparam) ? static_cast<LRESULT>(list.rows[wparam].size()) : LB_ERR;
    case LB_GETCOUNT:
        return row_count(list);
    case LB_SETTABSTOPS:
        // Where the text stands after a tab is nothing that a program can ask.
        return (list.style & LBS_USETABSTOPS) != 0 ? TRUE : FALSE;
    case LB_SETCOLUMNWIDTH:
        list.column_width = static_cast<int>(wparam);
        return 0;
    default:
        session().gate.refuse("message " + std::to_string(message) + " to a list box isn't modelled");
    }
}

} // namespace

POINT row_place(const Window& list, int row) {
    const int rows = column_rows(list);
    return {row / rows * column_width(list) + 2, row % rows * row_height + row_height / 2};
}

LRESULT list_procedure(HWND handle, UINT message, WPARAM wparam, LPARAM lparam) {
    constexpr UINT first_own = 0x180;
    constexpr UINT last_own = 0x1B2;
    if (message == WM_LBUTTONDOWN) {
        on_press(handle, lparam);
        return 0;
    }
    if (message == WM_LBUTTONUP) {
        on_release(handle);
        return 0;
    }
    if (message < first_own || message > last_own)
        return default_procedure(handle, message, wparam, lparam);
    const RunLock lock = run_threads().lock();
    return on_list_message(*window_model().find(handle), message, wparam, lparam);
}

} // namespace platform
