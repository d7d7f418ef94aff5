// The 32-bit resource file that windres writes, and the dialog templates in it. All readers check every
// length against the bytes that are there and throw ResourceError for a file that is cut short or out of
// shape.
#pragma once

#include <compare>
#include <cstdint>
#include <span>
#include <stdexcept>
#include <string>
#include <vector>

namespace platform {

struct ResourceError : std::runtime_error {
    using std::runtime_error::runtime_error;
};

// A type or name: a number, or a text when `text` isn't empty. Texts are kept in upper case.
struct ResourceName {
    std::uint16_t id = 0;
    std::u16string text;
    auto operator<=>(const ResourceName&) const = default;
};

struct ResourceEntry {
    ResourceName type;
    ResourceName name;
    std::uint16_t language = 0;
    std::vector<std::uint8_t> data;
};

std::vector<ResourceEntry> read_resource_file(std::span<const std::uint8_t> bytes);

// The text at `index` (0 to 15) of a string block; empty when the block has none there.
std::u16string read_block_string(std::span<const std::uint8_t> block, unsigned index);

// Positions and sizes are dialog units.
struct ControlTemplate {
    std::uint32_t style = 0;
    std::uint32_t extended_style = 0;
    int left = 0, top = 0, width = 0, height = 0;
    std::uint32_t id = 0;
    ResourceName window_class;
    std::u16string text;
    std::uint16_t image = 0; // the title as a number: the picture that a static shows
};

struct DialogTemplate {
    std::uint32_t style = 0;
    std::uint32_t extended_style = 0;
    int left = 0, top = 0, width = 0, height = 0;
    bool has_menu = false;
    bool has_class = false;
    std::u16string caption;
    std::uint16_t font_points = 0; // 0: the template names no font
    std::u16string font;
    std::vector<ControlTemplate> controls;
};

// Both forms, the plain and the extended one.
DialogTemplate read_dialog_template(std::span<const std::uint8_t> bytes);

} // namespace platform
