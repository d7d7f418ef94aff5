#include "rehearsal/markup.h"

#include <cstddef>
#include <cstdint>

namespace rehearsal {
namespace {

constexpr char replacement[] = "\xEF\xBF\xBD"; // U+FFFD

// How many bytes the UTF-8 sequence at the text's start has (RFC 3629); 0 when there is none.
std::size_t sequence_length(std::string_view text) {
    const auto byte = [&](std::size_t i) { return static_cast<std::uint8_t>(text[i]); };
    if (byte(0) < 0x80)
        return 1;
    const std::size_t length = byte(0) >= 0xF0 && byte(0) < 0xF5   ? 4
                               : byte(0) >= 0xE0 && byte(0) < 0xF0 ? 3
                               : byte(0) >= 0xC2 && byte(0) < 0xE0 ? 2
                                                                   : 0;
    if (length == 0 || text.size() < length)
        return 0;
    for (std::size_t i = 1; i < length; ++i)
        if ((byte(i) & 0xC0) != 0x80)
            return 0;
    const bool overlong = (byte(0) == 0xE0 && byte(1) < 0xA0) || (byte(0) == 0xF0 && byte(1) < 0x90);
    const bool outside = (byte(0) == 0xED && byte(1) > 0x9F) || (byte(0) == 0xF4 && byte(1) > 0x8F);
    return overlong || outside ? 0 : length;
}

void append_character(std::string& out, char c) {
    switch (c) {
    case '&':
        out += "&amp;";
        return;
    case '<':
        out += "&lt;";
        return;
    case '>':
        out += "&gt;";
        return;
    case '"':
        out += "&quot;";
        return;
    case '\'':
        out += "&#39;";
        return;
    default:
        break;
    }
    const bool control = static_cast<unsigned char>(c) < 0x20 && c != '\t' && c != '\n';
    if (control || c == 0x7F)
        out += replacement;
    else
        out.push_back(c);
}

} // namespace

std::string escaped_markup(std::string_view text) {
    std::string out;
    while (!text.empty()) {
        const std::size_t length = sequence_length(text);
        if (length == 1)
            append_character(out, text[0]);
        else if (length == 0)
            out += replacement;
        else
            out += text.substr(0, length);
        text.remove_prefix(length == 0 ? 1 : length);
    }
    return out;
}

} // namespace rehearsal
