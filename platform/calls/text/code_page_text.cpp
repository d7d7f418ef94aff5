#include "calls/text/code_page_text.h"

#include "machine/text.h"

namespace platform {
namespace {

// A byte without a character of its own is read as one of these.
bool stands_for_nothing(char16_t character) {
    return character >= 0xF8F0 && character <= 0xF8FF;
}

// Bad bytes come out as U+FFFD, and then the way back doesn't give them again.
WideText widen_utf8(std::string_view bytes) {
    WideText result{to_utf16(bytes)};
    result.good = to_utf8(result.text) == bytes;
    return result;
}

NarrowText narrow_utf8(std::u16string_view text) {
    NarrowText result{to_utf8(text)};
    result.good = to_utf16(result.text) == text;
    return result;
}

} // namespace

WideText widen(const CodePageTable* table, std::string_view bytes) {
    if (table == nullptr)
        return widen_utf8(bytes);
    WideText result;
    result.text.reserve(bytes.size());
    for (std::size_t place = 0; place < bytes.size(); ++place) {
        const auto byte = static_cast<std::uint8_t>(bytes[place]);
        if (!table->lead[byte]) {
            result.good = result.good && !stands_for_nothing(table->single[byte]);
            result.text += table->single[byte];
            continue;
        }
        const auto trail =
            place + 1 < bytes.size() ? static_cast<std::uint8_t>(bytes[place + 1]) : std::uint8_t{0};
        const char16_t character = table->pairs[byte * 256u + trail];
        result.good = result.good && character != 0;
        result.text += character != 0 ? character : table->unknown;
        if (trail != 0)
            ++place; // a terminator is never taken as the second half of a character
    }
    return result;
}

NarrowText narrow(const CodePageTable* table, std::u16string_view text, Fit fit, std::string_view missing) {
    if (table == nullptr)
        return narrow_utf8(text);
    const std::vector<std::uint16_t>& map = fit == Fit::exact ? table->bytes : table->nearest;
    NarrowText result;
    result.text.reserve(text.size());
    for (const char16_t character : text) {
        const std::uint16_t bytes = map[character];
        if (bytes == 0 && character != 0) {
            result.good = false;
            result.text += missing;
            continue;
        }
        if (bytes > 0xFF)
            result.text += static_cast<char>(bytes >> 8);
        result.text += static_cast<char>(bytes & 0xFF);
    }
    return result;
}

} // namespace platform
