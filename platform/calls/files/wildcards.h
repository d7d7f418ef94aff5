#pragma once

#include <string_view>

namespace platform {

bool has_wildcard(std::u16string_view text);

// Whether the name matches, without regard to case. "*" stands for any characters and "?" for one that isn't
// a point, or for none at a point or at the name's end. "*.*" matches everything; a point in front of a
// wildcard also matches the name's end, so that "read.*" finds a file "read".
bool matches(std::u16string_view pattern, std::u16string_view name);

// Whether a file's name or its short one, if it has one, matches: "*.inf" finds "x.info", which is X~1.INF
// too.
bool matches_either(std::u16string_view pattern, std::u16string_view name, std::u16string_view short_name);

} // namespace platform
