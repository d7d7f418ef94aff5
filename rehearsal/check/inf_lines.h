// The lines of an INF with their places as bytes: what is looked at when the setup didn't find what it looks
// for.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace rehearsal::check {

// Blanks around each part are left out, comments too. Parts are views of the text that was split.
struct InfByteLine {
    std::size_t offset = 0;   // of the line's first character that is no blank
    std::string_view text;    // up to its last one
    std::string_view section; // the header's name, of a header or of the entry's section
    bool header = false;
    std::string_view key; // in front of the first '='; empty for headers and lines without '='
};

std::vector<InfByteLine> split_inf(std::string_view bytes);

// The first header, or entry of the section, whose name or key is the one wanted but for its case and for
// blanks beside it, else the one whose name is nearest to it; null when none is near.
const InfByteLine* header_like(const std::vector<InfByteLine>& lines, std::string_view name);
const InfByteLine* entry_like(const std::vector<InfByteLine>& lines, std::string_view section,
                              std::string_view key);

} // namespace rehearsal::check
