// What a call answers about the size that a caller's buffer must have.
#pragma once

#include <cstdint>

namespace platform {

// Sizes are in the unit of the call, bytes or characters. They differ, and there is more, only where a test
// has the platform lie.
struct ToldSize {
    std::uint32_t needed = 0; // a smaller buffer is refused
    std::uint32_t told = 0;   // what the caller hears
    std::uint32_t more = 0;   // records that an enumeration tells of beyond those that it delivered
};

} // namespace platform
