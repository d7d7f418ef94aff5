#include "rehearsal/shown_text.h"

#include <algorithm>
#include <cstdio>

namespace rehearsal {
namespace {

// Bytes of the UTF-8 sequence that begins the text, 0 when none does.
std::size_t sequence_length(std::string_view text) {
    const auto lead = static_cast<unsigned char>(text.front());
    const std::size_t length = lead < 0x80   ? 1
                               : lead < 0xC2 ? 0
                               : lead < 0xE0 ? 2
                               : lead < 0xF0 ? 3
                               : lead < 0xF5 ? 4
                                             : 0;
    if (length > text.size())
        return 0;
    for (std::size_t place = 1; place < length; ++place)
        if ((static_cast<unsigned char>(text[place]) & 0xC0) != 0x80)
            return 0;
    return length;
}

// C0, DEL and C1, which UTF-8 writes as C2 80 to C2 9F.
bool is_control(std::string_view sequence) {
    const auto first = static_cast<unsigned char>(sequence[0]);
    return first < 0x20 || first == 0x7F || (first == 0xC2 && static_cast<unsigned char>(sequence[1]) < 0xA0);
}

std::string spelt_out(char byte) {
    char text[5];
    std::snprintf(text, sizeof text, "\\x%02x", static_cast<unsigned char>(byte));
    return text;
}

} // namespace

std::string shown_text(std::string_view text) {
    std::string shown;
    while (!text.empty()) {
        const std::size_t length = std::max<std::size_t>(sequence_length(text), 1);
        const bool printable = sequence_length(text) != 0 && !is_control(text.substr(0, length));
        if (printable)
            shown += text.substr(0, length);
        else
            for (const char byte : text.substr(0, length))
                shown += spelt_out(byte);
        text.remove_prefix(length);
    }
    return shown;
}

} // namespace rehearsal
