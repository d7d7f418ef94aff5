#include "calls/text/filled_text.h"

#include <cstring>

namespace platform {

void poison_text(char16_t* buffer, std::uint32_t size) {
    if (buffer != nullptr)
        std::memset(buffer, 0xCD, std::size_t{size} * sizeof(char16_t));
}

std::uint32_t fill_text(std::u16string_view text, char16_t* buffer, std::uint32_t size) {
    const auto length = static_cast<std::uint32_t>(text.size());
    if (buffer == nullptr || size <= length) {
        poison_text(buffer, size);
        return length + 1;
    }
    text.copy(buffer, length);
    buffer[length] = 0;
    return length;
}

} // namespace platform
