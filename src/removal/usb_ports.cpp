#include "removal/usb_ports.h"

#include <winspool.h>

#include "spooler/inventory.h"
#include "support/install_log.h"
#include "support/memory.h"
#include "support/registry_text.h"
#include "support/text.h"

#include <cstdio>
#include <iterator>

namespace {

constexpr size_t line_capacity = 256;
constexpr size_t key_path_capacity = 512;
constexpr DWORD value_bytes = 8192;
constexpr size_t value_capacity = value_bytes / sizeof(WCHAR) + 1;

// What stands behind the element of the device path that names the product, or null.
const WCHAR* find_serial(const WCHAR* device_path) {
    const WCHAR* product = find_text(device_path, TEXT("PID"));
    const WCHAR* separator = product != nullptr ? find_text(product, TEXT("\\")) : nullptr;
    return separator != nullptr ? separator + 1 : nullptr;
}

int read_serial(HKEY key, WCHAR* serial) {
    WCHAR value[value_capacity];
    if (read_registry_text(key, TEXT("Parent Device Id"), value, value_bytes) != ERROR_SUCCESS) {
        log_line(TEXT("error: Read Parent Device Id\n"));
        std::perror("Read Parent Device Id");
        return 0;
    }
    log_line_within(line_capacity, TEXT("Parent Device Id: [%s]\n"), value);
    const WCHAR* found = find_serial(value);
    if (found == nullptr)
        return 0;
    copy_text(serial, usb_id_capacity, found);
    log_line_within(line_capacity, TEXT("found: [%s]\n"), found);
    return 1;
}

void read_device_id(HKEY key, WCHAR* device_id) {
    WCHAR value[value_capacity];
    if (read_registry_text(key, TEXT("Device Id"), value, value_bytes) != ERROR_SUCCESS) {
        log_line(TEXT("error: Read Device Id\n"));
        std::perror("Read Device Id");
        return;
    }
    log_line_within(line_capacity, TEXT("Device Id: [%s]\n"), value);
    copy_text(device_id, usb_id_capacity, value);
}

// The service's values are named by their numbers. One that can't be read ends the search.
int find_present_device(HKEY key, DWORD count, const WCHAR* device_id) {
    for (DWORD i = 0; i < count; ++i) {
        WCHAR name[16];
        WCHAR value[value_capacity];
        format_text(name, std::size(name), TEXT("%d"), i);
        if (read_registry_text(key, name, value, value_bytes) != ERROR_SUCCESS) {
            log_line(TEXT("error: Device %d\n"), i);
            return 0;
        }
        log_line_within(line_capacity, TEXT("Device %d: [%s] [%d]\n"), i, value, i);
        if (lstrcmpW(device_id, value) == 0) {
            log_line(TEXT("device connceted\n"));
            return 1;
        }
    }
    return 0;
}

int search_service(HKEY key, const WCHAR* device_id) {
    DWORD count = 0;
    if (!read_registry_number(key, TEXT("Count"), 0, &count)) {
        log_line(TEXT("error: Count\n"));
        return 0;
    }
    log_line(TEXT("count: %d\n"), count);
    return find_present_device(key, count, device_id);
}

int report_port(const PORT_INFO_2W* port, UsbPortFound found) {
    log_line_within(line_capacity, TEXT("%d:%s,%s,%s,%d\r\n"), 0, port->pDescription, port->pPortName,
                    port->pMonitorName, port->fPortType);
    WCHAR serial[usb_id_capacity];
    if (!read_usb_port_ids(port->pPortName, serial, nullptr) || found == nullptr)
        return 0;
    char port_text[512];
    char serial_text[512];
    narrow(port_text, std::size(port_text), port->pPortName);
    narrow(serial_text, std::size(serial_text), serial);
    found(port_text, serial_text);
    return 1;
}

} // namespace

int read_usb_port_ids(const WCHAR* port_name, WCHAR* serial, WCHAR* device_id) {
    WCHAR path[key_path_capacity];
    const int fits = format_text(
        path, std::size(path),
        TEXT("SYSTEM\\CurrentControlSet\\Control\\Print\\Monitors\\USB Monitor\\Ports\\%s"), port_name);
    log_line_within(line_capacity, TEXT("[%s]\n"), path);
    HKEY key = nullptr;
    const LONG result =
        fits ? RegOpenKeyExW(HKEY_LOCAL_MACHINE, path, 0, KEY_READ, &key) : LONG{ERROR_FILENAME_EXCED_RANGE};
    if (result != ERROR_SUCCESS) {
        log_line_within(line_capacity, TEXT("failed to open %d %s\r\n"), result, path);
        return 0;
    }
    const int found = read_serial(key, serial);
    if (device_id != nullptr)
        read_device_id(key, device_id);
    RegCloseKey(key);
    return found;
}

int check_usb_connection(const WCHAR* device_id) {
    constexpr WCHAR path[] = TEXT("SYSTEM\\CurrentControlSet\\Services\\usbprint\\Enum");
    log_line_within(line_capacity, TEXT("check connection %s\n"), device_id);
    log_line(TEXT("[%s]\n"), path);
    HKEY key = nullptr;
    const LONG result = RegOpenKeyExW(HKEY_LOCAL_MACHINE, path, 0, KEY_READ, &key);
    if (result != ERROR_SUCCESS) {
        log_line(TEXT("failed to open %d %s\n"), result, path);
        return 0;
    }
    const int present = search_service(key, device_id);
    RegCloseKey(key);
    return present;
}

int find_port_by_description(const WCHAR* description, UsbPortFound found) {
    DWORD count = 0;
    void* records = enumerate_ports(2, &count);
    const auto* ports = static_cast<const PORT_INFO_2W*>(records);
    int calls = 0;
    for (DWORD i = 0; i < count; ++i) {
        const WCHAR* text = ports[i].pDescription != nullptr ? ports[i].pDescription : TEXT("");
        if (lstrcmpW(text, description) == 0) {
            calls = report_port(&ports[i], found);
            break; // whatever became of it
        }
    }
    release_bytes(records);
    return calls;
}
