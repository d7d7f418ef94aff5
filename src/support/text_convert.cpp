#include "support/text.h"

#include <cstring>
#include <iterator>

namespace {

constexpr size_t longest_character = 4; // bytes of one character, in any code page

int is_high_surrogate(WCHAR unit) {
    return unit >= 0xd800 && unit <= 0xdbff;
}

// Bytes of the first character of a text that isn't empty, and its 16-bit form of 1 or 2 units. A character
// is the shortest run of bytes that the code page accepts; a byte that begins none counts as one by itself.
size_t first_character(const char* text, WCHAR* units, int* unit_count) {
    constexpr int room = 2;
    for (int bytes = 1; bytes <= static_cast<int>(longest_character) && text[bytes - 1] != 0; ++bytes) {
        *unit_count = MultiByteToWideChar(CP_ACP, MB_ERR_INVALID_CHARS, text, bytes, units, room);
        if (*unit_count > 0)
            return static_cast<size_t>(bytes);
    }
    *unit_count = MultiByteToWideChar(CP_ACP, 0, text, 1, units, room);
    return 1;
}

// What fits of a text that doesn't convert as a whole: 1 when that was everything after all.
int widen_by_characters(WCHAR* out, size_t capacity, const char* text) {
    size_t used = 0;
    while (*text != 0) {
        WCHAR units[2] = {};
        int unit_count = 0;
        const size_t bytes = first_character(text, units, &unit_count);
        if (unit_count <= 0 || used + static_cast<size_t>(unit_count) >= capacity)
            break;
        for (int i = 0; i < unit_count; ++i)
            out[used++] = units[i];
        text += bytes;
    }
    out[used] = 0;
    return *text == 0;
}

int narrow_by_characters(char* out, size_t capacity, const WCHAR* text) {
    size_t used = 0;
    while (*text != 0) {
        char bytes[2 * longest_character] = {};
        const int units = is_high_surrogate(text[0]) && text[1] != 0 ? 2 : 1;
        const int count = WideCharToMultiByte(CP_ACP, 0, text, units, bytes,
                                              static_cast<int>(std::size(bytes)), nullptr, nullptr);
        if (count <= 0 || used + static_cast<size_t>(count) >= capacity)
            break;
        for (int i = 0; i < count; ++i)
            out[used++] = bytes[i];
        text += units;
    }
    out[used] = 0;
    return *text == 0;
}

} // namespace

int widen(WCHAR* out, size_t capacity, const char* text) {
    if (capacity == 0)
        return 0;
    out[0] = 0;
    if (text == nullptr || *text == 0)
        return 1;
    // A UTF-8 code page refuses the flag, and a text that is too long gives nothing at all; both go the slow
    // way.
    if (MultiByteToWideChar(CP_ACP, MB_PRECOMPOSED, text, -1, out, static_cast<int>(capacity)) > 0)
        return 1;
    return widen_by_characters(out, capacity, text);
}

int narrow(char* out, size_t capacity, const WCHAR* text) {
    if (capacity == 0)
        return 0;
    out[0] = 0;
    if (text == nullptr || *text == 0)
        return 1;
    if (WideCharToMultiByte(CP_ACP, 0, text, -1, out, static_cast<int>(capacity), nullptr, nullptr) > 0)
        return 1;
    return narrow_by_characters(out, capacity, text);
}

int narrow_name(char* out, size_t capacity, const WCHAR* name) {
    constexpr size_t longest_name = 511;
    WCHAR back[longest_name + 1];
    return narrow(out, capacity, name) && widen(back, std::size(back), out) && same_text(back, name);
}

size_t whole_ansi_length(const char* text, size_t limit) {
    size_t kept = 0;
    while (text[kept] != 0) {
        WCHAR units[2] = {};
        int unit_count = 0;
        const size_t bytes = first_character(text + kept, units, &unit_count);
        if (kept + bytes > limit)
            break;
        kept += bytes;
    }
    return kept;
}

int copy_ansi(char* out, size_t capacity, const char* text) {
    if (capacity == 0)
        return 0;
    const size_t length = ansi_length(text);
    const size_t kept = length < capacity ? length : whole_ansi_length(text, capacity - 1);
    if (kept != 0)
        std::memcpy(out, text, kept);
    out[kept] = 0;
    return kept == length;
}
