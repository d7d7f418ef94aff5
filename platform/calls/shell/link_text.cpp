#include "calls/shell/link_text.h"

#include "calls/text/code_page_text.h"

namespace platform {

std::string link_ansi(std::u16string_view text, std::uint32_t code_page) {
    return narrow(code_page_table(code_page), text).text;
}

std::u16string link_text(std::string_view ansi, std::uint32_t code_page) {
    return widen(code_page_table(code_page), ansi).text;
}

} // namespace platform
