#include "app/main_dialog.h"

#include "app/candidate_list.h"
#include "app/dialog_loop.h"
#include "app/install_sequence.h"
#include "app/ip_dialog.h"
#include "app/terms_page.h"
#include "discovery/network_search.h"
#include "resources/resource_ids.h"
#include "state/app_state.h"
#include "support/install_log.h"

#include <failed_step.h>

#include <process.h>

const TextPair main_dialog_texts[] = {
    {IDS_CONNECTION_TYPE, IDC_HEADLINE},
    {IDS_USB, IDC_USB},
    {IDS_NETWORK, IDC_NETWORK},
    {IDS_INSTALL_PRINTER, IDC_INSTALL},
    {IDS_VERSION, IDC_VERSION_LABEL},
    {IDS_DEFAULT_PRINTER, IDC_DEFAULT_PRINTER},
    {IDS_SPECIFY_IP, IDC_SPECIFY_IP},
    {IDS_REFRESH, IDC_REFRESH},
    {0, 0},
};

namespace {

int worker_lives() {
    return app.install_started != 0 && app.exit_requested == 0;
}

void request_exit(HWND dialog) {
    app.exit_requested = 1;
    wake_loop(dialog);
}

INT_PTR on_init(HWND dialog) {
    if (app.wait_cursor == nullptr)
        app.wait_cursor = LoadCursorW(nullptr, IDC_WAIT);
    make_list_scroll(dialog);
    SetForegroundWindow(dialog);
    return 1;
}

// The controls that would get in the worker's way go grey. On the USB road the two of the list were never
// shown, and must not appear now.
void grey_for_install(HWND dialog) {
    show_control(dialog, IDC_INSTALL, 0, 1);
    EnableWindow(GetDlgItem(dialog, IDCANCEL), FALSE);
    EnableWindow(GetDlgItem(dialog, IDC_REFRESH), FALSE);
    EnableWindow(GetDlgItem(dialog, IDC_SPECIFY_IP), FALSE);
}

void start_install(HWND dialog) {
    log_write(app.log_handle, TEXT("License accepted\r\n"));
    app.install_started = 1;
    grey_for_install(dialog);
    constexpr auto not_started = static_cast<uintptr_t>(-1);
    if (_beginthread(install_worker, 0, nullptr) != not_started)
        return;
    log_failure(TEXT("Install thread failed\r\n"));
    app.install_failed = 1;
    request_exit(dialog);
}

INT_PTR on_setup_message(HWND dialog, WPARAM wParam) {
    switch (LOWORD(wParam)) {
    case worker_finished:
        request_exit(dialog);
        // The run ends by itself, unless a dialog 104 is still open.
        EnableWindow(GetDlgItem(dialog, IDCANCEL), TRUE);
        break;
    case terms_page_closed:
        // The worker is started at most once, however often the message comes.
        if (app.terms_accepted != 0 && app.install_started == 0)
            start_install(dialog);
        break;
    default:
        break;
    }
    return 1;
}

void on_usb(HWND dialog) {
    show_control(dialog, IDC_USB, 0, 1);
    show_control(dialog, IDC_NETWORK, 0, 1);
    app.usb_chosen = 1;
    show_terms_page();
}

void on_network(HWND dialog) {
    status_set(dialog, IDC_STATUS, TEXT(""));
    enter_network_mode();
}

void on_refresh(HWND dialog) {
    if (worker_lives())
        return;
    clear_candidates();
    show_control(dialog, IDC_INSTALL, 0, 1); // no row is selected any more
    search_printers(app.driver.mdlName);
}

void on_list(HWND dialog, WORD notification) {
    if (notification == LBN_SELCHANGE && app.install_started == 0)
        show_control(dialog, IDC_INSTALL, 1, 1);
}

void on_default_box(HWND dialog) {
    app.set_default_printer = SendDlgItemMessageW(dialog, IDC_DEFAULT_PRINTER, BM_GETCHECK, 0, 0) != 0;
    log_write(app.log_handle, app.set_default_printer != 0 ? TEXT("set default printer\r\n")
                                                           : TEXT("dont set default printer\r\n"));
}

void on_cancel(HWND dialog) {
    if (worker_lives())
        return;
    request_exit(dialog);
    // Behind an install a dialog 104 that was left open, perhaps where nobody sees it, goes too.
    if (app.install_started != 0)
        app.ip_dialog_closed = 1;
    EndDialog(dialog, 0);
}

INT_PTR on_command(HWND dialog, WORD command, WORD notification) {
    switch (command) {
    case IDC_USB:
        on_usb(dialog);
        return 1;
    case IDC_NETWORK:
        on_network(dialog);
        return 1;
    case IDC_INSTALL:
        show_terms_page();
        return 1;
    case IDC_SPECIFY_IP:
        if (!worker_lives())
            ask_printer_address();
        return 1;
    case IDC_REFRESH:
        on_refresh(dialog);
        return 1;
    case IDC_PRINTER_LIST:
        on_list(dialog, notification);
        return 1;
    case IDC_DEFAULT_PRINTER:
        on_default_box(dialog);
        return 1;
    case IDOK: // Enter; the dialog has no such button
    case IDCANCEL:
        on_cancel(dialog);
        return 1;
    default:
        return 0;
    }
}

} // namespace

INT_PTR CALLBACK main_dialog_proc(HWND dialog, UINT message, WPARAM wParam, LPARAM) {
    switch (message) {
    case WM_INITDIALOG:
        return on_init(dialog);
    case WM_SETCURSOR:
        return on_set_cursor(dialog);
    case setup_message:
        return on_setup_message(dialog, wParam);
    case WM_COMMAND:
        return on_command(dialog, LOWORD(wParam), HIWORD(wParam));
    default:
        return 0;
    }
}

void enter_network_mode() {
    const HWND dialog = app.main_dialog;
    show_control(dialog, IDC_USB, 0, 0);
    show_control(dialog, IDC_NETWORK, 0, 0);
    show_control(dialog, IDC_PRINTER_LIST, 1, 1);
    show_control(dialog, IDC_DEFAULT_PRINTER, 1, 1);
    show_control(dialog, IDC_INSTALL, 0, 1);
    status_set_string(app.app_instance, dialog, IDC_HEADLINE, IDS_AVAILABLE_PRINTERS, 0);
    if (probe_discovery_port() != 0) {
        log_write(app.log_handle, TEXT("Warning: another process is using the discovery port!\r\n"));
        warning_follows();
        message_box_string(app.app_instance, IDS_PORT_TAKEN, MB_TOPMOST | MB_ICONEXCLAMATION);
    }
    search_printers(app.driver.mdlName);
    show_control(dialog, IDC_REFRESH, 1, 1);
    show_control(dialog, IDC_SPECIFY_IP, 1, 1);
}

void clear_candidates() {
    list_clear(app.main_dialog, IDC_PRINTER_LIST);
    if (SendDlgItemMessageW(app.main_dialog, IDC_PRINTER_LIST, LB_GETCOUNT, 0, 0) > 0)
        step_failed(TEXT("emptying the list of printers")); // its rows need their records
    else
        app.candidate_count = 0;
}
