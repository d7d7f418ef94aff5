// A road over the library's routines that neither the install nor the removal calls, each with something to
// find.
#pragma once

#include "scenarios/scenario.h"

// Devices, services, a custom monitor's medium and a queue on a USB port.
void prepare_library_road(Scenario& scenario);
// The program's entry: opens the log, calls every routine once, and closes the log.
int run_library_road(HINSTANCE instance, char* command_line);
