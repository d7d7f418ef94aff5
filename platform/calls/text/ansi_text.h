// 8-bit text of the machine's ANSI code page, for the layer's own use.
#pragma once

#include <string>
#include <string_view>

namespace platform {

std::u16string from_ansi(std::string_view bytes);

} // namespace platform
