// What IsDialogMessageW does with a message of its dialog: the keys that move between the controls.
#include "calls/windows/messages.h"

namespace platform {
namespace {

// What the keys need to know, taken under the lock.
struct Focus {
    HWND window = nullptr;
    int id = 0;
    bool push_button = false; // one that can be pressed now
    bool takes_return = false;
};

Focus focus_of(HWND handle) {
    const RunLock lock = run_threads().lock();
    Focus focus;
    const Window* dialog = window_model().find(handle);
    const Window* window = dialog == nullptr ? nullptr : window_model().find(dialog->focus);
    if (window == nullptr)
        return focus;
    focus.window = window->handle;
    focus.id = window->id;
    focus.push_button = window->kind == WindowKind::button &&
                        (window->style & button_type_bits) <= BS_DEFPUSHBUTTON &&
                        window_model().usable(*window);
    focus.takes_return = window->kind == WindowKind::edit && (window->style & ES_WANTRETURN) != 0;
    return focus;
}

struct Button {
    HWND window = nullptr;
    bool disabled = false;
};

Button button_of(HWND handle, int id) {
    const RunLock lock = run_threads().lock();
    const Window* dialog = window_model().find(handle);
    const Window* button = dialog == nullptr ? nullptr : window_model().control(*dialog, id);
    return button == nullptr ? Button{} : Button{button->handle, button->disabled()};
}

void command(HWND dialog, int id, HWND control) {
    send_message(dialog, WM_COMMAND, MAKEWPARAM(id, BN_CLICKED), reinterpret_cast<LPARAM>(control));
}

// The push button with the focus goes first, then the default one; a greyed default does nothing. The dialog
// is asked for its default by a message of the user's range, which a dialog that uses that number itself
// answers otherwise: the command is then OK.
void on_return(HWND dialog) {
    const Focus focus = focus_of(dialog);
    if (focus.push_button) {
        command(dialog, focus.id, focus.window);
        return;
    }
    const auto answer = static_cast<DWORD_PTR>(send_message(dialog, DM_GETDEFID, 0, 0));
    const int id = HIWORD(answer) == DC_HASDEFID ? LOWORD(answer) : IDOK;
    const Button button = button_of(dialog, id);
    if (!button.disabled)
        command(dialog, id, button.window);
}

void move_focus(HWND handle) {
    const RunLock lock = run_threads().lock();
    Window& dialog = *window_model().find(handle);
    dialog.focus = window_model().next_tab_stop(dialog, dialog.focus);
}

bool handle_key(HWND dialog, const MSG& message) {
    switch (message.wParam) {
    case VK_TAB:
        move_focus(dialog);
        return true;
    case VK_RETURN:
        if (focus_of(dialog).takes_return)
            return false;
        on_return(dialog);
        return true;
    case VK_ESCAPE:
        command(dialog, IDCANCEL, button_of(dialog, IDCANCEL).window);
        return true;
    default:
        return false;
    }
}

bool belongs_to(HWND handle, HWND window) {
    const RunLock lock = run_threads().lock();
    if (window_model().find(handle) == nullptr)
        return false;
    const Window* target = window_model().find(window);
    return target != nullptr && (target->handle == handle || target->parent == handle);
}

} // namespace

bool handle_dialog_message(HWND dialog, const MSG& message) {
    if (!belongs_to(dialog, message.hwnd))
        return false;
    if (message.message == WM_KEYDOWN && handle_key(dialog, message))
        return true;
    translate(message);
    dispatch(message);
    return true;
}

} // namespace platform
