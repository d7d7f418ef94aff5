// The modules that a run has: the program itself, and the system's libraries by name.
#pragma once

#include <windows.h>

#include <string>

namespace platform {

// The instance handle of the program, which its entry gets and its resources hang on.
HMODULE program_module();

// The program's file, as it sees it.
std::u16string program_path();

} // namespace platform
