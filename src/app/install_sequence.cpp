#include "app/install_sequence.h"

#include "deploy/program_files.h"
#include "package/media_table.h"
#include "resources/resource_ids.h"
#include "spooler/driver_package.h"
#include "spooler/inventory.h"
#include "spooler/tcp_port.h"
#include "state/app_state.h"
#include "state/names.h"
#include "support/dialog_text.h"
#include "support/install_log.h"
#include "support/memory.h"
#include "support/text.h"

#include <winspool.h>

#include <iterator>

namespace {

// What a status line and a port's name have room for, in characters.
constexpr size_t line_capacity = 256;

enum Stage { stage_driver, stage_port, stage_printer };

void show_stage(Stage stage, const WCHAR* name) {
    WCHAR status_line[line_capacity];
    format_text(status_line, std::size(status_line), TEXT("%s %s"), app.install_texts[stage].text, name);
    status_append(app.main_dialog, IDC_STATUS, status_line);
}

// Copies the selected candidate, once for the whole sequence. 0 on the network road without a selected row.
int take_candidate(PrinterCandidate* candidate) {
    const auto row =
        static_cast<int>(SendDlgItemMessageW(app.main_dialog, IDC_PRINTER_LIST, LB_GETCURSEL, 0, 0));
    if (app.usb_chosen != 0) {
        // The list was never shown.
        *candidate = {};
        log_write(app.log_handle, TEXT("USB \r\n"));
        return 1;
    }
    if (row < 0 || row >= app.candidate_count) {
        log_failure(TEXT("No printer selected\r\n"));
        return 0;
    }
    *candidate = app.candidates[row];
    log_line(TEXT("%s %s\r\n"), candidate->is_network != 0 ? TEXT("Net") : TEXT("USB"), candidate->address);
    return 1;
}

int deploy() {
    if (deploy_program_files(maker_name, app.driver_name_wide, app.driver.infFile, app.model_display_name, 1))
        return 1;
    log_failure(TEXT("Error setting up driver files!\r\n"));
    status_append_string(app.app_instance, app.main_dialog, IDC_STATUS, IDS_SETTING_UP_FAILED, 0);
    status_append_string(app.app_instance, app.main_dialog, IDC_STATUS, IDS_CHECK_PERMISSIONS, 0);
    return 0;
}

// A driver in place serves: start-up has seen that it has the package's version.
int install_driver() {
    if (app.driver_installed != 0)
        return 1;
    status_append(app.main_dialog, IDC_STATUS, app.install_texts[stage_driver].text);
    log_write(app.log_handle, TEXT("Install Driver...\r\n"));
    if (install_driver_package(app.driver.driverName, app.driver.infPath))
        return 1;
    log_failure(TEXT("Printer Driver install fail\r\n"));
    return 0;
}

// The name, "TRK_" and the address, goes into port_name of line_capacity characters. One too long for a port
// is refused further down.
void make_port(WCHAR* port_name, const WCHAR* wide_address) {
    char address[256];
    narrow(address, std::size(address), wide_address);
    format_text(port_name, line_capacity, TEXT("%s%S"), own_port_prefix, address);
    log_texts(port_name, TEXT("."), nullptr, nullptr);
    show_stage(stage_port, port_name);
    log_line(TEXT("Adding port %s\r\n"), port_name);
    add_tcp_port(port_name, address);
}

// The model's name with a blank and the number behind it. `name` has the room of app.queue_name, which is
// enough: the files of the model's folder were copied, so that the longest path has room for its name.
void number_queue_name(WCHAR* name, const WCHAR* model, DWORD number) {
    format_text(name, std::size(app.queue_name), TEXT("%s %d"), model, number);
}

// The number at the end of a queue's name; 0 when it has none of 2 to `limit`.
DWORD number_of_queue(const WCHAR* name, DWORD limit) {
    const WCHAR* place = name + text_length(name);
    DWORD number = 0;
    for (DWORD unit = 1; place > name && place[-1] >= '0' && place[-1] <= '9' && unit <= limit; unit *= 10)
        number += static_cast<DWORD>(*--place - '0') * unit;
    return number >= 2 && number <= limit ? number : 0;
}

// Notes which of the names that the model's queues may have are taken: taken[1] for the model's own, taken[n]
// for that with the number n.
void note_taken_names(BYTE* taken, const PRINTER_INFO_1W* queues, DWORD count, const WCHAR* model) {
    for (DWORD index = 0; index < count; ++index) {
        const WCHAR* const name = queues[index].pName != nullptr ? queues[index].pName : TEXT("");
        if (lstrcmpW(name, model) == 0)
            taken[1] = 1;
        const DWORD number = number_of_queue(name, count + 1);
        if (number == 0)
            continue;
        WCHAR numbered[std::size(app.queue_name)];
        number_queue_name(numbered, model, number);
        if (lstrcmpW(name, numbered) == 0)
            taken[number] = 1;
    }
}

// The model's name, or with " 2", " 3", ... behind it: the first that no queue has, by one look at all of
// them. `count` queues can't take all of the numbers up to one more.
void choose_queue_name() {
    WCHAR model[std::size(app.queue_name)];
    format_text(model, std::size(model), TEXT("%S"), app.model_display_name);
    DWORD count = 0;
    void* const queues = enumerate_printers(1, &count);
    auto* const taken = static_cast<BYTE*>(allocate_bytes(size_t{count} + 3));
    DWORD number = 1;
    if (taken != nullptr) { // without memory the spooler refuses a name that is taken
        note_taken_names(taken, static_cast<const PRINTER_INFO_1W*>(queues), count, model);
        while (taken[number] != 0)
            ++number;
    }
    release_bytes(taken);
    release_bytes(queues);
    if (number == 1)
        copy_text(app.queue_name, std::size(app.queue_name), model);
    else
        number_queue_name(app.queue_name, model, number);
}

void make_queue(WCHAR* port_name) {
    WCHAR processor[] = TEXT("winprint");
    WCHAR datatype[] = TEXT("RAW");
    PRINTER_INFO_2W printer_info = {};
    printer_info.pPrinterName = app.queue_name;
    printer_info.pPortName = port_name;
    printer_info.pDriverName = app.driver_name_wide;
    printer_info.pPrintProcessor = processor;
    printer_info.pDatatype = datatype;
    printer_info.Attributes = PRINTER_ATTRIBUTE_LOCAL | PRINTER_ATTRIBUTE_RAW_ONLY;
    const HANDLE printer = AddPrinterW(nullptr, 2, reinterpret_cast<BYTE*>(&printer_info));
    if (printer == nullptr) {
        log_failure(TEXT("AddPrinter %d\r\n"), GetLastError());
        return;
    }
    load_media_table(printer);
    ClosePrinter(printer);
}

} // namespace

void install_worker(void*) {
    app.worker_busy = 1;
    if (!run_installer())
        app.install_failed = 1;
    app.worker_busy = 0;
    SendMessageW(app.main_dialog, setup_message, worker_finished, 0);
    // The dialog can't be closed before it knows; a report that was lost on its way goes out again.
    if (app.exit_requested == 0)
        PostMessageW(app.main_dialog, setup_message, worker_finished, 0);
}

int run_installer() {
    log_write(app.log_handle, TEXT("run_installer...\r\n"));
    PrinterCandidate candidate;
    if (!take_candidate(&candidate) || !deploy() || !install_driver())
        return 0;
    if (app.usb_chosen != 0)
        return 1;
    WCHAR port_name[line_capacity];
    make_port(port_name, candidate.address);
    choose_queue_name();
    show_stage(stage_printer, app.queue_name);
    log_line(TEXT("Adding printer %s\r\n"), app.queue_name);
    make_queue(port_name);
    return 1;
}
