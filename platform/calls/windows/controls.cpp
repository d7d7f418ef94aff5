// The window procedures of buttons and edit controls, and what all windows have in common.
#include "calls/run/session.h"
#include "calls/windows/messages.h"
#include "calls/windows/resources.h"

#include <algorithm>

namespace platform {
namespace {

[[noreturn]] void refuse_message(const char* window, UINT message) {
    session().gate.refuse("message " + std::to_string(message) + " to " + window + " isn't modelled");
}

void focus_control(HWND handle) {
    const RunLock lock = run_threads().lock();
    const Window& window = *window_model().find(handle);
    if (Window* dialog = window_model().find(window.parent))
        dialog->focus = handle;
}

LRESULT set_text(HWND handle, LPARAM lparam) {
    const auto* text = reinterpret_cast<const WCHAR*>(lparam);
    const RunLock lock = run_threads().lock();
    window_model().find(handle)->text = text == nullptr ? u"" : text;
    return TRUE;
}

LRESULT get_text(HWND handle, WPARAM capacity, LPARAM lparam) {
    auto* buffer = reinterpret_cast<WCHAR*>(lparam);
    if (buffer == nullptr || capacity == 0)
        return 0;
    const RunLock lock = run_threads().lock();
    const std::size_t length = window_model().find(handle)->text.copy(buffer, capacity - 1);
    buffer[length] = 0;
    return static_cast<LRESULT>(length);
}

// The control asks its dialog; what nobody handles gets the arrow.
LRESULT set_cursor(HWND handle, WPARAM wparam, LPARAM lparam) {
    HWND parent = nullptr;
    {
        const RunLock lock = run_threads().lock();
        parent = window_model().find(handle)->parent;
    }
    if (parent != nullptr && send_message(parent, WM_SETCURSOR, wparam, lparam) != 0)
        return TRUE;
    const RunLock lock = run_threads().lock();
    window_model().cursor = static_cast<HCURSOR>(system_cursor(32512));
    return FALSE;
}

LRESULT set_or_get_font(HWND handle, bool set, WPARAM wparam) {
    const RunLock lock = run_threads().lock();
    Window& window = *window_model().find(handle);
    if (!set)
        return reinterpret_cast<LRESULT>(window.font);
    window.font = reinterpret_cast<HFONT>(wparam);
    return 0;
}

bool take_press(HWND handle) {
    const RunLock lock = run_threads().lock();
    Window& window = *window_model().find(handle);
    const bool pressed = window.pressed;
    window.pressed = false;
    return pressed;
}

void click(HWND handle) {
    if (!take_press(handle))
        return;
    {
        const RunLock lock = run_threads().lock();
        Window& window = *window_model().find(handle);
        if ((window.style & button_type_bits) == BS_AUTOCHECKBOX)
            window.checked = !window.checked;
    }
    notify_dialog(handle, BN_CLICKED);
}

void press(HWND handle) {
    focus_control(handle);
    const RunLock lock = run_threads().lock();
    window_model().find(handle)->pressed = true;
}

LRESULT check_state(HWND handle, bool set, WPARAM wparam) {
    const RunLock lock = run_threads().lock();
    Window& window = *window_model().find(handle);
    if ((window.style & button_type_bits) != BS_AUTOCHECKBOX)
        return 0;
    if (!set)
        return window.checked ? BST_CHECKED : BST_UNCHECKED;
    window.checked = wparam != BST_UNCHECKED;
    return 0;
}

// What a key types: replaces the selection, takes the character before it away, or nothing.
bool type_character(Window& window, char16_t unit) {
    const bool many_lines = (window.style & ES_MULTILINE) != 0;
    const bool line_end = unit == u'\r' && many_lines;
    if ((window.style & ES_READONLY) != 0 || (unit < u' ' && unit != VK_BACK && !line_end))
        return false;
    std::u16string& text = window.text;
    const std::size_t end = std::min(window.selection_end, text.size());
    std::size_t start = std::min(window.selection_start, end);
    if (unit == VK_BACK && start == end) {
        if (start == 0)
            return false;
        --start;
    }
    const std::u16string typed = unit == VK_BACK ? u"" : line_end ? u"\r\n" : std::u16string(1, unit);
    if (text.size() - (end - start) + typed.size() > window.typing_limit)
        return false;
    text.replace(start, end - start, typed);
    window.selection_start = window.selection_end = start + typed.size();
    return true;
}

// Both ends from the text's start; an end of -1 is the text's end, a start of -1 takes the selection away.
void select_text(HWND handle, WPARAM start, LPARAM end) {
    const RunLock lock = run_threads().lock();
    Window& window = *window_model().find(handle);
    const auto length = static_cast<LPARAM>(window.text.size());
    const auto last = static_cast<std::size_t>(end < 0 ? length : std::min(end, length));
    const auto first = static_cast<LPARAM>(start);
    window.selection_end = last;
    window.selection_start = first < 0 ? last : std::min(static_cast<std::size_t>(first), last);
}

void notify_change(HWND edit) {
    notify_dialog(edit, EN_UPDATE);
    notify_dialog(edit, EN_CHANGE);
}

LRESULT set_edit_text(HWND edit, LPARAM lparam) {
    const LRESULT result = set_text(edit, lparam);
    select_text(edit, 0, 0);
    bool one_line = false;
    {
        const RunLock lock = run_threads().lock();
        one_line = (window_model().find(edit)->style & ES_MULTILINE) == 0;
    }
    if (one_line)
        notify_change(edit);
    return result;
}

void on_edit_character(HWND edit, WPARAM wparam) {
    bool typed = false;
    {
        const RunLock lock = run_threads().lock();
        typed = type_character(*window_model().find(edit), static_cast<char16_t>(wparam));
    }
    if (typed)
        notify_change(edit);
}

} // namespace

void notify_dialog(HWND control, WORD notification) {
    HWND dialog = nullptr;
    int id = 0;
    {
        const RunLock lock = run_threads().lock();
        const Window& window = *window_model().find(control);
        dialog = window.parent;
        id = window.id;
    }
    send_message(dialog, WM_COMMAND, MAKEWPARAM(id, notification), reinterpret_cast<LPARAM>(control));
}

LRESULT default_procedure(HWND window, UINT message, WPARAM wparam, LPARAM lparam) {
    constexpr WPARAM command_bits = 0xFFF0;
    switch (message) {
    case WM_SETTEXT:
        return set_text(window, lparam);
    case WM_GETTEXT:
        return get_text(window, wparam, lparam);
    case WM_GETTEXTLENGTH: {
        const RunLock lock = run_threads().lock();
        return static_cast<LRESULT>(window_model().find(window)->text.size());
    }
    case WM_SETFONT:
    case WM_GETFONT:
        return set_or_get_font(window, message == WM_SETFONT, wparam);
    case WM_SETCURSOR:
        return set_cursor(window, wparam, lparam);
    case WM_SYSCOMMAND:
        if ((wparam & command_bits) == SC_CLOSE)
            send_message(window, WM_CLOSE, 0, 0);
        return 0;
    default:
        return 0;
    }
}

LRESULT button_procedure(HWND button, UINT message, WPARAM wparam, LPARAM lparam) {
    constexpr UINT first_own = 0xF0;
    constexpr UINT last_own = 0xFF;
    switch (message) {
    case WM_LBUTTONDOWN:
        press(button);
        return 0;
    case WM_LBUTTONUP:
        click(button);
        return 0;
    case WM_KEYDOWN:
        if (wparam == VK_SPACE)
            press(button);
        return 0;
    case WM_KEYUP:
        if (wparam == VK_SPACE)
            click(button);
        return 0;
    case BM_CLICK:
        press(button);
        click(button);
        return 0;
    case BM_GETCHECK:
    case BM_SETCHECK:
        return check_state(button, message == BM_SETCHECK, wparam);
    default:
        if (message >= first_own && message <= last_own)
            refuse_message("a button", message);
        return default_procedure(button, message, wparam, lparam);
    }
}

LRESULT edit_procedure(HWND edit, UINT message, WPARAM wparam, LPARAM lparam) {
    constexpr UINT first_own = 0xB0;
    constexpr UINT last_own = 0xDF;
    switch (message) {
    case WM_LBUTTONDOWN:
        focus_control(edit);
        return 0;
    case WM_CHAR:
        on_edit_character(edit, wparam);
        return 0;
    case WM_SETTEXT:
        return set_edit_text(edit, lparam);
    case EM_SETSEL:
        select_text(edit, wparam, lparam);
        return TRUE;
    case EM_LIMITTEXT: {
        const RunLock lock = run_threads().lock();
        window_model().find(edit)->typing_limit = wparam == 0 ? 0x7FFFFFFE : wparam;
        return 0;
    }
    case EM_FMTLINES:
        // Only tells whether soft line breaks come with the text when it is asked for; the layer has none.
        return static_cast<LRESULT>(wparam);
    default:
        if (message >= first_own && message <= last_own)
            refuse_message("an edit control", message);
        return default_procedure(edit, message, wparam, lparam);
    }
}

} // namespace platform
