#include "rehearsal/log/log_text.h"

#include "calls/text/code_page_table.h"
#include "machine/little_endian.h"
#include "machine/text.h"
#include "rehearsal/log_follower.h"

namespace rehearsal::logs {
namespace {

constexpr std::uint32_t utf8_page = 65001;

} // namespace

bool code_page_is_known(std::uint32_t code_page) {
    return code_page == utf8_page || platform::code_page_table(code_page) != nullptr;
}

std::string decode_log(std::string_view bytes, std::uint32_t code_page) {
    if (bytes.starts_with("\xFF\xFE"))
        return platform::to_utf8(platform::utf16_text(bytes.substr(2)));
    if (bytes.starts_with("\xFE\xFF"))
        return platform::to_utf8(platform::utf16_text(bytes.substr(2), std::endian::big));
    if (bytes.starts_with("\xEF\xBB\xBF")) {
        bytes.remove_prefix(3);
        code_page = utf8_page;
    }
    if (code_page != utf8_page)
        return ansi_to_utf8(bytes, code_page);
    return platform::to_utf8(platform::to_utf16(bytes));
}

std::vector<std::string_view> split_log(std::string_view text, bool& cut) {
    std::vector<std::string_view> lines;
    std::size_t place = 0;
    while (place < text.size()) {
        const std::size_t end = text.find_first_of("\r\n", place);
        if (end == std::string_view::npos)
            break;
        lines.push_back(text.substr(place, end - place));
        place = end + (text[end] == '\r' && end + 1 < text.size() && text[end + 1] == '\n' ? 2 : 1);
    }
    cut = place < text.size();
    if (cut)
        lines.push_back(text.substr(place));
    return lines;
}

} // namespace rehearsal::logs
