// Lines of the log held against the formats by which the program composes them.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace rehearsal::logs {

// A format's fields as they stand in a line, in their order.
using Fields = std::vector<std::string_view>;

// Whether the line, without its line end, can come from the format: %s, %S and %ls stand for any text, %d and
// %u for a decimal number (%02d too), %x and %lx for a hexadecimal one. Blanks at the end of either don't
// count, since mail programs take them off. A text ends at the first place where the rest can follow. The
// time is linear in the line for each text of the format. The fields are parts of `line`.
bool match_pattern(std::string_view pattern, std::string_view line, Fields& fields);

// The literal parts of a format, without its fields.
std::vector<std::string> literal_parts(std::string_view pattern);

} // namespace rehearsal::logs
