// The style and the script that each page carries, embedded in the tool.
#pragma once

#include <string_view>

namespace rehearsal::pages {

std::string_view page_style();
std::string_view page_script();

} // namespace rehearsal::pages
