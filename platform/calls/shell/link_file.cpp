#include "calls/shell/link_file.h"

#include "calls/shell/link_text.h"

#include <string_view>

namespace platform {
namespace {

constexpr std::uint32_t drive_fixed = 3;
constexpr std::uint32_t show_normal = 1;

void put(std::string& out, std::uint64_t number, unsigned bytes) {
    for (unsigned index = 0; index < bytes; ++index)
        out += static_cast<char>((number >> (8 * index)) & 0xFF);
}

void put_text(std::string& out, std::u16string_view text) {
    for (const char16_t c : text)
        put(out, c, 2);
}

void put_counted(std::string& out, std::u16string_view text) {
    put(out, text.size(), 2);
    put_text(out, text);
}

std::string volume_id(std::uint32_t serial) {
    constexpr std::uint32_t size = 17, label_offset = 16; // an empty label is its terminator
    std::string out;
    put(out, size, 4);
    put(out, drive_fixed, 4);
    put(out, serial, 4);
    put(out, label_offset, 4);
    put(out, 0, 1);
    return out;
}

// size, header size, flags, then offsets from the block's start: volume, 8-bit path, network (none), 8-bit
// rest of the path, 16-bit path, 16-bit rest. The rest is empty: the path is whole.
std::string link_info(std::u16string_view target, std::uint32_t serial, std::uint32_t code_page) {
    const std::string volume = volume_id(serial);
    const std::string ansi = link_ansi(target, code_page);
    const std::size_t path = link_info_header_size + volume.size();
    const std::size_t rest = path + ansi.size() + 1;
    const std::size_t wide_path = rest + 1;
    const std::size_t wide_rest = wide_path + 2 * (target.size() + 1);
    std::string out;
    put(out, wide_rest + 2, 4);
    put(out, link_info_header_size, 4);
    put(out, link_info_local, 4);
    for (const std::size_t offset :
         {std::size_t{link_info_header_size}, path, std::size_t{0}, rest, wide_path, wide_rest})
        put(out, offset, 4);
    out += volume;
    out += ansi;
    put(out, 0, 2); // ends the path and the empty rest
    put_text(out, target);
    put(out, 0, 4);
    return out;
}

std::string header(std::uint32_t flags, const LinkTargetFacts& facts) {
    std::string out;
    put(out, link_header_size, 4);
    out += link_class_id;
    put(out, flags, 4);
    put(out, facts.attributes, 4);
    for (const std::uint64_t time : {facts.created, facts.accessed, facts.written})
        put(out, time, 8);
    put(out, facts.size, 4);
    put(out, 0, 4); // icon index
    put(out, show_normal, 4);
    put(out, 0, 8); // hot key, reserved
    put(out, 0, 4); // reserved
    return out;
}

} // namespace

std::string write_link(const LinkFile& link, const LinkTargetFacts& facts, std::uint32_t code_page) {
    const std::uint32_t flags = link_is_unicode | (link.target.empty() ? 0u : link_has_info) |
                                (link.description.empty() ? 0u : link_has_name) |
                                (link.working_folder.empty() ? 0u : link_has_working_folder);
    std::string out = header(flags, facts);
    if (!link.target.empty())
        out += link_info(link.target, facts.volume_serial, code_page);
    if (!link.description.empty())
        put_counted(out, link.description);
    if (!link.working_folder.empty())
        put_counted(out, link.working_folder);
    put(out, 0, 4);
    return out;
}

} // namespace platform
