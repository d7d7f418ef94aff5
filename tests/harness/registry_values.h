// Registry values for a machine's description.
#pragma once

#include "machine/little_endian.h"
#include "machine/machine.h"

#include <string_view>

// Without a terminator, as some writers leave their texts.
inline platform::RegistryValue text_value(std::u16string_view text) {
    platform::RegistryValue value;
    value.data = platform::utf16_bytes(text);
    return value;
}

// Of 4 bytes, or of fewer or more than a number has.
inline platform::RegistryValue number_value(std::uint32_t number, std::size_t bytes = 4) {
    platform::RegistryValue value{4, std::vector<std::uint8_t>(bytes)};
    for (std::size_t i = 0; i < bytes && i < 4; ++i)
        value.data[i] = static_cast<std::uint8_t>(number >> (8 * i));
    return value;
}
