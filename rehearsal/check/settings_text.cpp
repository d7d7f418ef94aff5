#include "rehearsal/check/settings_text.h"

#include "machine/text.h"

#include <algorithm>

namespace rehearsal::check {

std::vector<TextLine> lines_of(std::string_view text, std::size_t longest) {
    std::vector<TextLine> lines;
    for (std::size_t begin = 0; begin < text.size();) {
        const std::string_view rest = text.substr(begin).substr(0, longest);
        const std::size_t length = std::min(rest.find_first_of("\r\n"), rest.size());
        const std::string_view behind = rest.substr(length);
        const std::size_t end_bytes = behind.starts_with("\r\n") ? 2 : behind.empty() ? 0 : 1;
        lines.push_back({rest.substr(0, length), begin, end_bytes});
        begin += length + end_bytes;
    }
    return lines;
}

std::string_view without_blanks(std::string_view text) {
    const std::size_t first = text.find_first_not_of(" \t");
    if (first == text.npos)
        return {};
    return text.substr(first, text.find_last_not_of(" \t") - first + 1);
}

bool is_wide_text(std::string_view bytes) {
    return bytes.starts_with("\xFF\xFE") || bytes.starts_with("\xFE\xFF") || bytes.find('\0') != bytes.npos;
}

bool has_utf8_letters(std::string_view bytes) {
    const bool plain = std::all_of(bytes.begin(), bytes.end(), [](char c) { return (c & 0x80) == 0; });
    // What isn't well-formed comes back as replacement characters, and so not as it was.
    return !plain && platform::to_utf8(platform::to_utf16(bytes)) == bytes;
}

std::string counted_text(std::size_t count, const char* what) {
    return std::to_string(count) + " " + what + (count == 1 ? "" : "s");
}

std::string in_quotes(std::string_view text) {
    constexpr std::size_t longest = 60;
    if (text.size() <= longest)
        return "\"" + std::string(text) + "\"";
    return "\"" + std::string(text.substr(0, longest / 2)) + "..." +
           std::string(text.substr(text.size() - longest / 4)) + "\"";
}

} // namespace rehearsal::check
