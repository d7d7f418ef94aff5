// The window procedure of list boxes: unsorted, one selection at most. Those of several columns scroll
// sideways, a column at a time, and only those made with WS_HSCROLL have a bar for it.
#include "calls/run/session.h"
#include "calls/windows/messages.h"

#include <algorithm>

namespace platform {
namespace {

// Pixels.
constexpr int row_height = 13;
constexpr int usual_column_width = 100;
constexpr int edges = 2;
constexpr int bar_height = 17;

int row_count(const Window& list) {
    return static_cast<int>(list.rows.size());
}

bool has_row(const Window& list, WPARAM row) {
    return row < list.rows.size();
}

int column_rows(const Window& list) {
    if ((list.style & LBS_MULTICOLUMN) == 0)
        return std::max(1, row_count(list));
    const int bar = (list.style & WS_HSCROLL) != 0 ? bar_height : 0;
    return std::max(1, (list.height - edges - bar) / row_height);
}

int column_width(const Window& list) {
    return list.column_width > 0 ? list.column_width : usual_column_width;
}

int column_count(const Window& list) {
    return (row_count(list) + column_rows(list) - 1) / column_rows(list);
}

// Columns that are wholly in sight, or the one that is partly.
int columns_in_sight(const Window& list) {
    return std::max(1, (list.width - edges) / column_width(list));
}

void scroll_to(Window& list, int column) {
    list.left_column = std::clamp(column, 0, std::max(0, column_count(list) - columns_in_sight(list)));
}

// After a change of rows or columns: the bar comes and goes, and takes room from the rows.
void update_bar(Window& list) {
    list.set_style(WS_HSCROLL, false);
    list.set_style(WS_HSCROLL, list.scroll_bar && column_count(list) > columns_in_sight(list));
    scroll_to(list, list.left_column);
}

LRESULT add_row(Window& list, LPARAM lparam) {
    const auto* text = reinterpret_cast<const WCHAR*>(lparam);
    list.rows.push_back(text == nullptr ? u"" : text);
    update_bar(list);
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
    update_bar(list);
    return row_count(list);
}

LRESULT select_row_of(Window& list, WPARAM row) {
    list.selected = has_row(list, row) ? static_cast<int>(row) : LB_ERR;
    if (list.selected != LB_ERR)
        scroll_to(list, column_showing(list, list.selected));
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
    const int row_in_column = HIWORD(place) / row_height;
    const int row =
        (list.left_column + LOWORD(place) / column_width(list)) * column_rows(list) + row_in_column;
    return row_in_column < column_rows(list) && row < row_count(list) ? row : LB_ERR;
}

LRESULT copy_rectangle(const Window& list, WPARAM wparam, LPARAM lparam) {
    if (!has_row(list, wparam))
        return LB_ERR;
    const int row = static_cast<int>(wparam);
    const int left = (row / column_rows(list) - list.left_column) * column_width(list);
    const int top = row % column_rows(list) * row_height;
    *reinterpret_cast<RECT*>(lparam) = {left, top, left + column_width(list), top + row_height};
    return 1;
}

void on_scroll(Window& list, WPARAM wparam) {
    const int page = columns_in_sight(list);
    switch (LOWORD(wparam)) {
    case SB_LINELEFT:
        return scroll_to(list, list.left_column - 1);
    case SB_LINERIGHT:
        return scroll_to(list, list.left_column + 1);
    case SB_PAGELEFT:
        return scroll_to(list, list.left_column - page);
    case SB_PAGERIGHT:
        return scroll_to(list, list.left_column + page);
    case SB_THUMBPOSITION:
        return scroll_to(list, HIWORD(wparam));
    case SB_LEFT:
        return scroll_to(list, 0);
    case SB_RIGHT:
        return scroll_to(list, column_count(list));
    default:
        return;
    }
}

// How far a key moves the selection; 0 for keys that don't.
int key_step(const Window& list, WPARAM key) {
    switch (key) {
    case VK_UP:
        return -1;
    case VK_DOWN:
        return 1;
    case VK_LEFT:
        return -column_rows(list);
    case VK_RIGHT:
        return column_rows(list);
    case VK_PRIOR:
        return -columns_in_sight(list) * column_rows(list);
    case VK_NEXT:
        return columns_in_sight(list) * column_rows(list);
    case VK_HOME:
        return -row_count(list);
    case VK_END:
        return row_count(list);
    default:
        return 0;
    }
}

// The first key of a list without a selection selects a row, as if the row before the first had been
// selected. A key to the side stays where it is when there is no column there.
void on_key(HWND handle, WPARAM key) {
    {
        const RunLock lock = run_threads().lock();
        Window& list = *window_model().find(handle);
        const int step = key_step(list, key);
        if (step == 0 || row_count(list) == 0)
            return;
        int row = list.selected + step;
        const bool aside = key == VK_LEFT || key == VK_RIGHT;
        if (aside && (row < 0 || row >= row_count(list)))
            row = list.selected;
        select_row_of(list, static_cast<WPARAM>(std::clamp(row, 0, row_count(list) - 1)));
        if ((list.style & LBS_NOTIFY) == 0)
            return;
    }
    notify_dialog(handle, LBN_SELCHANGE);
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
        update_bar(list);
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
        update_bar(list);
        return 0;
    case LB_GETTOPINDEX:
        return list.left_column * column_rows(list);
    case LB_GETITEMRECT:
        return copy_rectangle(list, wparam, lparam);
    case WM_HSCROLL:
        on_scroll(list, wparam);
        return 0;
    default:
        session().gate.refuse("message " + std::to_string(message) + " to a list box isn't modelled");
    }
}

} // namespace

int column_showing(const Window& list, int row) {
    const int column = row / column_rows(list);
    return std::clamp(list.left_column, column - columns_in_sight(list) + 1, column);
}

POINT row_place(const Window& list, int row, int left_column) {
    const int rows = column_rows(list);
    return {(row / rows - left_column) * column_width(list) + 2, row % rows * row_height + row_height / 2};
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
    if (message == WM_KEYDOWN) {
        on_key(handle, wparam);
        return 0;
    }
    if (message != WM_HSCROLL && (message < first_own || message > last_own))
        return default_procedure(handle, message, wparam, lparam);
    const RunLock lock = run_threads().lock();
    return on_list_message(*window_model().find(handle), message, wparam, lparam);
}

} // namespace platform
