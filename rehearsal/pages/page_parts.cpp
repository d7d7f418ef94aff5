#include "rehearsal/pages/page_parts.h"

__asm__(".section .rodata\n"
        "trk_page_style:\n"
        ".incbin \"" TRK_PAGE_FOLDER "/page.css\"\n"
        "trk_page_style_end:\n"
        "trk_page_script:\n"
        ".incbin \"" TRK_PAGE_FOLDER "/page.js\"\n"
        "trk_page_script_end:\n"
        ".previous\n");

extern "C" {
extern const char trk_page_style[];
extern const char trk_page_style_end[];
extern const char trk_page_script[];
extern const char trk_page_script_end[];
}

namespace rehearsal::pages {

std::string_view page_style() {
    return {trk_page_style, static_cast<std::size_t>(trk_page_style_end - trk_page_style)};
}

std::string_view page_script() {
    return {trk_page_script, static_cast<std::size_t>(trk_page_script_end - trk_page_script)};
}

} // namespace rehearsal::pages
