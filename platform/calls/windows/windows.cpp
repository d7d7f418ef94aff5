#include "calls/run/session.h"
#include "calls/windows/messages.h"
#include "machine/text.h"

#include <algorithm>
#include <utility>

using namespace platform;

namespace {

// With the lock held. Null with the error set when there is no such window.
Window* find_window(HWND handle) {
    Window* window = window_model().find(handle);
    if (window == nullptr)
        set_last_error(ERROR_INVALID_WINDOW_HANDLE);
    return window;
}

bool exists(HWND handle) {
    const RunLock lock = run_threads().lock();
    return find_window(handle) != nullptr;
}

std::string shown_window(HWND handle) {
    const RunLock lock = run_threads().lock();
    const Window* window = window_model().find(handle);
    return window == nullptr ? "no window" : std::to_string(window->id);
}

// The dialogs that were created for a window end with it.
std::vector<HWND> owned_dialogs(HWND owner) {
    const RunLock lock = run_threads().lock();
    std::vector<HWND> owned;
    for (const HWND handle : window_model().dialogs)
        if (window_model().find(handle)->owner == owner)
            owned.push_back(handle);
    return owned;
}

void destroy(HWND handle) {
    for (const HWND dialog : owned_dialogs(handle))
        destroy(dialog);
    send_message(handle, WM_DESTROY, 0, 0);
    const RunLock lock = run_threads().lock();
    window_model().remove(handle);
    window_model().changed = true;
}

// The place of a number that the program keeps with a window, or null.
LONG_PTR* stored_number(Window& window, int index) {
    if (index == GWLP_USERDATA)
        return &window.user_data;
    if (window.kind != WindowKind::dialog)
        return nullptr;
    if (index == DWLP_MSGRESULT)
        return &window.message_result;
    return index == DWLP_USER ? &window.dialog_user : nullptr;
}

} // namespace

BOOL DestroyWindow(HWND window) {
    Call call("DestroyWindow", shown_window(window));
    require_main_thread(call);
    if (call.fails(ERROR_ACCESS_DENIED) || !exists(window))
        return FALSE;
    destroy(window);
    return TRUE;
}

BOOL ShowWindow(HWND handle, int command) {
    const Call call("ShowWindow", shown_window(handle) + " " + std::to_string(command));
    constexpr int modelled[] = {SW_HIDE, SW_SHOWNORMAL, SW_SHOWNOACTIVATE, SW_SHOW, SW_SHOWNA, SW_RESTORE};
    if (std::find(std::begin(modelled), std::end(modelled), command) == std::end(modelled))
        call.refuse("only showing and hiding are modelled");
    const bool show = command != SW_HIDE;
    bool shown_before = false;
    {
        const RunLock lock = run_threads().lock();
        const Window* window = find_window(handle);
        if (window == nullptr)
            return FALSE;
        shown_before = window->shown();
    }
    if (shown_before != show)
        send_message(handle, WM_SHOWWINDOW, show ? TRUE : FALSE, 0);
    const RunLock lock = run_threads().lock();
    if (Window* window = window_model().find(handle))
        window_model().show(*window, show);
    return shown_before ? TRUE : FALSE;
}

BOOL EnableWindow(HWND handle, BOOL enable) {
    const Call call("EnableWindow", shown_window(handle) + " " + std::to_string(enable));
    bool was_disabled = false;
    {
        const RunLock lock = run_threads().lock();
        Window* window = find_window(handle);
        if (window == nullptr)
            return FALSE;
        was_disabled = window->disabled();
        window->set_style(WS_DISABLED, enable == FALSE);
        window_model().changed = true;
    }
    if (was_disabled != (enable == FALSE))
        send_message(handle, WM_ENABLE, enable != FALSE ? TRUE : FALSE, 0);
    return was_disabled ? TRUE : FALSE;
}

BOOL IsWindow(HWND window) {
    const Call call("IsWindow");
    return exists(window) ? TRUE : FALSE;
}

BOOL IsWindowVisible(HWND handle) {
    const Call call("IsWindowVisible", shown_window(handle));
    const RunLock lock = run_threads().lock();
    const Window* window = find_window(handle);
    return window != nullptr && window_model().visible(*window) ? TRUE : FALSE;
}

BOOL IsWindowEnabled(HWND handle) {
    const Call call("IsWindowEnabled", shown_window(handle));
    const RunLock lock = run_threads().lock();
    const Window* window = find_window(handle);
    return window != nullptr && !window->disabled() ? TRUE : FALSE;
}

HWND GetParent(HWND handle) {
    const Call call("GetParent", shown_window(handle));
    const RunLock lock = run_threads().lock();
    const Window* window = find_window(handle);
    if (window == nullptr)
        return nullptr;
    return window->parent != nullptr ? window->parent : window->owner;
}

HWND GetDesktopWindow() {
    const Call call("GetDesktopWindow");
    const RunLock lock = run_threads().lock();
    return window_model().desktop;
}

int GetDlgCtrlID(HWND handle) {
    const Call call("GetDlgCtrlID", shown_window(handle));
    const RunLock lock = run_threads().lock();
    const Window* window = find_window(handle);
    return window != nullptr && window->parent != nullptr ? window->id : 0;
}

BOOL GetWindowRect(HWND handle, LPRECT rectangle) {
    Call call("GetWindowRect", shown_window(handle));
    if (call.fails(ERROR_INVALID_WINDOW_HANDLE))
        return FALSE;
    const RunLock lock = run_threads().lock();
    const Window* window = find_window(handle);
    if (window == nullptr)
        return FALSE;
    *rectangle = window_model().rectangle(*window);
    return TRUE;
}

BOOL RedrawWindow(HWND handle, const RECT* part, HRGN region, UINT flags) {
    Call call("RedrawWindow", shown_window(handle));
    if (handle == nullptr || part != nullptr || region != nullptr ||
        flags != (RDW_UPDATENOW | RDW_ALLCHILDREN))
        call.refuse("only a window and its controls as a whole are brought up to date");
    if (call.fails(ERROR_INVALID_WINDOW_HANDLE))
        return FALSE;
    const RunLock lock = run_threads().lock();
    return find_window(handle) == nullptr ? FALSE : TRUE; // nothing is painted, so nothing is out of date
}

BOOL MoveWindow(HWND handle, int x, int y, int width, int height, BOOL) {
    Call call("MoveWindow", shown_window(handle));
    if (call.fails(ERROR_INVALID_WINDOW_HANDLE))
        return FALSE;
    const RunLock lock = run_threads().lock();
    Window* window = find_window(handle);
    if (window == nullptr)
        return FALSE;
    window->left = x;
    window->top = y;
    window->width = std::max(0, width);
    window->height = std::max(0, height);
    return TRUE;
}

BOOL SetForegroundWindow(HWND handle) {
    Call call("SetForegroundWindow", shown_window(handle));
    if (call.fails(ERROR_INVALID_WINDOW_HANDLE))
        return FALSE;
    const RunLock lock = run_threads().lock();
    if (find_window(handle) == nullptr)
        return FALSE;
    window_model().raise(handle);
    return TRUE;
}

BOOL SetWindowTextW(HWND window, LPCWSTR text) {
    Call call("SetWindowTextW", shown_window(window) + " " + shown(text));
    if (call.fails(ERROR_NOT_ENOUGH_MEMORY) || !exists(window))
        return FALSE;
    return send_message(window, WM_SETTEXT, 0, reinterpret_cast<LPARAM>(text)) != 0 ? TRUE : FALSE;
}

int GetWindowTextW(HWND window, LPWSTR buffer, int capacity) {
    Call call("GetWindowTextW", shown_window(window));
    if (capacity > 0)
        buffer[0] = 0;
    if (call.fails(ERROR_INVALID_WINDOW_HANDLE) || capacity < 1 || !exists(window))
        return 0;
    return static_cast<int>(
        send_message(window, WM_GETTEXT, static_cast<WPARAM>(capacity), reinterpret_cast<LPARAM>(buffer)));
}

int GetWindowTextLengthW(HWND window) {
    Call call("GetWindowTextLengthW", shown_window(window));
    if (call.fails(ERROR_INVALID_WINDOW_HANDLE) || !exists(window))
        return 0;
    const LRESULT length = send_message(window, WM_GETTEXTLENGTH, 0, 0);
    return static_cast<int>(call.size(static_cast<std::size_t>(length), 0).told);
}

LONG_PTR SetWindowLongPtrW(HWND handle, int index, LONG_PTR value) {
    const Call call("SetWindowLongPtrW", std::to_string(index));
    const RunLock lock = run_threads().lock();
    Window* window = find_window(handle);
    if (window == nullptr)
        return 0;
    LONG_PTR* number = stored_number(*window, index);
    if (number == nullptr)
        call.refuse("only user data and the result of a dialog's message can be set");
    return std::exchange(*number, value);
}

LONG_PTR GetWindowLongPtrW(HWND handle, int index) {
    const Call call("GetWindowLongPtrW", std::to_string(index));
    const RunLock lock = run_threads().lock();
    Window* window = find_window(handle);
    if (window == nullptr)
        return 0;
    if (index == GWL_STYLE)
        return static_cast<LONG_PTR>(window->style);
    if (index == GWL_EXSTYLE)
        return static_cast<LONG_PTR>(window->extended_style);
    if (index == GWLP_ID)
        return window->parent != nullptr ? window->id : 0;
    const LONG_PTR* number = stored_number(*window, index);
    if (number == nullptr)
        call.refuse("this number of a window isn't modelled");
    return *number;
}

int GetSystemMetrics(int index) {
    const Call call("GetSystemMetrics", std::to_string(index));
    if (index == SM_CXSCREEN)
        return screen_width;
    if (index == SM_CYSCREEN)
        return screen_height;
    call.refuse("only the screen's size is modelled");
}

HCURSOR SetCursor(HCURSOR cursor) {
    const Call call("SetCursor");
    const RunLock lock = run_threads().lock();
    return std::exchange(window_model().cursor, cursor);
}

HCURSOR GetCursor() {
    const Call call("GetCursor");
    const RunLock lock = run_threads().lock();
    return window_model().cursor;
}
