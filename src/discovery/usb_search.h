// Questions about the USB printers that are plugged in.
#pragma once

#include <windows.h>

// A find: the device path, cut at 255 characters, and what stands behind the product id, cut at 99; both
// valid during the call only. The result isn't looked at.
using UsbPrinterFound = int (*)(const WCHAR* path, const WCHAR* instance);

// Calls `found`, which may be null, for each present interface whose device path holds the fragment, exactly.
// The number of these interfaces, or -1 when the system gives no device list. An interface without a product
// id has an empty instance.
int usb_search(const WCHAR* fragment, UsbPrinterFound found);

// Whether a present interface has this USB port number: 1 or 0, or -1 when the system gives no device list.
int usb_device_check(DWORD port_number);
