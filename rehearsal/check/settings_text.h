// What the checks of the narrow text files share: lines with their places, and the signs of a wrong encoding.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace rehearsal::check {

struct TextLine {
    std::string_view text;     // without its line end
    std::size_t offset = 0;    // of its first byte
    std::size_t end_bytes = 0; // of its line end: CR LF, CR, LF or, at the end of the text, none
};

// An empty line behind the last line end isn't one. A line of more than `longest` bytes, its line end
// counted, comes in pieces of that many.
std::vector<TextLine> lines_of(std::string_view text, std::size_t longest = std::string_view::npos);

// Without the blanks and tabs at both ends.
std::string_view without_blanks(std::string_view text);

// Whether the bytes begin with the mark of 16-bit text in either order, or have a zero byte in them: no 8-bit
// text.
bool is_wide_text(std::string_view bytes);

// Whether there are letters beyond 7 bits and all of them are well-formed UTF-8 (RFC 3629).
bool has_utf8_letters(std::string_view bytes);

// "1 row", "2 rows".
std::string counted_text(std::size_t count, const char* what);

// In double quotes, shortened in its middle when it is long.
std::string in_quotes(std::string_view text);

} // namespace rehearsal::check
