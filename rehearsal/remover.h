// A remover made of the library's operations alone: it lists a driver's queues, deletes them with their
// ports, and takes the installation off the machine.
#pragma once

#include "rehearsal/judge.h"

#include <windows.h>

namespace rehearsal {

// The entry point, in the place of WinMain: the installation of removal.model goes, and the rest of the
// record is filled in. Its trace goes into the install log. The folder, by which alone the installation can
// be found again, stays as long as a queue of the driver stands or its package does. 0 when the removal ran
// to its end, 1 when something stood in its way, 2 when there is no such installation.
int run_remover(HINSTANCE instance, Removal& removal);

} // namespace rehearsal
