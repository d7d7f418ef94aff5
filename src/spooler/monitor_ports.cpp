#include "spooler/monitor_ports.h"

#include <objbase.h>
#include <winspool.h>

#include "spooler/port_monitor.h"
#include "support/install_log.h"
#include "support/known_folder.h"
#include "support/text.h"

#include <failed_step.h>

#include <algorithm>
#include <cstring>
#include <iterator>

namespace {

// The monitors' configuration blocks. Numbers are 32 bits wide, little-endian; texts are 16-bit characters.
// What isn't named here is the monitor's own and goes back as it came.
//
//          add_port  add_dryx_port
// number         0         0        shown in the log, as the next two
// number         4         4
// text           8         8        1,024 characters at most
// text        2056                  a short address, 16 characters with the terminator
// number      3080      2056        1
// number      4108      3084        1
// number      4112                  1
// text        4116                  the folder, 512 characters with the terminator
// text        5140      3088        the address, 512 characters; the second monitor's may lack a terminator
// number      6164                  whether the address is short
constexpr size_t port_block_size = 6168;
constexpr size_t dryx_block_size = 4112;
constexpr size_t text_offset = 8;
constexpr size_t text_characters = 1024;
constexpr size_t short_address_characters = 16;
constexpr size_t address_characters = 512;

// One exchange with a monitor about one port.
struct Exchange {
    HANDLE monitor;
    const WCHAR* port_name;
    BYTE* block;
    DWORD block_size;
};

DWORD get_number(const BYTE* place) {
    return place[0] | DWORD{place[1]} << 8 | DWORD{place[2]} << 16 | DWORD{place[3]} << 24;
}

void put_number(BYTE* place, DWORD value) {
    for (int i = 0; i < 4; ++i)
        place[i] = static_cast<BYTE>(value >> (8 * i));
}

// The text and, where the field has room for it, a terminator; the rest of the field stays.
void put_text(BYTE* place, size_t field_characters, const WCHAR* text) {
    const size_t count = std::min(text_length(text) + 1, field_characters);
    std::memcpy(place, text, count * sizeof(WCHAR));
}

// `capacity` counts the terminator; what is beyond it is cut.
void put_address(BYTE* place, size_t field_characters, size_t capacity, const char* address) {
    WCHAR text[address_characters + 1];
    widen(text, capacity, address);
    put_text(place, field_characters, text);
}

BOOL add_monitor(const WCHAR* name, const WCHAR* dll) {
    WCHAR names[2][std::size(MonitorInfo{}.name)]; // the record's fields take texts that may be written to
    WCHAR environment[] = TEXT("Windows NT x86");
    copy_text(names[0], std::size(names[0]), name);
    copy_text(names[1], std::size(names[1]), dll);
    MONITOR_INFO_2W monitor = {};
    monitor.pName = names[0];
    monitor.pEnvironment = environment;
    monitor.pDLLName = names[1];
    return AddMonitorW(nullptr, 2, reinterpret_cast<BYTE*>(&monitor));
}

// The monitor's transceive interface, or null, with the failure in the log.
HANDLE open_monitor(const WCHAR* monitor_name, const WCHAR* port_name) {
    log_line(TEXT("\r\nadd_port [%s] as [%s]\r\n"), port_name, monitor_name);
    WCHAR name[256];
    const int fits = format_text(name, std::size(name), TEXT(",XcvMonitor %s"), monitor_name) &&
                     text_length(port_name) < MAX_PORTNAME_LEN;
    log_line(TEXT("%s\r\n"), name);
    const HANDLE monitor = fits ? open_port_monitor(name) : nullptr;
    if (monitor != nullptr)
        return monitor;
    log_failure(TEXT("failed to open printer for port %s\r\n"), port_name);
    return nullptr;
}

void fetch_configuration(const Exchange* exchange, PORT_DATA_1* request) {
    const auto name_bytes = static_cast<DWORD>((text_length(request->sztPortName) + 1) * sizeof(WCHAR));
    DWORD needed = 0;
    DWORD status = 0;
    SetLastError(ERROR_SUCCESS);
    const BOOL result =
        XcvDataW(exchange->monitor, TEXT("GetConfig"), reinterpret_cast<BYTE*>(request->sztPortName),
                 name_bytes, exchange->block, exchange->block_size, &needed, &status);
    log_line(TEXT("XcvData GetConfig %d %d %x %x (%d) [%ls]\r\n"), result, needed, status, GetLastError(),
             exchange->block_size, request->sztPortName);
    if (!result || status != ERROR_SUCCESS)
        line_failed();
    WCHAR text[text_characters + 1] = {};
    std::memcpy(text, exchange->block + text_offset, text_characters * sizeof(WCHAR));
    log_line(TEXT("portConfig %d %d [%ls]\r\n"), get_number(exchange->block), get_number(exchange->block + 4),
             text);
}

// Each command goes out whatever the monitor answered to the one before.
void create_port(const Exchange* exchange) {
    PORT_DATA_1 request = {};
    copy_text(request.sztPortName, std::size(request.sztPortName), exchange->port_name);
    send_add_port(exchange->monitor, &request);
    fetch_configuration(exchange, &request);
}

void send_configuration(const Exchange* exchange) {
    DWORD needed = 0;
    DWORD status = 0;
    SetLastError(ERROR_SUCCESS);
    const BOOL result = XcvDataW(exchange->monitor, TEXT("SetConfig"), exchange->block, exchange->block_size,
                                 nullptr, 0, &needed, &status);
    log_line(TEXT("XcvData SetConfig %d %d %x %x (%d)\r\n"), result, needed, status, GetLastError(),
             exchange->block_size);
    if (!result || status != ERROR_SUCCESS)
        line_failed();
}

} // namespace

int install_monitor(const MonitorInfo* info) {
    log_line(TEXT("Installing Monitor\r\n"));
    if (add_monitor(info->name, info->DLL32))
        return 1;
    log_failure(TEXT("Failed to install Montior!\r\n"));
    return 0;
}

int install_dryx_monitor() {
    return add_monitor(TEXT("DRYX Port"), TEXT("dryxmon.dll")) != 0;
}

int add_port(const WCHAR* monitor_name, const WCHAR* port_name, const char* address, const WCHAR* folder,
             const WCHAR* subfolder, DWORD short_address) {
    BYTE block[port_block_size] = {};
    const Exchange exchange = {open_monitor(monitor_name, port_name), port_name, block, sizeof block};
    if (exchange.monitor == nullptr)
        return 0;
    create_port(&exchange);
    put_number(block + 6164, short_address);
    if (short_address)
        put_address(block + 2056, short_address_characters, short_address_characters, address);
    else
        put_address(block + 5140, address_characters, address_characters, address);
    put_number(block + 3080, 1);
    put_number(block + 4108, 1);
    put_number(block + 4112, 1);
    WCHAR path[program_files_path_capacity];
    if (build_program_files_path(path, folder, subfolder))
        put_text(block + 4116, program_files_path_capacity, path);
    send_configuration(&exchange);
    ClosePrinter(exchange.monitor);
    return 1;
}

int add_dryx_port(const WCHAR* monitor_name, const WCHAR* port_name, const char* address) {
    BYTE block[dryx_block_size] = {};
    const Exchange exchange = {open_monitor(monitor_name, port_name), port_name, block, sizeof block};
    if (exchange.monitor == nullptr)
        return 0;
    create_port(&exchange);
    put_number(block + 2056, 1);
    put_number(block + 3084, 1);
    put_address(block + 3088, address_characters, address_characters + 1, address);
    send_configuration(&exchange);
    ClosePrinter(exchange.monitor);
    return 1;
}

int build_program_files_path(WCHAR* out, const WCHAR* folder, const WCHAR* subfolder) {
    out[0] = 0;
    WCHAR* program_files = find_known_folder(FOLDERID_ProgramFiles, TEXT("ProgramFiles"));
    if (program_files == nullptr)
        return 0;
    const int fits =
        format_text(out, program_files_path_capacity, TEXT("%s\\%s\\%s"), program_files, folder, subfolder);
    CoTaskMemFree(program_files);
    if (!fits)
        out[0] = 0;
    return fits;
}
