// A remover made of the library's operations alone: it lists a driver's queues, deletes them with their
// ports, and takes the installation off the machine.
#pragma once

#include <windows.h>

#include <string>

namespace rehearsal {

// The entry point, in the place of WinMain: one model's installation goes. Its trace goes into the install
// log. 0 when the installation was removed and no queue was left, 1 when something stayed, 2 when there is no
// such installation.
int run_remover(HINSTANCE instance, const std::u16string& model);

} // namespace rehearsal
