#include "app/terms_page.h"

#include "app/dialog_loop.h"
#include "package/settings.h"
#include "resources/resource_ids.h"
#include "state/app_state.h"
#include "support/current_folder.h"
#include "support/dialog_text.h"
#include "support/install_log.h"
#include "support/text.h"

#include <failed_step.h>

#include <iterator>

namespace {

constexpr TextPair terms_dialog_texts[] = {
    {IDS_LICENSE_AGREEMENT, IDC_TERMS_HEADLINE}, {IDS_ACCEPT_TERMS, IDC_ACCEPT}, {0, 0}};

// Puts what the open file holds into the page, without its first two bytes: 1 when the file gave any byte. An
// odd last byte is half a character and is left out.
int show_open_file(HWND page, HANDLE file) {
    WCHAR text[longest_terms / sizeof(WCHAR) + 1];
    DWORD bytes = 0;
    if (!ReadFile(file, text, longest_terms, &bytes, nullptr) || bytes == 0)
        return 0;
    const DWORD characters = bytes / static_cast<DWORD>(sizeof(WCHAR));
    text[characters] = 0;
    const HWND control = GetDlgItem(page, IDC_TERMS_TEXT);
    SetWindowTextW(control, characters > 1 ? text + 1 : TEXT(""));
    SendMessageW(control, EM_FMTLINES, 0, 0);
    return 1;
}

// The agreement of the given suffix, under the current folder.
int show_agreement(HWND page, const WCHAR* folder, const WCHAR* suffix) {
    WCHAR path[256];
    HANDLE file = INVALID_HANDLE_VALUE;
    if (folder[0] != 0 &&
        format_text(path, std::size(path), TEXT("%s\\licenses\\license%s.txt"), folder, suffix))
        file = CreateFileW(path, GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL,
                           nullptr);
    if (file == INVALID_HANDLE_VALUE) {
        log_failure(TEXT("license file open failed\r\n"));
        return 0;
    }
    const int shown = show_open_file(page, file);
    CloseHandle(file);
    if (!shown)
        step_failed(path);
    return shown;
}

void load_agreement(HWND page) {
    WCHAR folder[256];
    get_current_folder(folder, std::size(folder));
    const WCHAR* const suffix = terms_suffix(app.language);
    if (suffix[0] == 0 || !show_agreement(page, folder, suffix))
        show_agreement(page, folder, TEXT(""));
}

int is_ticked(HWND dialog) {
    return SendDlgItemMessageW(dialog, IDC_ACCEPT, BM_GETCHECK, 0, 0) != 0;
}

void close_page(HWND dialog, INT_PTR result) {
    app.terms_closed = 1;
    EndDialog(dialog, result);
    EnableWindow(app.main_dialog, TRUE);
    wake_loop(dialog);
}

INT_PTR on_command(HWND dialog, WORD command) {
    switch (command) {
    case IDC_ACCEPT:
        show_control(dialog, IDOK, is_ticked(dialog), 1);
        return 1;
    case IDOK:
        app.terms_accepted = static_cast<DWORD>(is_ticked(dialog));
        close_page(dialog, 1);
        return 1;
    case IDCANCEL:
        // Whatever the box shows: leaving isn't acceptance.
        close_page(dialog, 0);
        return 1;
    default:
        return 0;
    }
}

void run_page(HWND page) {
    apply_dialog_texts(app.app_instance, page, terms_dialog_texts);
    log_write(app.log_handle, TEXT("CreateDialog License\r\n"));
    show_control(page, IDOK, 0, 1);
    load_agreement(page);
    SetWindowTextW(page, app.window_title);
    ShowWindow(page, SW_SHOW);
    center_dialog(page);
    while (app.terms_closed == 0 && pump_message()) {
    }
}

} // namespace

void show_terms_page() {
    EnableWindow(app.main_dialog, FALSE);
    app.terms_closed = 0;
    app.terms_accepted = 0;
    const HWND page =
        CreateDialogParamW(app.app_instance, MAKEINTRESOURCEW(IDD_TERMS), nullptr, terms_dialog_proc, 0);
    if (page != nullptr) {
        run_page(page);
    } else {
        log_failure(TEXT("CreateDialog failed %d\r\n"), GetLastError());
        EnableWindow(app.main_dialog, TRUE);
    }
    SendMessageW(app.main_dialog, setup_message, terms_page_closed, 0);
}

INT_PTR CALLBACK terms_dialog_proc(HWND dialog, UINT message, WPARAM wParam, LPARAM) {
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
