#include "calls/shell/link_text.h"

#include "calls/text/code_page_table.h"
#include "machine/text.h"

namespace platform {

std::string link_ansi(std::u16string_view text, std::uint32_t code_page) {
    const CodePageTable* table = code_page_table(code_page);
    if (table == nullptr)
        return to_utf8(text);
    std::string out;
    for (const char16_t c : text) {
        const unsigned bytes = c == 0 || table->bytes[c] != 0 ? table->bytes[c] : unsigned{'?'};
        if (bytes > 0xFF)
            out += static_cast<char>(bytes >> 8);
        out += static_cast<char>(bytes & 0xFF);
    }
    return out;
}

std::u16string link_text(std::string_view ansi, std::uint32_t code_page) {
    const CodePageTable* table = code_page_table(code_page);
    if (table == nullptr)
        return to_utf16(ansi);
    std::u16string out;
    for (std::size_t place = 0; place < ansi.size(); ++place) {
        const auto byte = static_cast<std::uint8_t>(ansi[place]);
        if (!table->lead[byte] || place + 1 == ansi.size()) {
            out += table->single[byte];
            continue;
        }
        const char16_t pair = table->pairs[byte * 256u + static_cast<std::uint8_t>(ansi[++place])];
        out += pair != 0 ? pair : table->unknown;
    }
    return out;
}

} // namespace platform
