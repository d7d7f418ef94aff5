#include "calls/run/session.h"
#include "calls/windows/messages.h"
#include "machine/text.h"

#include <array>
#include <cstdio>

using namespace platform;

namespace {

// "0x0180 to 1003": what faults and journal readers can ask about.
std::string shown_message(HWND window, UINT message) {
    const RunLock lock = run_threads().lock();
    const Window* target = window_model().find(window);
    std::array<char, 16> number{};
    std::snprintf(number.data(), number.size(), "0x%04x", message);
    return std::string(number.data()) + " to " +
           (target != nullptr ? std::to_string(target->id) : "no window");
}

void require_no_filter(const Call& call, HWND window, UINT first, UINT last) {
    if (window != nullptr || first != 0 || last != 0)
        call.refuse("message filters aren't modelled");
}

} // namespace

LRESULT SendMessageW(HWND window, UINT message, WPARAM wparam, LPARAM lparam) {
    const Call call("SendMessageW", shown_message(window, message));
    return send_message(window, message, wparam, lparam);
}

BOOL PostMessageW(HWND window, UINT message, WPARAM wparam, LPARAM lparam) {
    Call call("PostMessageW", shown_message(window, message));
    if (call.fails(ERROR_NOT_ENOUGH_QUOTA))
        return FALSE;
    if (reinterpret_cast<std::uintptr_t>(window) == 0xFFFF)
        call.refuse("messages to all windows aren't modelled");
    if (window == nullptr)
        require_main_thread(call);
    if (post_message(window, message, wparam, lparam, false))
        return TRUE;
    set_last_error(ERROR_INVALID_WINDOW_HANDLE);
    return FALSE;
}

LRESULT SendDlgItemMessageW(HWND dialog, int id, UINT message, WPARAM wparam, LPARAM lparam) {
    const Call call("SendDlgItemMessageW", std::to_string(id));
    HWND control = nullptr;
    {
        const RunLock lock = run_threads().lock();
        const Window* window = window_model().find(dialog);
        const Window* found = window != nullptr ? window_model().control(*window, id) : nullptr;
        if (found == nullptr) {
            set_last_error(window == nullptr ? ERROR_INVALID_WINDOW_HANDLE : ERROR_CONTROL_ID_NOT_FOUND);
            return 0;
        }
        control = found->handle;
    }
    return send_message(control, message, wparam, lparam);
}

BOOL GetMessageW(LPMSG message, HWND window, UINT first, UINT last) {
    Call call("GetMessageW", window == nullptr ? "any window" : "one window");
    require_main_thread(call);
    require_no_filter(call, window, first, last);
    if (call.fails(ERROR_INVALID_WINDOW_HANDLE))
        return -1;
    return take_message(call, *message) ? TRUE : FALSE;
}

BOOL PeekMessageW(LPMSG message, HWND window, UINT first, UINT last, UINT remove) {
    const Call call("PeekMessageW");
    require_main_thread(call);
    require_no_filter(call, window, first, last);
    return take_waiting_message(*message, (remove & PM_REMOVE) != 0) ? TRUE : FALSE;
}

BOOL TranslateMessage(const MSG* message) {
    const Call call("TranslateMessage");
    translate(*message);
    return message->message == WM_KEYDOWN || message->message == WM_KEYUP ? TRUE : FALSE;
}

LRESULT DispatchMessageW(const MSG* message) {
    const Call call("DispatchMessageW", shown_message(message->hwnd, message->message));
    return dispatch(*message);
}

void PostQuitMessage(int exit_code) {
    const Call call("PostQuitMessage", std::to_string(exit_code));
    require_main_thread(call);
    const RunLock lock = run_threads().lock();
    window_model().quit = true;
    window_model().exit_code = exit_code;
}

int MessageBoxW(HWND owner, LPCWSTR text, LPCWSTR caption, UINT flags) {
    Call call("MessageBoxW", shown(text));
    constexpr UINT button_bits = 0xF;
    if (owner != nullptr || (flags & button_bits) != MB_OK)
        call.refuse("only message boxes without owner and with one OK button are modelled");
    if (call.fails(ERROR_NOT_ENOUGH_MEMORY))
        return 0;
    // While a box is open its own loop serves the program's other windows. It goes before the answer here,
    // since the answer comes at once.
    if (current_thread_number() == 0) {
        MSG message;
        while (take_waiting_message(message, false) && message.message != WM_QUIT) {
            take_waiting_message(message, true);
            translate(message);
            dispatch(message);
        }
        session().user.changed();
    }
    session().user.box({text == nullptr ? std::string() : to_utf8(text),
                        caption == nullptr ? std::string("Error") : to_utf8(caption), flags});
    return IDOK;
}
