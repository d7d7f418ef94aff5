#include "calls/text/ansi_text.h"

#include "calls/run/session.h"
#include "calls/text/code_page_table.h"
#include "machine/text.h"

#include <windows.h>

namespace platform {

std::u16string from_ansi(std::string_view bytes) {
    const std::uint32_t code_page = session().machine.code_page;
    if (code_page == CP_UTF8)
        return to_utf16(bytes);
    const CodePageTable* table = code_page_table(code_page);
    if (table == nullptr)
        session().gate.refuse("code page " + std::to_string(code_page));
    std::u16string text;
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        const auto byte = static_cast<std::uint8_t>(bytes[i]);
        const auto trail = i + 1 < bytes.size() ? static_cast<std::uint8_t>(bytes[i + 1]) : std::uint8_t{0};
        if (!table->lead[byte]) {
            text += table->single[byte];
        } else {
            const char16_t character = table->pairs[byte * 256u + trail];
            text += character != 0 ? character : table->unknown;
            i += trail != 0 ? 1 : 0; // a terminator is never the second half of a character
        }
    }
    return text;
}

} // namespace platform
