// How the platform hands out a text into a caller's buffer.
#pragma once

#include "calls/run/gate.h"

#include <cstdint>
#include <string_view>

namespace platform {

// Fills `size` characters of the buffer with the poison that unset bytes have; null is accepted.
void poison_text(char16_t* buffer, std::uint32_t size);

// The text with its terminator, and its length, when all of it fits; otherwise a poisoned buffer and the size
// needed with the terminator.
std::uint32_t fill_text(std::u16string_view text, char16_t* buffer, std::uint32_t size);

// The same as the answer of a call that tells sizes.
std::uint32_t give_text(const Call& call, std::u16string_view text, char16_t* buffer, std::uint32_t size);

} // namespace platform
