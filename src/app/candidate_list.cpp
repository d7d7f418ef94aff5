#include "app/candidate_list.h"

#include "discovery/network_search.h"
#include "resources/resource_ids.h"
#include "state/app_state.h"
#include "support/dialog_text.h"
#include "support/install_log.h"
#include "support/text.h"

#include <iterator>

namespace {

constexpr size_t row_capacity = 100;
constexpr INT name_column = 64; // dialog units
constexpr LONG list_edge = 2;   // pixels

// The next free record, or null with a line in the log.
PrinterCandidate* next_candidate() {
    if (app.candidate_count < candidate_capacity)
        return &app.candidates[app.candidate_count];
    log_write(app.log_handle, TEXT("Candidate list full\r\n"));
    return nullptr;
}

// Two columns of rows share the list: its usual ones are so narrow that they cut the names.
void set_columns(HWND list) {
    INT stop = name_column;
    SendMessageW(list, LB_SETTABSTOPS, 1, reinterpret_cast<LPARAM>(&stop));
    RECT place;
    if (GetWindowRect(list, &place))
        SendMessageW(list, LB_SETCOLUMNWIDTH, static_cast<WPARAM>((place.right - place.left) / 2 - list_edge),
                     0);
}

} // namespace

int search_printers(const char* model) {
    set_columns(GetDlgItem(app.main_dialog, IDC_PRINTER_LIST));
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
    list_add(app.main_dialog, IDC_PRINTER_LIST, row);
    ++app.candidate_count;
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
    list_add(app.main_dialog, IDC_PRINTER_LIST, row);
    ++app.candidate_count;
}
