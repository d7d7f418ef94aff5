#include "calls/run/session.h"
#include "calls/windows/messages.h"
#include "calls/windows/resources.h"
#include "machine/text.h"

namespace platform {
namespace {

// WM_CLOSE counts as the Cancel button, unless that is there and greyed.
void close_by_cancel(HWND handle) {
    HWND cancel = nullptr;
    {
        const RunLock lock = run_threads().lock();
        const Window& dialog = *window_model().find(handle);
        const Window* button = window_model().control(dialog, IDCANCEL);
        if (button != nullptr && button->disabled())
            return;
        cancel = button == nullptr ? nullptr : button->handle;
    }
    post_message(handle, WM_COMMAND, MAKEWPARAM(IDCANCEL, BN_CLICKED), reinterpret_cast<LPARAM>(cancel),
                 false);
}

LRESULT default_button(HWND handle, UINT message, WPARAM wparam) {
    const RunLock lock = run_threads().lock();
    Window& dialog = *window_model().find(handle);
    if (message == DM_SETDEFID) {
        dialog.default_id = LOWORD(wparam);
        return TRUE;
    }
    return dialog.default_id == 0 ? 0 : static_cast<LRESULT>(MAKEWPARAM(dialog.default_id, DC_HASDEFID));
}

// What the dialog's own procedure left to the platform.
LRESULT default_dialog_procedure(HWND dialog, UINT message, WPARAM wparam, LPARAM lparam) {
    switch (message) {
    case WM_CLOSE:
        close_by_cancel(dialog);
        return 0;
    case DM_GETDEFID:
    case DM_SETDEFID:
        return default_button(dialog, message, wparam);
    case WM_KEYDOWN:
    case WM_CHAR:
        return 0;
    default:
        return default_procedure(dialog, message, wparam, lparam);
    }
}

// The dialog, or null when its template is missing or its procedure destroyed it at once.
HWND create_dialog(const Call& call, LPCWSTR name, HWND owner, DLGPROC procedure, LPARAM parameter,
                   bool modal) {
    require_main_thread(call);
    const auto layout = find_dialog_template(call, name);
    if (!layout) {
        set_last_error(ERROR_RESOURCE_NAME_NOT_FOUND);
        return nullptr;
    }
    HWND handle = nullptr;
    HWND focus = nullptr;
    {
        const RunLock lock = run_threads().lock();
        if (owner != nullptr && window_model().find(owner) == nullptr) {
            set_last_error(ERROR_INVALID_WINDOW_HANDLE);
            return nullptr;
        }
        handle = build_dialog(call, *layout);
        Window& dialog = *window_model().find(handle);
        dialog.id = resource_name(name).id;
        dialog.owner = owner;
        dialog.procedure = procedure;
        dialog.modal = modal;
        focus = window_model().next_tab_stop(dialog, nullptr);
    }
    send_message(handle, WM_INITDIALOG, reinterpret_cast<WPARAM>(focus), parameter);
    const RunLock lock = run_threads().lock();
    Window* dialog = window_model().find(handle);
    if (dialog == nullptr)
        return nullptr;
    if ((layout->style & WS_VISIBLE) != 0 && !dialog->ended)
        window_model().show(*dialog, true);
    return handle;
}

// Null with the error set when there is no such control.
Window* find_control(HWND dialog, int id) {
    const Window* window = window_model().find(dialog);
    if (window == nullptr) {
        set_last_error(ERROR_INVALID_WINDOW_HANDLE);
        return nullptr;
    }
    Window* control = window_model().control(*window, id);
    if (control == nullptr)
        set_last_error(ERROR_CONTROL_ID_NOT_FOUND);
    return control;
}

HWND control_handle(HWND dialog, int id) {
    const RunLock lock = run_threads().lock();
    const Window* control = find_control(dialog, id);
    return control == nullptr ? nullptr : control->handle;
}

void enable_owner(HWND owner, bool enable) {
    const RunLock lock = run_threads().lock();
    if (Window* window = window_model().find(owner))
        window->set_style(WS_DISABLED, !enable);
}

bool has_ended(HWND handle) {
    const RunLock lock = run_threads().lock();
    const Window* dialog = window_model().find(handle);
    return dialog == nullptr || dialog->ended;
}

// The loop of a modal dialog. A dialog that is destroyed in it counts as cancelled.
INT_PTR run_modal(const Call& call, HWND handle) {
    while (!has_ended(handle)) {
        MSG message;
        if (!take_message(call, message)) {
            const RunLock lock = run_threads().lock();
            window_model().quit = true; // for the loop around
            break;
        }
        if (!handle_dialog_message(handle, message)) {
            translate(message);
            dispatch(message);
        }
    }
    const RunLock lock = run_threads().lock();
    const Window* dialog = window_model().find(handle);
    const INT_PTR result = dialog == nullptr || !dialog->ended ? IDCANCEL : dialog->end_result;
    window_model().remove(handle);
    return result;
}

} // namespace

LRESULT dialog_procedure(HWND handle, UINT message, WPARAM wparam, LPARAM lparam) {
    DLGPROC procedure = nullptr;
    {
        const RunLock lock = run_threads().lock();
        Window& dialog = *window_model().find(handle);
        dialog.message_result = 0;
        procedure = dialog.procedure;
    }
    const INT_PTR handled = procedure == nullptr ? 0 : procedure(handle, message, wparam, lparam);
    {
        const RunLock lock = run_threads().lock();
        const Window* dialog = window_model().find(handle);
        if (dialog == nullptr)
            return 0;
        if (message == WM_INITDIALOG)
            return handled;
        if (handled != 0)
            return dialog->message_result;
    }
    return default_dialog_procedure(handle, message, wparam, lparam);
}

} // namespace platform

using namespace platform;

HWND CreateDialogParamW(HINSTANCE, LPCWSTR template_name, HWND parent, DLGPROC procedure, LPARAM parameter) {
    Call call("CreateDialogParamW", shown_name(template_name));
    if (call.fails(ERROR_NOT_ENOUGH_MEMORY))
        return nullptr;
    return create_dialog(call, template_name, parent, procedure, parameter, false);
}

INT_PTR DialogBoxParamW(HINSTANCE, LPCWSTR template_name, HWND parent, DLGPROC procedure, LPARAM parameter) {
    Call call("DialogBoxParamW", shown_name(template_name));
    if (call.fails(ERROR_NOT_ENOUGH_MEMORY))
        return -1;
    const HWND dialog = create_dialog(call, template_name, parent, procedure, parameter, true);
    if (dialog == nullptr)
        return -1;
    enable_owner(parent, false);
    if (!has_ended(dialog)) {
        const RunLock lock = run_threads().lock();
        window_model().show(*window_model().find(dialog), true);
    }
    const INT_PTR result = run_modal(call, dialog);
    enable_owner(parent, true);
    return result;
}

BOOL EndDialog(HWND handle, INT_PTR result) {
    const Call call("EndDialog");
    const RunLock lock = run_threads().lock();
    Window* dialog = window_model().find(handle);
    if (dialog == nullptr || dialog->kind != WindowKind::dialog) {
        set_last_error(ERROR_INVALID_WINDOW_HANDLE);
        return FALSE;
    }
    dialog->ended = true;
    dialog->end_result = result;
    window_model().show(*dialog, false);
    return TRUE;
}

HWND GetDlgItem(HWND dialog, int id) {
    Call call("GetDlgItem", std::to_string(id));
    if (call.fails(ERROR_CONTROL_ID_NOT_FOUND))
        return nullptr;
    return control_handle(dialog, id);
}

BOOL SetDlgItemTextW(HWND dialog, int id, LPCWSTR text) {
    Call call("SetDlgItemTextW", std::to_string(id) + " " + shown(text));
    if (call.fails(ERROR_CONTROL_ID_NOT_FOUND))
        return FALSE;
    const HWND control = control_handle(dialog, id);
    if (control == nullptr)
        return FALSE;
    return send_message(control, WM_SETTEXT, 0, reinterpret_cast<LPARAM>(text)) != 0 ? TRUE : FALSE;
}

UINT GetDlgItemTextW(HWND dialog, int id, LPWSTR buffer, int capacity) {
    Call call("GetDlgItemTextW", std::to_string(id));
    if (capacity > 0)
        buffer[0] = 0;
    if (call.fails(ERROR_CONTROL_ID_NOT_FOUND) || capacity < 1)
        return 0;
    const HWND control = control_handle(dialog, id);
    if (control == nullptr)
        return 0;
    const auto result =
        send_message(control, WM_GETTEXT, static_cast<WPARAM>(capacity), reinterpret_cast<LPARAM>(buffer));
    return static_cast<UINT>(result);
}

BOOL IsDialogMessageW(HWND dialog, LPMSG message) {
    const Call call("IsDialogMessageW");
    require_main_thread(call);
    return handle_dialog_message(dialog, *message) ? TRUE : FALSE;
}
