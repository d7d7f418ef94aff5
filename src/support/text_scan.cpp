#include "support/text.h"

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
    for (;; ++text) {
        if (ansi_starts_with(text, part))
            return text;
        if (*text == 0)
            return nullptr;
    }
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
