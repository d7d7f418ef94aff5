#include "calls/run/session.h"
#include "machine/text.h"

#include <cfgmgr32.h>
#include <setupapi.h>
#include <windows.h>

#include <algorithm>
#include <cstring>
#include <set>

namespace {

using platform::failed;
using platform::session;
using platform::UsbInterface;

constexpr GUID usb_printers = {0x28D78FAD, 0x5A12, 0x11D1, {0xAE, 0x5B, 0x00, 0x00, 0xF8, 0x03, 0xA8, 0xC2}};

// The interfaces that were there when the set was made.
struct DeviceSet : platform::Object {
    const char* kind() const override { return "device set"; }
    std::vector<UsbInterface> interfaces;
    std::set<DWORD> drivers_gone; // nodes whose driver list was destroyed
};

bool same_class(const GUID& a, const GUID& b) {
    return std::memcmp(&a, &b, sizeof(GUID)) == 0;
}

// Nodes of the device tree: the printer of interface 0, 1, 2, ... is 1, 3, 5, ..., its parent the number
// behind.
DWORD node_of(std::size_t index) {
    return static_cast<DWORD>(2 * index + 1);
}

std::u16string parent_of(DWORD node) {
    const auto& present = session().machine.usb_interfaces;
    const std::size_t index = (node - 1) / 2;
    return node == 0 || index >= present.size() ? u"" : present[index].parent_id;
}

bool is_printer(DWORD node) {
    return node % 2 == 1 && (node - 1) / 2 < session().machine.usb_interfaces.size();
}

// USB\VID_...&PID_...\instance, as the path between "\\?\" and its class has it.
std::u16string printer_id(DWORD node) {
    std::u16string text = session().machine.usb_interfaces[(node - 1) / 2].device_path;
    if (text.starts_with(u"\\\\?\\"))
        text.erase(0, 4);
    if (const std::size_t class_part = text.rfind(u"#{"); class_part != text.npos)
        text.erase(class_part);
    std::replace(text.begin(), text.end(), u'#', u'\\');
    return platform::upper_case(text);
}

// Empty for a node that isn't there.
std::u16string device_id(DWORD node) {
    return is_printer(node) ? printer_id(node) : parent_of(node);
}

std::shared_ptr<DeviceSet> set_behind(HDEVINFO handle) {
    auto set = session().handles.find<DeviceSet>(handle);
    if (!set)
        failed(ERROR_INVALID_HANDLE);
    return set;
}

bool fill_device(PSP_DEVINFO_DATA device, std::size_t index) {
    if (device == nullptr)
        return true;
    if (device->cbSize != sizeof(SP_DEVINFO_DATA))
        return false;
    device->ClassGuid = usb_printers;
    device->DevInst = node_of(index);
    device->Reserved = index + 1;
    return true;
}

} // namespace

HDEVINFO SetupDiGetClassDevsW(const GUID* device_class, PCWSTR enumerator, HWND, DWORD flags) {
    platform::Call call("SetupDiGetClassDevsW");
    const auto none = reinterpret_cast<HDEVINFO>(INVALID_HANDLE_VALUE);
    if (call.fails(ERROR_ACCESS_DENIED))
        return none;
    if (device_class == nullptr && (flags & DIGCF_ALLCLASSES) == 0)
        return failed(ERROR_INVALID_PARAMETER), none;
    if (device_class == nullptr || !same_class(*device_class, usb_printers) || enumerator != nullptr ||
        flags != (DIGCF_PRESENT | DIGCF_DEVICEINTERFACE))
        call.refuse("only the present interfaces of USB printers are modelled");
    auto set = std::make_shared<DeviceSet>();
    set->interfaces = session().machine.usb_interfaces;
    return session().handles.open(set);
}

BOOL SetupDiEnumDeviceInterfaces(HDEVINFO handle, PSP_DEVINFO_DATA device, const GUID* interface_class,
                                 DWORD index, PSP_DEVICE_INTERFACE_DATA data) {
    platform::Call call("SetupDiEnumDeviceInterfaces", std::to_string(index));
    if (call.fails(ERROR_NO_MORE_ITEMS))
        return FALSE;
    const auto set = set_behind(handle);
    if (!set)
        return FALSE;
    if (data == nullptr || interface_class == nullptr)
        return failed(ERROR_INVALID_PARAMETER);
    if (data->cbSize != sizeof(SP_DEVICE_INTERFACE_DATA))
        return failed(ERROR_INVALID_USER_BUFFER);
    if (device != nullptr)
        call.refuse("the interfaces of one device aren't modelled");
    if (!same_class(*interface_class, usb_printers) || index >= set->interfaces.size())
        return failed(ERROR_NO_MORE_ITEMS);
    data->InterfaceClassGuid = usb_printers;
    data->Flags = SPINT_ACTIVE;
    data->Reserved = index + 1;
    return TRUE;
}

// The device is told on the size query too. The detail's cbSize is that of its fixed part.
BOOL SetupDiGetDeviceInterfaceDetailW(HDEVINFO handle, PSP_DEVICE_INTERFACE_DATA data,
                                      PSP_DEVICE_INTERFACE_DETAIL_DATA_W detail, DWORD size, PDWORD required,
                                      PSP_DEVINFO_DATA device) {
    platform::Call call("SetupDiGetDeviceInterfaceDetailW");
    if (call.fails(ERROR_INVALID_DATA))
        return FALSE;
    const auto set = set_behind(handle);
    if (!set)
        return FALSE;
    if (data == nullptr || data->cbSize != sizeof(SP_DEVICE_INTERFACE_DATA) || data->Reserved == 0 ||
        data->Reserved > set->interfaces.size())
        return failed(ERROR_INVALID_PARAMETER);
    constexpr DWORD path_at = offsetof(SP_DEVICE_INTERFACE_DETAIL_DATA_W, DevicePath);
    const bool room_for_header = size >= path_at + sizeof(WCHAR);
    if (detail == nullptr ? size != 0 : !room_for_header || detail->cbSize != sizeof(*detail))
        return failed(ERROR_INVALID_USER_BUFFER);
    const std::size_t index = data->Reserved - 1;
    if (!fill_device(device, index))
        return failed(ERROR_INVALID_USER_BUFFER);
    const std::u16string& path = set->interfaces[index].device_path;
    const std::size_t bytes = (path.size() + 1) * sizeof(WCHAR);
    const platform::ToldSize answer = call.size(path_at + bytes, size);
    if (required != nullptr)
        *required = answer.told;
    if (size < answer.needed) {
        if (detail != nullptr)
            std::memset(detail->DevicePath, 0xCD, size - path_at);
        return failed(ERROR_INSUFFICIENT_BUFFER);
    }
    std::memcpy(detail->DevicePath, path.c_str(), bytes);
    return TRUE;
}

BOOL SetupDiEnumDriverInfoW(HDEVINFO handle, PSP_DEVINFO_DATA device, DWORD type, DWORD index,
                            PSP_DRVINFO_DATA_W driver) {
    platform::Call call("SetupDiEnumDriverInfoW", std::to_string(index));
    if (call.fails(ERROR_NO_MORE_ITEMS))
        return FALSE;
    const auto set = set_behind(handle);
    if (!set)
        return FALSE;
    if (type != SPDIT_COMPATDRIVER || device == nullptr)
        call.refuse("only a device's compatible drivers are modelled");
    if (driver == nullptr || device->cbSize != sizeof(SP_DEVINFO_DATA) || device->Reserved == 0 ||
        device->Reserved > set->interfaces.size())
        return failed(ERROR_INVALID_PARAMETER);
    if (driver->cbSize != sizeof(SP_DRVINFO_DATA_W))
        return failed(ERROR_INVALID_USER_BUFFER);
    const auto& drivers = set->interfaces[device->Reserved - 1].compatible_drivers;
    if (index >= drivers.size() || set->drivers_gone.contains(device->DevInst))
        return failed(ERROR_NO_MORE_ITEMS);
    *driver = {};
    driver->cbSize = sizeof(*driver);
    driver->DriverType = type;
    driver->Reserved = index + 1;
    drivers[index].description.copy(driver->Description, LINE_LEN - 1);
    return TRUE;
}

BOOL SetupDiDestroyDriverInfoList(HDEVINFO handle, PSP_DEVINFO_DATA device, DWORD type) {
    platform::Call call("SetupDiDestroyDriverInfoList");
    const auto set = set_behind(handle);
    if (!set)
        return FALSE;
    if (type != SPDIT_COMPATDRIVER || device == nullptr)
        call.refuse("only a device's compatible drivers are modelled");
    if (device->cbSize != sizeof(SP_DEVINFO_DATA))
        return failed(ERROR_INVALID_USER_BUFFER);
    set->drivers_gone.insert(device->DevInst);
    return TRUE;
}

BOOL SetupDiDestroyDeviceInfoList(HDEVINFO handle) {
    const auto open = session().handles.peek(handle);
    platform::Call call("SetupDiDestroyDeviceInfoList", open ? open->kind() : "");
    if (open && std::dynamic_pointer_cast<DeviceSet>(open) == nullptr)
        session().gate.misuse(std::string("SetupDiDestroyDeviceInfoList of a ") + open->kind());
    else if (session().handles.close(handle))
        return TRUE;
    return failed(ERROR_INVALID_HANDLE);
}

CONFIGRET CM_Get_Parent(PDEVINST parent, DEVINST device, ULONG flags) {
    platform::Call call("CM_Get_Parent", std::to_string(device));
    if (call.fails(CR_NO_SUCH_DEVNODE))
        return call.error();
    if (parent == nullptr)
        return CR_INVALID_POINTER;
    if (flags != 0)
        return CR_INVALID_FLAG;
    if (device_id(device).empty())
        return CR_INVALID_DEVNODE;
    if (!is_printer(device) || parent_of(device).empty())
        return CR_NO_SUCH_DEVNODE;
    *parent = device + 1;
    return CR_SUCCESS;
}

CONFIGRET CM_Get_Device_ID_Size(PULONG length, DEVINST device, ULONG flags) {
    platform::Call call("CM_Get_Device_ID_Size", std::to_string(device));
    if (call.fails(CR_INVALID_DEVNODE))
        return call.error();
    if (length == nullptr)
        return CR_INVALID_POINTER;
    if (flags != 0)
        return CR_INVALID_FLAG;
    const std::u16string text = device_id(device);
    if (text.empty())
        return CR_INVALID_DEVNODE;
    *length = call.size(text.size(), 0).told;
    return CR_SUCCESS;
}

CONFIGRET CM_Get_Device_IDW(DEVINST device, LPWSTR text, ULONG characters, ULONG flags) {
    platform::Call call("CM_Get_Device_IDW", std::to_string(device));
    if (call.fails(CR_INVALID_DEVNODE))
        return call.error();
    if (text == nullptr || characters == 0)
        return CR_INVALID_POINTER;
    if (flags != 0)
        return CR_INVALID_FLAG;
    const std::u16string id = device_id(device);
    if (id.empty())
        return CR_INVALID_DEVNODE;
    id.copy(text, characters);
    if (characters > id.size())
        text[id.size()] = 0;
    return characters < id.size() ? CR_BUFFER_SMALL : CR_SUCCESS;
}
