#include "removal/installed_printers.h"

#include <winspool.h>

#include "discovery/usb_search.h"
#include "removal/service_control.h"
#include "removal/usb_ports.h"
#include "spooler/inventory.h"
#include "spooler/tcp_port.h"
#include "state/names.h"
#include "support/dialog_text.h"
#include "support/install_log.h"
#include "support/memory.h"
#include "support/text.h"

#include <iterator>

namespace {

constexpr size_t line_capacity = 512;
constexpr size_t port_bytes = 512;
constexpr size_t usb_letters = 3; // in front of the number of a USB port: "USB001"

// Null text of a record counts as empty.
const WCHAR* text_of(const WCHAR* field) {
    return field != nullptr ? field : TEXT("");
}

// Nothing but the first letter tells; a lower-case one doesn't.
int is_usb_port(const WCHAR* port_name) {
    return text_of(port_name)[0] == 'U';
}

// The number behind the letters of a USB port's name; 0 when there is none or it needs more than 32 bits.
DWORD usb_port_number(const char* port_name) {
    if (ansi_length(port_name) <= usb_letters)
        return 0;
    const char* text = port_name + usb_letters;
    while (*text == ' ' || (*text >= '\t' && *text <= '\r'))
        ++text;
    const int negative = *text == '-';
    if (*text == '-' || *text == '+')
        ++text;
    DWORDLONG number = 0;
    for (; *text >= '0' && *text <= '9'; ++text) {
        number = number * 10 + static_cast<DWORDLONG>(*text - '0');
        if (number > 0xffffffff)
            return 0;
    }
    return static_cast<DWORD>(negative ? 0 - number : number);
}

int device_on_port(const WCHAR* port_name) {
    log_line(TEXT("no USB Portmon details\r\n"));
    char name[port_bytes];
    narrow(name, std::size(name), port_name);
    return usb_device_check(usb_port_number(name)) == 1;
}

// The line of a queue on a USB port. The mark goes by the service's device list, or, where the print monitor
// knows no serial, by the port's number.
void form_usb_line(WCHAR* line, const PRINTER_INFO_2W* queue, DWORD* connected, int show_type) {
    const WCHAR* type = show_type ? TEXT("- USB ") : TEXT("");
    WCHAR serial[usb_id_capacity] = {};
    WCHAR device_id[usb_id_capacity] = {};
    int present = 0;
    if (read_usb_port_ids(queue->pPortName, serial, device_id)) {
        present = check_usb_connection(device_id);
        format_text(line, line_capacity, present ? TEXT("%s %s- %d jobs *") : TEXT("%s %s- %d jobs"),
                    queue->pPrinterName, type, queue->cJobs);
    } else {
        present = device_on_port(queue->pPortName);
        format_text(line, line_capacity, TEXT("%s %s- %d jobs %s"), queue->pPrinterName, type, queue->cJobs,
                    present ? TEXT("*") : TEXT(""));
    }
    if (present)
        *connected = 1;
}

void list_queue(const PRINTER_INFO_2W* queue, HWND dialog, int control, DWORD* connected, int show_type) {
    WCHAR line[line_capacity];
    if (is_usb_port(queue->pPortName))
        form_usb_line(line, queue, connected, show_type);
    else
        format_text(line, std::size(line), TEXT("%s %s- %d jobs"), queue->pPrinterName,
                    show_type ? TEXT("- Net ") : TEXT(""), queue->cJobs);
    log_text(line);
    char text[512];
    narrow(text, std::size(text), line);
    list_add_ansi(dialog, control, text);
}

int delete_opened_queue(HANDLE printer, const WCHAR* name) {
    if (!DeletePrinter(printer)) {
        log_failure(TEXT("Could not delete %s %x\r\n"), name, GetLastError());
        return 0;
    }
    log_line(TEXT("Deleted %s\r\n"), name);
    return 1;
}

int delete_queue(const WCHAR* queue_name) {
    // An empty name fails; null would open the print server itself.
    auto* name = const_cast<WCHAR*>(text_of(queue_name));
    PRINTER_DEFAULTSW access = {};
    access.DesiredAccess = PRINTER_ALL_ACCESS;
    HANDLE printer = nullptr;
    if (!OpenPrinterW(name, &printer, &access)) {
        log_failure(TEXT("failed to open printer %s %x\r\n"), name, GetLastError());
        return 0;
    }
    const int deleted = delete_opened_queue(printer, name);
    ClosePrinter(printer);
    return deleted;
}

int delete_network_port(const WCHAR* port_name) {
    char name[port_bytes];
    if (narrow_name(name, std::size(name), port_name)) // another name would be another device's
        return delete_tcp_port(name);
    SetLastError(ERROR_BUFFER_OVERFLOW);
    return 0;
}

// The spooler lets go of a port only after a restart.
void delete_port_of(const WCHAR* port_name) {
    DoStopSvc(TEXT("Spooler"));
    DoStartSvc(TEXT("Spooler"));
    if (is_usb_port(port_name)) {
        log_line(TEXT("Dont Delete port %s\r\n"), port_name);
        return;
    }
    log_line(TEXT("Delete port %s\r\n"), port_name);
    if (!delete_network_port(port_name))
        log_failure(TEXT("Could not delete port %s %x\r\n"), port_name, GetLastError());
}

// The underscores go while the text is 16 bits wide: in 8-bit text they may be half of another character.
void fill_record(QueuePortRecord* record, const WCHAR* port_name) {
    const WCHAR* name = text_of(port_name);
    WCHAR text[std::size(QueuePortRecord{}.port_text)];
    record->own_port = starts_with(name, own_port_prefix) ? 1 : 0;
    copy_text(text, std::size(text), record->own_port ? name + (std::size(own_port_prefix) - 1) : name);
    for (WCHAR* letter = text; record->own_port && *letter != 0; ++letter)
        if (*letter == '_')
            *letter = '.';
    narrow(record->port_text, std::size(record->port_text), text);
}

} // namespace

int list_installed_printers(const WCHAR* driver_name, HWND dialog, int control, int mode, DWORD* connected,
                            int show_type) {
    *connected = 0;
    int result = 0;
    DWORD count = 0;
    void* records = enumerate_printers(2, &count);
    const auto* queues = static_cast<const PRINTER_INFO_2W*>(records);
    for (DWORD i = 0; i < count; ++i) {
        const PRINTER_INFO_2W* queue = &queues[i];
        if (lstrcmpW(text_of(queue->pDriverName), driver_name) != 0)
            continue;
        if (mode == list_queues) {
            list_queue(queue, dialog, control, connected, show_type);
            if (result == 0)
                result = 1;
            if (queue->cJobs > 0)
                result = 2;
        } else if (!delete_queue(queue->pPrinterName)) {
            result = 1;
        } else if (mode == delete_queues_and_ports) {
            delete_port_of(queue->pPortName);
        }
    }
    release_bytes(records);
    return result;
}

DWORD checkPrinters(QueuePortRecord* records, DWORD max, const WCHAR* driver_name) {
    log_line(TEXT("checkPrinters\n"));
    DWORD filled = 0;
    DWORD count = 0;
    void* list = enumerate_printers(2, &count);
    const auto* queues = static_cast<const PRINTER_INFO_2W*>(list);
    for (DWORD i = 0; i < count && filled < max; ++i) {
        if (lstrcmpW(text_of(queues[i].pDriverName), driver_name) != 0)
            continue;
        log_line(TEXT("Match\n"));
        fill_record(&records[filled++], queues[i].pPortName);
    }
    release_bytes(list);
    return filled;
}
