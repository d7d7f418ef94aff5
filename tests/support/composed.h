// Composed text as the tests look at it. A machine to call must be there.
#pragma once

#include "support/text.h"

#include <cstdarg>
#include <ostream>
#include <string>
#include <vector>

inline std::string as_utf8(const WCHAR* text) {
    std::vector<char> bytes(3 * text_length(text) + 1);
    WideCharToMultiByte(CP_UTF8, 0, text, -1, bytes.data(), static_cast<int>(bytes.size()), nullptr, nullptr);
    return bytes.data();
}

struct Composed {
    std::string text;
    int fits;
    bool operator==(const Composed&) const = default;
};

inline std::ostream& operator<<(std::ostream& out, const Composed& composed) {
    return out << '"' << composed.text << '"' << (composed.fits ? "" : " cut");
}

// The buffer is exactly as large as told, so that a sanitizer sees the first step beyond.
inline Composed compose(std::size_t capacity, const WCHAR* format, ...) {
    std::vector<WCHAR> buffer(capacity);
    va_list arguments;
    va_start(arguments, format);
    const int fits = format_text_list(buffer.data(), capacity, format, arguments);
    va_end(arguments);
    return {as_utf8(buffer.data()), fits};
}

template<class... Arguments>
Composed compose_ansi(std::size_t capacity, const char* format, Arguments... arguments) {
    std::vector<char> buffer(capacity);
    const int fits = format_ansi(buffer.data(), capacity, format, arguments...);
    return {buffer.data(), fits};
}
