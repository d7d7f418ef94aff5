// The walk over the present USB printer interfaces that both USB questions share.
#pragma once

#include <windows.h>

#include <setupapi.h>

// The device interface class of USB printers.
constexpr GUID usb_printer_class = {
    0x28d78fad, 0x5a12, 0x11d1, {0xae, 0x5b, 0x00, 0x00, 0xf8, 0x03, 0xa8, 0xc2}};

// One interface that could be read; valid during the visit only.
struct UsbInterfaceView {
    DWORD index;
    const WCHAR* parent_id; // device identifier of the parent; empty when it couldn't be fetched
    WCHAR* path;            // device path; the visitor may change it in place
};

// A visit's result other than 0 ends the walk.
using UsbInterfaceVisit = int (*)(const UsbInterfaceView* view, void* context);

// The present interfaces, or INVALID_HANDLE_VALUE; released with SetupDiDestroyDeviceInfoList.
HDEVINFO open_usb_printers();

// Visits the interfaces in the system's order: 1 when a visit ended the walk, else 0. An interface that can't
// be read is passed over, with a line in the log. With `detailed` the log also gets each index, the parent
// and the compatible drivers.
int walk_usb_printers(HDEVINFO set, int detailed, UsbInterfaceVisit visit, void* context);
