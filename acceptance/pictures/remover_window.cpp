// trk_remover_window PROGRAM
//
// A window for what the library has for removers and no dialog of the setup program shows: the list of
// installed printers with their marks, and the strings that stand in PROGRAM's table for it. It is made of
// the template and the picture in PROGRAM's resources, stays until it is closed, and removes nothing.
#include "removal/installed_printers.h"
#include "resources/resource_ids.h"
#include "state/app_state.h"
#include "support/dialog_text.h"
#include "support/text.h"

#include <shellapi.h>

#include <iterator>

namespace {

constexpr WPARAM column_width = 200; // pixels

constexpr TextPair texts[] = {{IDS_INSTALLED_PRINTERS, IDC_HEADLINE},
                              {IDS_VERSION, IDC_VERSION_LABEL},
                              {IDS_UNINSTALL, IDC_INSTALL},
                              {0, 0}};

void show_title(HWND dialog) {
    WCHAR word[260] = {};
    WCHAR title[300];
    LoadStringW(app.app_instance, IDS_UNINSTALLER, word, std::size(word));
    format_text(title, std::size(title), TEXT("ZR Series %s"), word);
    SetWindowTextW(dialog, title);
}

void fill(HWND dialog) {
    const HINSTANCE module = app.app_instance;
    show_title(dialog);
    apply_dialog_texts(module, dialog, texts);
    show_control(dialog, IDC_PRINTER_LIST, 1, 1);
    show_control(dialog, IDC_INSTALL, 1, 1);
    SendDlgItemMessageW(dialog, IDC_PRINTER_LIST, LB_SETCOLUMNWIDTH, column_width, 0);
    DWORD connected = 0;
    const int found = list_installed_printers(TEXT("Label 100 Driver"), dialog, IDC_PRINTER_LIST, list_queues,
                                              &connected, 1);
    if (found == 0)
        list_add_string(module, dialog, IDC_PRINTER_LIST, IDS_NONE);
    if (connected != 0)
        status_append_string(module, dialog, IDC_STATUS, IDS_DISCONNECT_USB, 0);
    if (found == 2)
        status_append_string(module, dialog, IDC_STATUS, IDS_JOBS_PENDING, 0);
}

INT_PTR CALLBACK dialog_proc(HWND dialog, UINT message, WPARAM wParam, LPARAM) {
    if (message == WM_INITDIALOG) {
        app.main_dialog = dialog;
        fill(dialog);
        center_dialog(dialog);
        ShowWindow(dialog, SW_SHOW);
        return 1;
    }
    if (message == WM_COMMAND && LOWORD(wParam) == IDCANCEL)
        EndDialog(dialog, 0);
    return 0;
}

} // namespace

int WINAPI WinMain(HINSTANCE, HINSTANCE, LPSTR, int) {
    int count = 0;
    WCHAR** const arguments = CommandLineToArgvW(GetCommandLineW(), &count);
    if (arguments == nullptr || count != 2)
        return 2;
    app.app_instance = LoadLibraryExW(arguments[1], nullptr, LOAD_LIBRARY_AS_DATAFILE);
    DialogBoxParamW(app.app_instance, MAKEINTRESOURCEW(IDD_MAIN), nullptr, dialog_proc, 0);
    return 0;
}
