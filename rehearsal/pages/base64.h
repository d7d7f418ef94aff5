// Bytes as text (RFC 4648, section 4).
#pragma once

#include <cstdint>
#include <span>
#include <string>

namespace rehearsal::pages {

std::string base64(std::span<const std::uint8_t> bytes);

} // namespace rehearsal::pages
