#include "discovery/usb_walk.h"

#include <cfgmgr32.h>

#include "support/install_log.h"
#include "support/memory.h"

namespace {

// What all interfaces of one walk share.
struct Walk {
    HDEVINFO set;
    int detailed;
    UsbInterfaceVisit visit;
    void* context;
};

void log_parent_and_drivers(const Walk* walk, SP_DEVINFO_DATA* device, const WCHAR* parent_id, int fetched) {
    if (fetched)
        log_line(TEXT("%s\n"), parent_id);
    for (DWORD index = 0;; ++index) {
        SP_DRVINFO_DATA_W driver = {};
        driver.cbSize = sizeof driver;
        if (!SetupDiEnumDriverInfoW(walk->set, device, SPDIT_COMPATDRIVER, index, &driver))
            break;
        log_line(TEXT("SetupDiEnumDriverInfo %d %s\n"), index, driver.Description);
    }
    SetupDiDestroyDriverInfoList(walk->set, device, SPDIT_COMPATDRIVER);
    log_line(TEXT("get usb device details\r\n"));
}

int visit_with_detail(const Walk* walk, SP_DEVICE_INTERFACE_DATA* data, DWORD size, UsbInterfaceView* view) {
    if (size < sizeof(SP_DEVICE_INTERFACE_DETAIL_DATA_W))
        return 0; // the call that asks for the size failed
    auto* detail = static_cast<SP_DEVICE_INTERFACE_DETAIL_DATA_W*>(allocate_bytes(size));
    if (detail == nullptr)
        return 0;
    detail->cbSize = sizeof *detail; // of the fixed part, whatever the path's length
    int ended = 0;
    if (SetupDiGetDeviceInterfaceDetailW(walk->set, data, detail, size, &size, nullptr)) {
        view->path = detail->DevicePath;
        ended = walk->visit(view, walk->context);
    }
    release_bytes(detail);
    return ended;
}

int inspect_interface(const Walk* walk, SP_DEVICE_INTERFACE_DATA* data, DWORD index) {
    SP_DEVINFO_DATA device = {};
    device.cbSize = sizeof device;
    DWORD detail_size = 0;
    // Fails by design, for the buffer is missing, and delivers the size and the device.
    SetupDiGetDeviceInterfaceDetailW(walk->set, data, nullptr, 0, &detail_size, &device);
    DEVINST parent = 0;
    if (CM_Get_Parent(&parent, device.DevInst, 0) != CR_SUCCESS) {
        log_line(TEXT("no parent\r\n"));
        return 0;
    }
    ULONG length = 0; // without terminator
    if (CM_Get_Device_ID_Size(&length, parent, 0) != CR_SUCCESS) {
        log_line(TEXT("device id size fail\r\n"));
        return 0;
    }
    WCHAR* const parent_id = allocate_characters(size_t{length} + 1);
    if (parent_id == nullptr)
        return 0;
    const int fetched = CM_Get_Device_IDW(parent, parent_id, length + 1, 0) == CR_SUCCESS;
    parent_id[fetched ? length : 0] = 0;
    if (walk->detailed)
        log_parent_and_drivers(walk, &device, parent_id, fetched);
    UsbInterfaceView view = {index, parent_id, nullptr};
    const int ended = visit_with_detail(walk, data, detail_size, &view);
    release_bytes(parent_id);
    return ended;
}

} // namespace

HDEVINFO open_usb_printers() {
    return SetupDiGetClassDevsW(&usb_printer_class, nullptr, nullptr, DIGCF_PRESENT | DIGCF_DEVICEINTERFACE);
}

int walk_usb_printers(HDEVINFO set, int detailed, UsbInterfaceVisit visit, void* context) {
    const Walk walk = {set, detailed, visit, context};
    for (DWORD index = 0;; ++index) {
        SP_DEVICE_INTERFACE_DATA data = {};
        data.cbSize = sizeof data;
        if (!SetupDiEnumDeviceInterfaces(set, nullptr, &usb_printer_class, index, &data))
            return 0;
        if (detailed)
            log_line(TEXT("enum device %d\r\n"), index);
        if (inspect_interface(&walk, &data, index))
            return 1;
    }
}
