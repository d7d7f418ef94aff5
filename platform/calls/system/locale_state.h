// The calling thread's user-interface language, for whoever picks resources by it.
#pragma once

#include <cstdint>

namespace platform {

// What SetThreadUILanguage set on this thread, else the machine's.
std::uint16_t current_ui_language();

} // namespace platform
