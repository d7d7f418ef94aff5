// Handing the whole job over to the 64-bit program.
#pragma once

#include <windows.h>

// Starts the program `child_name` of this program's own folder with this process's arguments and waits for
// its end. 0 once the child has ended, whatever its own exit code; 1 when it can't be started, after a
// message box unless app.silent; 259 when its state can't be asked for any more. The command line has 510
// characters at most: arguments beyond that are cut.
int relaunch_64(const WCHAR* child_name);
