#include "support/text.h"

#include <cstring>

namespace {

int is_white_space(char character) {
    return character == ' ' || (character >= '\t' && character <= '\r');
}

int is_digit(char character) {
    return character >= '0' && character <= '9';
}

const char* skip_white_space(const char* text) {
    while (is_white_space(*text))
        ++text;
    return text;
}

// Reads sign and digits at the text, which white space no longer precedes. Gives the place behind them, or
// null when there is no digit; then the value is left alone.
const char* read_number(const char* text, int* value) {
    const int negative = *text == '-';
    if (*text == '-' || *text == '+')
        ++text;
    if (!is_digit(*text))
        return nullptr;

    const DWORD limit = negative ? 0x80000000u : 0x7fffffffu;
    DWORD magnitude = 0;
    for (; is_digit(*text); ++text) {
        const DWORD digit = static_cast<DWORD>(*text - '0');
        magnitude = magnitude > (limit - digit) / 10 ? limit : magnitude * 10 + digit;
    }
    *value = static_cast<int>(negative ? 0 - magnitude : magnitude);
    return text;
}

// Bytes of the first character of a text that isn't empty: 1, or 2 in a double-byte code page.
size_t character_bytes(const char* text) {
    return text[1] != 0 && IsDBCSLeadByte(static_cast<BYTE>(*text)) ? 2 : 1;
}

} // namespace

int scan_numbers(const char* text, const char* format, int* values, size_t value_count) {
    for (size_t i = 0; i < value_count; ++i)
        values[i] = 0;

    size_t converted = 0;
    for (; *format != 0; ++format) {
        if (format[0] != '%' || format[1] != 'd') {
            if (*text != *format)
                break;
            ++text;
            continue;
        }
        ++format;
        text = skip_white_space(text);
        if (*text == 0 && converted == 0)
            return -1;
        const char* behind = converted < value_count ? read_number(text, &values[converted]) : nullptr;
        if (behind == nullptr)
            break;
        text = behind;
        ++converted;
    }
    return static_cast<int>(converted);
}

int scan_number(const char* text) {
    int value = 0;
    if (text != nullptr)
        read_number(skip_white_space(text), &value);
    return value;
}

const WCHAR* find_text(const WCHAR* text, const WCHAR* part) {
    for (;; ++text) {
        if (starts_with(text, part))
            return text;
        if (*text == 0)
            return nullptr;
    }
}

const char* find_ansi(const char* text, const char* part) {
    return std::strstr(text, part);
}

const char* find_in_names(const char* text, const char* part) {
    const char* place = find_ansi(text, part);
    // Behind a 7-bit byte, be it a character or the end of one, another begins.
    while (place != nullptr && place != text && (place[-1] & 0x80) != 0) {
        while (text < place)
            text += character_bytes(text);
        if (text == place)
            break;
        place = find_ansi(text, part);
    }
    return place;
}

void replace_in_name(char* name, char old_character, char new_character) {
    for (; *name != 0; name += character_bytes(name))
        if (*name == old_character)
            *name = new_character;
}

int same_text(const WCHAR* first, const WCHAR* second) {
    for (; *first == *second; ++first, ++second)
        if (*first == 0)
            return 1;
    return 0;
}

int starts_with(const WCHAR* text, const WCHAR* start) {
    for (; *start != 0; ++text, ++start) {
        if (*text != *start)
            return 0;
    }
    return 1;
}

int ansi_starts_with(const char* text, const char* start) {
    for (; *start != 0; ++text, ++start) {
        if (*text != *start)
            return 0;
    }
    return 1;
}

WCHAR change_case(WCHAR letter, WCHAR from, WCHAR to) {
    constexpr int letters = 26;
    const int place = letter - from;
    return place >= 0 && place < letters ? static_cast<WCHAR>(to + place) : letter;
}

void blank_controls(char* text, size_t length) {
    for (size_t i = 0; i < length; ++i) {
        const BYTE value = static_cast<BYTE>(text[i]);
        text[i] = value < ' ' || value == 0x7f ? ' ' : text[i];
    }
}

int is_plain_name(const WCHAR* name) {
    WCHAR last = 0;
    for (const WCHAR* place = name; *place != 0; ++place) {
        last = *place;
        if (last < ' ' || last == 0x7f)
            return 0;
        for (const WCHAR* forbidden = TEXT("\\/:*?\"<>|"); *forbidden != 0; ++forbidden) {
            if (last == *forbidden)
                return 0;
        }
    }
    // The file system drops blanks and points at the end, so that the name would be another one, or, with
    // nothing but points, the folder itself or the one above it.
    return last != 0 && last != ' ' && last != '.';
}
