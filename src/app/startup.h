// The run from its first step to its last: start-up, the message loop and the report at the end.
#pragma once

#include "state/app_state.h"

// The whole program. `command_line` holds the arguments alone, as 8-bit text; they aren't parsed, but any
// text makes the run silent. The result is the exit code: 0, or what relaunch_64 gave on a 64-bit system.
int run_setup(HINSTANCE instance, const char* command_line);
