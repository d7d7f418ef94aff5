#include "calls/shell/link_reader.h"

#include "calls/shell/link_text.h"
#include "machine/little_endian.h"

namespace platform {
namespace {

// A piece of the file as 8-bit text.
std::string_view take_text(ByteReader& bytes, std::size_t count) {
    const auto piece = bytes.take(count);
    return {reinterpret_cast<const char*>(piece.data()), piece.size()};
}

// The text at an offset of a block, up to its terminator or the block's end.
std::u16string ansi_at(std::string_view block, std::uint32_t offset, std::uint32_t code_page) {
    if (offset == 0 || offset >= block.size())
        return {};
    const std::string_view rest = block.substr(offset);
    return link_text(rest.substr(0, rest.find('\0')), code_page);
}

std::u16string wide_at(std::string_view block, std::uint32_t offset) {
    if (offset == 0 || offset >= block.size())
        return {};
    const std::u16string text = utf16_text(block.substr(offset));
    return text.substr(0, text.find(u'\0'));
}

// Local path and the rest of it. The 16-bit forms, where there are any, hold what the 8-bit ones can't.
std::u16string target_of(std::string_view block, std::uint32_t code_page) {
    ByteReader header(block);
    header.number(4);
    const std::uint32_t header_size = header.number(4);
    const std::uint32_t flags = header.number(4);
    header.number(4); // volume
    const std::uint32_t path = header.number(4);
    header.number(4); // network
    const std::uint32_t rest = header.number(4);
    const bool has_wide = header_size >= link_info_header_size;
    const std::uint32_t wide_path = has_wide ? header.number(4) : 0;
    const std::uint32_t wide_rest = has_wide ? header.number(4) : 0;
    if (header.short_of_bytes() || (flags & link_info_local) == 0)
        return {};
    if (wide_path != 0)
        return wide_at(block, wide_path) + wide_at(block, wide_rest);
    return ansi_at(block, path, code_page) + ansi_at(block, rest, code_page);
}

std::string_view info_block(ByteReader& bytes) {
    ByteReader ahead = bytes;
    const std::uint32_t size = ahead.number(4);
    return take_text(bytes, size < link_info_short_header ? bytes.left() + 1 : size);
}

std::u16string counted(ByteReader& bytes, bool unicode, std::uint32_t code_page) {
    const std::uint32_t count = bytes.number(2);
    return unicode ? bytes.text(count) : link_text(take_text(bytes, count), code_page);
}

} // namespace

std::optional<LinkFile> read_link(std::string_view content, std::uint32_t code_page, std::string& reason) {
    ByteReader bytes(content);
    const std::uint32_t header_size = bytes.number(4);
    if (header_size != link_header_size || take_text(bytes, link_class_id.size()) != link_class_id) {
        reason = "not a shell link";
        return std::nullopt;
    }
    const std::uint32_t flags = bytes.number(4);
    bytes.take(link_header_size - 24); // size, class id and flags are read
    if ((flags & link_has_id_list) != 0)
        bytes.take(bytes.number(2));
    LinkFile link;
    if ((flags & link_has_info) != 0)
        link.target = target_of(info_block(bytes), code_page);
    const bool unicode = (flags & link_is_unicode) != 0;
    if ((flags & link_has_name) != 0)
        link.description = counted(bytes, unicode, code_page);
    if ((flags & link_has_relative_path) != 0)
        counted(bytes, unicode, code_page);
    if ((flags & link_has_working_folder) != 0)
        link.working_folder = counted(bytes, unicode, code_page);
    if (bytes.short_of_bytes()) {
        reason = "the link ends too early";
        return std::nullopt;
    }
    return link;
}

} // namespace platform
