#include "machine/text.h"

#include <algorithm>
#include <cstdint>

namespace platform {
namespace {

constexpr char32_t replacement = 0xFFFD;

bool is_high(char32_t unit) {
    return unit >= 0xD800 && unit <= 0xDBFF;
}
bool is_low(char32_t unit) {
    return unit >= 0xDC00 && unit <= 0xDFFF;
}

void append_utf8(std::string& out, char32_t c) {
    const auto put = [&out](char32_t byte) { out.push_back(static_cast<char>(byte)); };
    if (c < 0x80) {
        put(c);
    } else if (c < 0x800) {
        put(0xC0 | (c >> 6));
        put(0x80 | (c & 0x3F));
    } else if (c < 0x10000) {
        put(0xE0 | (c >> 12));
        put(0x80 | ((c >> 6) & 0x3F));
        put(0x80 | (c & 0x3F));
    } else {
        put(0xF0 | (c >> 18));
        put(0x80 | ((c >> 12) & 0x3F));
        put(0x80 | ((c >> 6) & 0x3F));
        put(0x80 | (c & 0x3F));
    }
}

void append_utf16(std::u16string& out, char32_t c) {
    if (c < 0x10000) {
        out.push_back(static_cast<char16_t>(c));
        return;
    }
    out.push_back(static_cast<char16_t>(0xD800 + ((c - 0x10000) >> 10)));
    out.push_back(static_cast<char16_t>(0xDC00 + ((c - 0x10000) & 0x3FF)));
}

struct Sequence {
    unsigned length = 0;                                // bytes, 0 for a byte that can't begin a character
    std::uint8_t second_low = 0x80, second_high = 0xBF; // rules out overlong forms, surrogates, above 10FFFF
};

Sequence sequence_at(std::uint8_t first) {
    if (first < 0x80)
        return {1};
    if (first >= 0xC2 && first <= 0xDF)
        return {2};
    if (first >= 0xE0 && first <= 0xEF)
        return {3, static_cast<std::uint8_t>(first == 0xE0 ? 0xA0 : 0x80),
                static_cast<std::uint8_t>(first == 0xED ? 0x9F : 0xBF)};
    if (first >= 0xF0 && first <= 0xF4)
        return {4, static_cast<std::uint8_t>(first == 0xF0 ? 0x90 : 0x80),
                static_cast<std::uint8_t>(first == 0xF4 ? 0x8F : 0xBF)};
    return {};
}

// The character at `place`, which moves behind it, or behind as many bytes as could have begun one.
char32_t next_character(std::string_view text, std::size_t& place) {
    const auto first = static_cast<std::uint8_t>(text[place++]);
    const Sequence sequence = sequence_at(first);
    if (sequence.length == 0)
        return replacement;
    if (sequence.length == 1)
        return first;
    char32_t c = first & (0xFFu >> (sequence.length + 1));
    for (unsigned index = 1; index < sequence.length; ++index) {
        const auto byte = place < text.size() ? static_cast<std::uint8_t>(text[place]) : std::uint8_t{0};
        const std::uint8_t low = index == 1 ? sequence.second_low : std::uint8_t{0x80};
        const std::uint8_t high = index == 1 ? sequence.second_high : std::uint8_t{0xBF};
        if (byte < low || byte > high)
            return replacement;
        c = (c << 6) | (byte & 0x3Fu);
        ++place;
    }
    return c;
}

// Lower-case letters and how far their upper case lies off. With step 2 every other letter from the first is
// a small one.
struct CaseRange {
    char16_t first, last;
    int offset;
    unsigned step = 1;
};

// Sorted. As in the platform's own table there is no letter that grows, and none for dotless i and long s.
constexpr CaseRange case_ranges[] = {
    {u'a', u'z', -32},       {0x00E0, 0x00F6, -32},   {0x00F8, 0x00FE, -32},   {0x00FF, 0x00FF, 121},
    {0x0101, 0x012F, -1, 2}, {0x0133, 0x0137, -1, 2}, {0x013A, 0x0148, -1, 2}, {0x014B, 0x0177, -1, 2},
    {0x017A, 0x017E, -1, 2}, {0x03AC, 0x03AC, -38},   {0x03AD, 0x03AF, -37},   {0x03B1, 0x03C1, -32},
    {0x03C2, 0x03C2, -31},   {0x03C3, 0x03CB, -32},   {0x03CC, 0x03CC, -64},   {0x03CD, 0x03CE, -63},
    {0x0430, 0x044F, -32},   {0x0450, 0x045F, -80},   {0x0461, 0x0481, -1, 2}, {0x048B, 0x04BF, -1, 2},
    {0x04C2, 0x04CE, -1, 2}, {0x04D1, 0x052F, -1, 2}, {0x0561, 0x0586, -48},   {0x1E01, 0x1E95, -1, 2},
    {0x1EA1, 0x1EFF, -1, 2}, {0x2170, 0x217F, -16},   {0x24D0, 0x24E9, -26},   {0xFF41, 0xFF5A, -32},
};

char16_t upper_letter(char16_t c) {
    for (const CaseRange& range : case_ranges) {
        if (c < range.first)
            break;
        if (c <= range.last)
            return (c - range.first) % range.step == 0 ? static_cast<char16_t>(c + range.offset) : c;
    }
    return c;
}

} // namespace

std::string to_utf8(std::u16string_view text) {
    std::string out;
    out.reserve(text.size());
    for (std::size_t place = 0; place < text.size(); ++place) {
        const char32_t unit = text[place];
        if (is_high(unit) && place + 1 < text.size() && is_low(text[place + 1])) {
            append_utf8(out, 0x10000 + ((unit - 0xD800) << 10) + (text[place + 1] - 0xDC00u));
            ++place;
        } else {
            append_utf8(out, is_high(unit) || is_low(unit) ? replacement : unit);
        }
    }
    return out;
}

std::u16string to_utf16(std::string_view text) {
    std::u16string out;
    out.reserve(text.size());
    for (std::size_t place = 0; place < text.size();)
        append_utf16(out, next_character(text, place));
    return out;
}

std::string shown(const char16_t* text) {
    return text == nullptr ? "(null)" : to_utf8(text);
}

bool same_name(std::u16string_view a, std::u16string_view b) {
    return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                      [](char16_t x, char16_t y) { return upper_letter(x) == upper_letter(y); });
}

std::u16string upper_case(std::u16string_view text) {
    std::u16string out(text);
    std::transform(out.begin(), out.end(), out.begin(), upper_letter);
    return out;
}

} // namespace platform
