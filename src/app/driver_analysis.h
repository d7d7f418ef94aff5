// What is installed already, and the starting state of the main dialog that follows from it.
#pragma once

#include "state/app_state.h"

// 1 when the spooler has a driver of exactly that name, else 0. With a match its version goes to version_out,
// which may be null; without one it isn't touched.
int find_installed_driver(const WCHAR* driver_name, DriverVersion* version_out);

// Takes the package's identity further: its names for people and for the platform, the installed driver, and
// the starting state of the main dialog, a whole network search included where there is no other connection.
void analyse_driver();
