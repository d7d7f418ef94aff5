#include "calls/text/ansi_text.h"

#include "calls/run/session.h"
#include "calls/text/code_page_text.h"

#include <windows.h>

namespace platform {

std::u16string from_ansi(std::string_view bytes) {
    const std::uint32_t code_page = session().machine.code_page;
    const CodePageTable* const table = code_page_table(code_page);
    if (table == nullptr && code_page != CP_UTF8)
        session().gate.refuse("code page " + std::to_string(code_page));
    return widen(table, bytes).text;
}

} // namespace platform
