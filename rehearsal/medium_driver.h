// The driver that the setup finds on a medium, by the setup's own reader.
#pragma once

#include "rehearsal/check/medium.h"

#include <cstdint>
#include <optional>
#include <string>

namespace rehearsal {

// Texts are UTF-8; they are read by code page 1252.
struct MediumDriver {
    std::string name;
    std::string model;         // as the setup searches for it, with underlines
    std::string inf;           // the INF's name alone
    std::uint64_t version = 0; // as DRIVER_INFO_6 has it
    bool usb = false;
};

inline constexpr std::uint32_t driver_code_page = 1252;

// None when the setup finds no driver.
std::optional<MediumDriver> read_medium_driver(const check::Medium& medium);

} // namespace rehearsal
