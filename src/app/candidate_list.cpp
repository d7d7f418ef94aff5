#include "app/candidate_list.h"

#include "discovery/network_search.h"
#include "resources/resource_ids.h"
#include "state/app_state.h"
#include "support/install_log.h"
#include "support/text.h"

#include <failed_step.h>

#include <iterator>

namespace {

constexpr size_t row_capacity = 100;
constexpr INT name_column = 64; // dialog units
constexpr LONG list_edges = 4;  // pixels
constexpr int row_edges = 4;    // pixels

// The next free record, or null with a line in the log.
PrinterCandidate* next_candidate() {
    if (app.candidate_count < candidate_capacity)
        return &app.candidates[app.candidate_count];
    log_write(app.log_handle, TEXT("Candidate list full\r\n"));
    return nullptr;
}

HWND printer_list() {
    return GetDlgItem(app.main_dialog, IDC_PRINTER_LIST);
}

// What a column has when so many of them share the list, in pixels; 0 without an answer.
int column_width(HWND list, int columns) {
    RECT place;
    return GetWindowRect(list, &place) ? (place.right - place.left - list_edges) / columns : 0;
}

void set_columns(HWND list, int columns) {
    SendMessageW(list, LB_SETCOLUMNWIDTH, static_cast<WPARAM>(column_width(list, columns)), 0);
}

// What a row takes, in pixels.
int row_width(HWND list, const WCHAR* row) {
    RECT name = {0, 0, name_column, 0};
    MapDialogRect(app.main_dialog, &name);
    const INT stop = name.right;
    const HDC context = GetDC(list);
    const HGDIOBJ font = reinterpret_cast<HGDIOBJ>(SendMessageW(list, WM_GETFONT, 0, 0));
    const HGDIOBJ before = SelectObject(context, font);
    const DWORD size = GetTabbedTextExtentW(context, row, static_cast<int>(text_length(row)), 1, &stop);
    SelectObject(context, before);
    ReleaseDC(list, context);
    return LOWORD(size) + row_edges;
}

// Puts the next free record's row into the list; only then does the record count, since the selected row
// tells which record is meant. Rows stand in two columns until one of them needs the whole list's width.
void add_row(const WCHAR* row) {
    const HWND list = printer_list();
    if (row_width(list, row) > column_width(list, 2))
        set_columns(list, 1);
    const LRESULT index = SendMessageW(list, LB_ADDSTRING, 0, reinterpret_cast<LPARAM>(row));
    if (index < 0 || (list == nullptr && app.main_dialog != nullptr))
        step_failed(TEXT("adding a row to the list of printers"));
    else
        ++app.candidate_count;
}

} // namespace

// A list box of several columns scrolls sideways, and has a bar for it only when it was made so: another one
// takes the place of the template's, with its styles.
void make_list_scroll(HWND dialog) {
    const HWND old = GetDlgItem(dialog, IDC_PRINTER_LIST);
    RECT place;
    if (!GetWindowRect(old, &place))
        return;
    MapWindowPoints(nullptr, dialog, reinterpret_cast<POINT*>(&place), 2);
    const auto style = static_cast<DWORD>(GetWindowLongPtrW(old, GWL_STYLE));
    const auto extended_style = static_cast<DWORD>(GetWindowLongPtrW(old, GWL_EXSTYLE));
    const HWND list =
        CreateWindowExW(extended_style, TEXT("LISTBOX"), nullptr, style | WS_HSCROLL | WS_VSCROLL, place.left,
                        place.top, place.right - place.left, place.bottom - place.top, dialog,
                        reinterpret_cast<HMENU>(UINT_PTR{IDC_PRINTER_LIST}), app.app_instance, nullptr);
    if (list == nullptr)
        return;
    SendMessageW(list, WM_SETFONT, static_cast<WPARAM>(SendMessageW(old, WM_GETFONT, 0, 0)), 0);
    SetWindowPos(list, old, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOSIZE | SWP_NOACTIVATE);
    DestroyWindow(old);
}

int search_printers(const char* model) {
    const HWND list = printer_list();
    INT stop = name_column;
    SendMessageW(list, LB_SETTABSTOPS, 1, reinterpret_cast<LPARAM>(&stop));
    set_columns(list, 2);
    // The search keeps this thread for seconds, in which nothing is painted.
    RedrawWindow(app.main_dialog, nullptr, nullptr, RDW_UPDATENOW | RDW_ALLCHILDREN);
    return find_slp(model, add_candidate);
}

void add_candidate(const char* address, const char* name) {
    if (candidate_known(address))
        return;
    PrinterCandidate* const candidate = next_candidate();
    if (candidate == nullptr)
        return;
    candidate->is_network = address[0] != 'U';
    widen(candidate->address, std::size(candidate->address), address);
    widen(candidate->printer_name, std::size(candidate->printer_name), name);
    WCHAR row[row_capacity];
    format_text(row, std::size(row), TEXT("%s\t%s"), candidate->address, candidate->printer_name);
    add_row(row);
}

int candidate_known(const char* address) {
    WCHAR wanted[std::size(PrinterCandidate{}.address)];
    widen(wanted, std::size(wanted), address);
    for (int index = 0; index < app.candidate_count; ++index) {
        if (same_text(app.candidates[index].address, wanted)) {
            log_line(TEXT("%S already in list\r\n"), address);
            return 1;
        }
    }
    return 0;
}

void add_usb_candidate(const WCHAR* port, const WCHAR* name) {
    if (text_length(port) >= std::size(PrinterCandidate{}.address))
        return;
    PrinterCandidate* const candidate = next_candidate();
    if (candidate == nullptr)
        return;
    candidate->is_network = 0;
    copy_text(candidate->address, std::size(candidate->address), port);
    copy_text(candidate->printer_name, std::size(candidate->printer_name), name);
    WCHAR row[row_capacity];
    format_text(row, std::size(row), TEXT("USB\t%s"), candidate->printer_name);
    add_row(row);
}
