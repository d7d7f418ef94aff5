// What the system's USB print monitor and its usbprint service keep in the registry about a USB port: which
// device it belongs to, and whether that is plugged in.
#pragma once

#include <windows.h>

#include <cstddef>

// Room of a serial or device identifier, in characters; longer ones are cut.
constexpr size_t usb_id_capacity = 512;

// The identifiers of one port: 1 when its serial was found, else 0. `device_id`, which may be null, is filled
// independently of that, and left as it was when the port has none.
int read_usb_port_ids(const WCHAR* port_name, WCHAR* serial /*usb_id_capacity*/,
                      WCHAR* device_id /*usb_id_capacity or null*/);

// Whether the identifier stands, exactly, in the service's list of present devices: 1 or 0.
int check_usb_connection(const WCHAR* device_id);

// Gets the port's name and serial, at most 511 bytes each, valid during the call only. The result isn't
// looked at.
using UsbPortFound = int (*)(const char* port, const char* serial);

// Hands the first port of this description to `found`, which may be null. The number of calls made: 0 or 1.
int find_port_by_description(const WCHAR* description, UsbPortFound found);
