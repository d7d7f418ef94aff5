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

std::uint32_t give_text(const Call& call, std::u16string_view text, char16_t* buffer, std::uint32_t size) {
    const ToldSize answer = call.size(text.size() + 1, buffer == nullptr ? 0 : size);
    if (buffer == nullptr || size < answer.needed) {
        poison_text(buffer, size);
        return answer.told;
    }
    fill_text(text, buffer, size);
    return answer.told == 0 ? 0 : answer.told - 1;
}

} // namespace platform
