// An install log's bytes as lines of text.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace rehearsal::logs {

constexpr std::uint32_t default_code_page = 1252;

// Whether bytes of the code page can be read.
bool code_page_is_known(std::uint32_t code_page);

// The bytes as UTF-8. A byte order mark of UTF-8 or UTF-16, which an editor may have put there, goes before
// the code page. Bytes that are no text become U+FFFD.
std::string decode_log(std::string_view bytes, std::uint32_t code_page);

// The lines without their ends: CR LF, CR or LF, mixed as they come. `cut` tells that the last has none. The
// parts are of `text`.
std::vector<std::string_view> split_log(std::string_view text, bool& cut);

} // namespace rehearsal::logs
