// Text on its way into XML and HTML.
#pragma once

#include <string>
#include <string_view>

namespace rehearsal {

// For contents and for attributes in quotes. Control characters but tab and line feed, which XML 1.0 has not
// even as references, become U+FFFD, and so does what isn't UTF-8.
std::string escaped_markup(std::string_view text);

} // namespace rehearsal
