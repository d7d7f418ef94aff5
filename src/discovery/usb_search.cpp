#include "discovery/usb_search.h"

#include "discovery/usb_walk.h"
#include "state/app_state.h"
#include "support/install_log.h"
#include "support/registry_text.h"
#include "support/text.h"

#include <iterator>

namespace {

constexpr size_t path_capacity = 256;
constexpr size_t instance_capacity = 100;
constexpr size_t key_path_capacity = 4000;
constexpr DWORD base_name_bytes = 4096;
constexpr DWORD narrow_interface_data =
    28; // cbSize in a 32-bit program, which the log sets beside the real one

// "&PID_" or "&pid_", the four digits of the product id and one separator.
constexpr size_t product_id_length = 10;

struct Search {
    const WCHAR* fragment;
    UsbPrinterFound found;
    int count;
};

// The text behind a product id up to a '#', which ends it in a device path. Capital letters on demand: an
// identifier has them by itself.
void take_instance(const WCHAR* product_id, int capitals, WCHAR* instance) {
    size_t used = 0;
    if (product_id != nullptr && text_length(product_id) >= product_id_length) {
        const WCHAR* text = product_id + product_id_length;
        for (; text[used] != 0 && text[used] != '#' && used + 1 < instance_capacity; ++used)
            instance[used] = capitals ? change_case(text[used], 'a', 'A') : text[used];
    }
    instance[used] = 0;
}

int visit_fragment(const UsbInterfaceView* view, void* context) {
    auto* search = static_cast<Search*>(context);
    if (find_text(view->path, search->fragment) == nullptr)
        return 0;
    WCHAR path[path_capacity];
    WCHAR instance[instance_capacity];
    copy_text(path, std::size(path), view->path);
    const WCHAR* product_id = find_text(view->parent_id, TEXT("&PID_"));
    const int in_parent = product_id != nullptr;
    if (!in_parent)
        product_id = find_text(path, TEXT("&pid"));
    take_instance(product_id, !in_parent, instance);
    if (search->found != nullptr)
        search->found(path, instance);
    ++search->count;
    return 0;
}

// The interface's key of the class, below which its port is described. Changes the path: a key's name can't
// hold the backslashes.
int form_key_path(WCHAR* out, size_t capacity, WCHAR* path) {
    for (WCHAR* letter = path; *letter != 0; ++letter)
        if (*letter == '\\')
            *letter = '#';
    const GUID& id = usb_printer_class;
    return format_text(out, capacity,
                       TEXT("System\\CurrentControlSet\\Control\\DeviceClasses\\"
                            "{%08lx-%04x-%04x-%02x%02x-%02x%02x%02x%02x%02x%02x}\\%s\\#\\Device Parameters"),
                       id.Data1, id.Data2, id.Data3, id.Data4[0], id.Data4[1], id.Data4[2], id.Data4[3],
                       id.Data4[4], id.Data4[5], id.Data4[6], id.Data4[7], path);
}

int key_has_port(HKEY key, DWORD port_number) {
    WCHAR base_name[base_name_bytes / sizeof(WCHAR) + 1];
    if (read_registry_text(key, TEXT("Base Name"), base_name, base_name_bytes) != ERROR_SUCCESS) {
        log_line(TEXT("Base Name read failed\r\n"));
        return 0;
    }
    log_text(base_name);
    if (find_text(base_name, TEXT("USB")) == nullptr)
        return 0;
    DWORD number = 0;
    if (!read_registry_number(key, TEXT("Port Number"), sizeof number, &number)) {
        log_line(TEXT("Port Number read failed\r\n"));
        return 0;
    }
    log_line(TEXT("port %d<>%d\n"), number, port_number);
    return number == port_number;
}

int visit_port(const UsbInterfaceView* view, void* context) {
    log_line(TEXT("Device # %u has the name %s\n"), view->index, view->path);
    WCHAR key_path[key_path_capacity];
    const int fits = form_key_path(key_path, std::size(key_path), view->path);
    log_text(key_path);
    HKEY key = nullptr;
    if (!fits || RegOpenKeyExW(HKEY_LOCAL_MACHINE, key_path, 0, KEY_READ, &key) != ERROR_SUCCESS) {
        log_line(TEXT("key failed\r\n"));
        return 0;
    }
    log_line(TEXT("key opened\r\n"));
    const int matches = key_has_port(key, *static_cast<const DWORD*>(context));
    RegCloseKey(key);
    return matches;
}

} // namespace

int usb_search(const WCHAR* fragment, UsbPrinterFound found) {
    log_line(TEXT("\r\nusb_search\r\n"));
    const HDEVINFO set = open_usb_printers();
    if (set == INVALID_HANDLE_VALUE) {
        log_failure(TEXT("usb_search invalid handle\r\n"));
        return -1;
    }
    Search search = {fragment, found, 0};
    walk_usb_printers(set, 0, visit_fragment, &search);
    SetupDiDestroyDeviceInfoList(set);
    return search.count;
}

int usb_device_check(DWORD port_number) {
    log_line(TEXT("\r\nusb_device_check\r\n"));
    const HDEVINFO set = open_usb_printers();
    if (set == INVALID_HANDLE_VALUE) {
        log_failure(TEXT("usb_device_check invalid handle\r\n"));
        return -1;
    }
    const DWORD data_size = sizeof(SP_DEVICE_INTERFACE_DATA);
    log_line(TEXT("devInfoData size %d (%d)\r\n"), data_size, narrow_interface_data);
    const int found = walk_usb_printers(set, 1, visit_port, &port_number);
    SetupDiDestroyDeviceInfoList(set);
    log_line(TEXT("exit usb_device_check\r\n"));
    return found;
}
