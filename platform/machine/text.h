// Text of the layer's own: UTF-8 for people and files, UTF-16 for the program. Bad input becomes U+FFFD.
#pragma once

#include <string>
#include <string_view>

namespace platform {

std::string to_utf8(std::u16string_view text);
std::u16string to_utf16(std::string_view text);
// For a call's argument: null gives "(null)".
std::string shown(const char16_t* text);

// Without regard to case, letter by letter, as the platform compares file, key and value names.
bool same_name(std::u16string_view a, std::u16string_view b);
std::u16string upper_case(std::u16string_view text);

} // namespace platform
