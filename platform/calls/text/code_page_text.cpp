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

// The bytes in front that are a character each, at the start of the empty result: how many they are.
std::size_t widen_single_bytes(const CodePageTable& table, std::string_view bytes, std::u16string& result) {
    std::size_t count = 0;
    result.resize(bytes.size());
    for (; count < bytes.size(); ++count) {
        const auto byte = static_cast<std::uint8_t>(bytes[count]);
        if (table.lead[byte] || stands_for_nothing(table.single[byte]))
            break;
        result[count] = table.single[byte];
    }
    result.resize(count);
    return count;
}

// The same for characters in front that are a byte each.
std::size_t narrow_to_single_bytes(const std::vector<std::uint16_t>& map, std::u16string_view text,
                                   std::string& result) {
    std::size_t count = 0;
    result.resize(text.size());
    for (; count < text.size(); ++count) {
        const std::uint16_t bytes = map[text[count]];
        if (bytes > 0xFF || (bytes == 0 && text[count] != 0))
            break;
        result[count] = static_cast<char>(bytes);
    }
    result.resize(count);
    return count;
}

} // namespace

void widen(const CodePageTable* table, std::string_view bytes, WideText& result) {
    if (table == nullptr) {
        result = widen_utf8(bytes);
        return;
    }
    result.good = true;
    for (std::size_t place = widen_single_bytes(*table, bytes, result.text); place < bytes.size(); ++place) {
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
}

WideText widen(const CodePageTable* table, std::string_view bytes) {
    WideText result;
    widen(table, bytes, result);
    return result;
}

void narrow(const CodePageTable* table, std::u16string_view text, Fit fit, std::string_view missing,
            NarrowText& result) {
    if (table == nullptr) {
        result = narrow_utf8(text);
        return;
    }
    const std::vector<std::uint16_t>& map = fit == Fit::exact ? table->bytes : table->nearest;
    result.good = true;
    for (std::size_t place = narrow_to_single_bytes(map, text, result.text); place < text.size(); ++place) {
        const std::uint16_t bytes = map[text[place]];
        if (bytes == 0 && text[place] != 0) {
            result.good = false;
            result.text += missing;
            continue;
        }
        if (bytes > 0xFF)
            result.text += static_cast<char>(bytes >> 8);
        result.text += static_cast<char>(bytes & 0xFF);
    }
}

NarrowText narrow(const CodePageTable* table, std::u16string_view text, Fit fit, std::string_view missing) {
    NarrowText result;
    narrow(table, text, fit, missing, result);
    return result;
}

} // namespace platform
