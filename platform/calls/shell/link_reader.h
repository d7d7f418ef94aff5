// Reads shell link files back, whoever wrote them.
#pragma once

#include "calls/shell/link_file.h"

#include <optional>
#include <string_view>

namespace platform {

// Nothing, and the reason, when the bytes aren't a shell link or end too early. A target that the link gives
// as a list of shell items alone is left empty. 8-bit texts are read by the code page.
std::optional<LinkFile> read_link(std::string_view bytes, std::uint32_t code_page, std::string& reason);

} // namespace platform
