// Registry values for a machine's description.
#pragma once

#include "machine/machine.h"

#include <string_view>

// Without a terminator, as some writers leave their texts.
inline platform::RegistryValue text_value(std::u16string_view text) {
    platform::RegistryValue value;
    for (const char16_t letter : text) {
        value.data.push_back(static_cast<std::uint8_t>(letter & 0xff));
        value.data.push_back(static_cast<std::uint8_t>(letter >> 8));
    }
    return value;
}

// Of 4 bytes, or of fewer or more than a number has.
inline platform::RegistryValue number_value(std::uint32_t number, std::size_t bytes = 4) {
    platform::RegistryValue value{4, std::vector<std::uint8_t>(bytes)};
    for (std::size_t i = 0; i < bytes && i < 4; ++i)
        value.data[i] = static_cast<std::uint8_t>(number >> (8 * i));
    return value;
}
