// The printer driver's way onto the machine: its package into the driver store, then the driver from there.
#pragma once

#include <windows.h>

// Uploads the package of the INF at `inf_path` and installs the driver of that name from the stored copy;
// both calls block until the spooler is done. 1 when the driver is installed, else 0, with the reason in the
// log. A package that was uploaded stays in the store when its driver can't be installed.
int install_driver_package(const char* driver_name, const WCHAR* inf_path);
