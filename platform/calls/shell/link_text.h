// 8-bit text in link files, by the code page.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace platform {

std::string link_ansi(std::u16string_view text, std::uint32_t code_page); // "?" for what has no counterpart
std::u16string link_text(std::string_view ansi, std::uint32_t code_page);

// Bits of the header's second field, and sizes that both directions go by.
enum LinkFlags : std::uint32_t {
    link_has_id_list = 0x01,
    link_has_info = 0x02,
    link_has_name = 0x04,
    link_has_relative_path = 0x08,
    link_has_working_folder = 0x10,
    link_is_unicode = 0x80,
};
constexpr std::uint32_t link_header_size = 76;
constexpr std::uint32_t link_info_header_size = 0x24;  // with the offsets of the 16-bit paths
constexpr std::uint32_t link_info_short_header = 0x1C; // without them
constexpr std::uint32_t link_info_local = 1;           // flag: volume and local path are there
constexpr std::string_view link_class_id("\x01\x14\x02\x00\x00\x00\x00\x00\xC0\x00\x00\x00\x00\x00\x00\x46",
                                         16);

} // namespace platform
