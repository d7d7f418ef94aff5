#include "app/ip_dialog.h"

#include "app/candidate_list.h"
#include "app/dialog_loop.h"
#include "resources/resource_ids.h"
#include "state/app_state.h"
#include "support/dialog_text.h"
#include "support/install_log.h"
#include "support/text.h"

#include <iterator>

namespace {

// Where the modal form puts what was typed.
struct AddressBuffer {
    char* out;
    DWORD size;
};

int is_byte(int number) {
    return number >= 0 && number <= 255;
}

void check_address(HWND dialog) {
    log_write(app.log_handle, TEXT("OK\r\n"));
    WCHAR typed[256];
    if (control_get_text(dialog, IDC_ADDRESS, typed, std::size(typed)) < 1)
        typed[0] = 0;
    char text[256];
    narrow(text, std::size(text), typed);
    int part[4];
    const int count = scan_numbers(text, "%d.%d.%d.%d", part, std::size(part));
    WCHAR numbers[80];
    format_text(numbers, std::size(numbers), TEXT(" - %d %d.%d.%d.%d"), count, part[0], part[1], part[2],
                part[3]);
    log_texts(typed, numbers, nullptr, nullptr);

    if (count == 4 && is_byte(part[0]) && is_byte(part[1]) && is_byte(part[2]) && is_byte(part[3])) {
        char address[16];
        format_ansi(address, std::size(address), "%d.%d.%d.%d", part[0], part[1], part[2], part[3]);
        add_candidate(address, "Test");
        return;
    }
    WCHAR warning[513];
    format_text(warning, std::size(warning), TEXT("Invalid IP address:%s!"), typed);
    message_box_text(warning, MB_TOPMOST | MB_ICONEXCLAMATION);
}

void close_dialog(HWND dialog) {
    app.ip_dialog_closed = 1;
    EndDialog(dialog, 0);
    wake_loop(dialog);
}

INT_PTR on_command(HWND dialog, WORD command) {
    switch (command) {
    case IDOK:
        check_address(dialog);
        close_dialog(dialog);
        return 1;
    case IDCANCEL:
        close_dialog(dialog);
        return 1;
    default:
        return 0;
    }
}

void on_modal_init(HWND dialog, LPARAM buffer) {
    SetWindowLongPtrW(dialog, DWLP_USER, buffer);
    SetWindowTextW(dialog, app.window_title);
    center_dialog(dialog);
}

void take_address(HWND dialog) {
    const auto* const buffer = reinterpret_cast<const AddressBuffer*>(GetWindowLongPtrW(dialog, DWLP_USER));
    WCHAR typed[256];
    if (control_get_text(dialog, IDC_ADDRESS, typed, std::size(typed)) < 1)
        typed[0] = 0;
    narrow(buffer->out, buffer->size, typed);
}

INT_PTR CALLBACK address_text_proc(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam) {
    if (message == WM_INITDIALOG) {
        on_modal_init(dialog, lParam);
        return 1;
    }
    const WORD command = message == WM_COMMAND ? LOWORD(wParam) : WORD{0};
    if (command != IDOK && command != IDCANCEL)
        return 0;
    if (command == IDOK)
        take_address(dialog);
    EndDialog(dialog, command == IDOK);
    return 1;
}

} // namespace

void ask_printer_address() {
    app.ip_dialog_closed = 0;
    const HWND dialog =
        CreateDialogParamW(app.app_instance, MAKEINTRESOURCEW(IDD_ADDRESS), nullptr, ip_dialog_proc, 0);
    const DWORD error = dialog == nullptr ? GetLastError() : 0;
    log_write(app.log_handle, TEXT("CreateDialog IP\r\n"));
    if (dialog == nullptr) {
        log_failure(TEXT("CreateDialog failed %d\r\n"), error);
        return;
    }
    SetWindowTextW(dialog, app.window_title);
    ShowWindow(dialog, SW_SHOW);
    center_dialog(dialog);
    while (app.ip_dialog_closed == 0 && pump_message()) {
    }
    // Its own buttons have taken it out of sight already, the end of the run hasn't.
    if (app.exit_requested != 0)
        EndDialog(dialog, 0);
}

INT_PTR CALLBACK ip_dialog_proc(HWND dialog, UINT message, WPARAM wParam, LPARAM) {
    switch (message) {
    case WM_INITDIALOG:
        SetForegroundWindow(dialog);
        return 1;
    case WM_SETCURSOR:
        return on_set_cursor(dialog);
    case WM_COMMAND:
        return on_command(dialog, LOWORD(wParam));
    default:
        return 0;
    }
}

int ask_address_text(char* out, DWORD size) {
    AddressBuffer buffer = {out, size};
    return DialogBoxParamW(app.app_instance, MAKEINTRESOURCEW(IDD_ADDRESS), app.main_dialog,
                           address_text_proc, reinterpret_cast<LPARAM>(&buffer)) == 1;
}
