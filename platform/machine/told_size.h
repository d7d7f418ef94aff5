// What a call answers about the size that a caller's buffer must have.
#pragma once

#include <cstdint>

namespace platform {

// Both in the unit of the call, bytes or characters. They differ only where a test has the platform lie.
struct ToldSize {
    std::uint32_t needed = 0; // a smaller buffer is refused
    std::uint32_t told = 0;   // what the caller hears
};

} // namespace platform
