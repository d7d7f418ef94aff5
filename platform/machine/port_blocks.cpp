#include "machine/port_blocks.h"

#include "machine/little_endian.h"
#include "machine/spooler_model.h"

#include <algorithm>

namespace platform {
namespace {

void write_number(std::span<std::uint8_t> block, std::size_t offset, std::uint32_t value) {
    for (std::size_t i = 0; i < 4; ++i)
        block[offset + i] = static_cast<std::uint8_t>(value >> (8 * i));
}

bool all_zero(Bytes bytes) {
    return std::all_of(bytes.begin(), bytes.end(), [](std::uint8_t byte) { return byte == 0; });
}

// A field's text into `out`; false when it has no terminator.
bool take(Bytes block, std::size_t offset, std::size_t capacity, std::u16string& out) {
    const auto text = read_block_text(block, offset, capacity);
    out = text.value_or(u"");
    return text.has_value();
}

} // namespace

std::uint32_t read_block_number(Bytes block, std::size_t offset) {
    return ByteReader(block.subspan(offset)).number(4);
}

std::optional<std::u16string> read_block_text(Bytes block, std::size_t offset, std::size_t capacity) {
    const Bytes rest = block.subspan(std::min(offset, block.size()));
    const std::u16string field = utf16_text(rest.first(std::min(rest.size(), 2 * capacity)));
    const std::size_t end = field.find(u'\0');
    return end == field.npos ? std::nullopt : std::optional(field.substr(0, end));
}

void write_block_text(std::span<std::uint8_t> block, std::size_t offset, std::size_t capacity,
                      std::u16string_view text) {
    std::u16string kept(text.substr(0, capacity - 1));
    kept.push_back(u'\0');
    std::ranges::copy(utf16_bytes(kept), block.subspan(offset).begin());
}

// AddPort, version 1: name at 0 (64 characters), version 128, protocol 132, size 136, reserved 140, host
// address 144 (49), community 242 (33), double spool 308, queue 312 (33), IP address 378 (16), reserved 410
// to 951, port number 952, SNMP switch 956, SNMP index 960.
std::uint32_t read_add_port(Bytes block, PortRequest& request) {
    if (block.size() != add_port_size)
        return spooler_error::invalid_data;
    if (read_block_number(block, 128) != 1)
        return spooler_error::invalid_level;
    if (read_block_number(block, 136) != add_port_size)
        return spooler_error::invalid_data;
    const bool texts = take(block, 0, 64, request.port_name) && take(block, 144, 49, request.host_address) &&
                       take(block, 242, 33, request.snmp_community) && take(block, 312, 33, request.queue) &&
                       take(block, 378, 16, request.ip_address);
    request.protocol = read_block_number(block, 132);
    request.port_number = read_block_number(block, 952);
    request.snmp_enabled = read_block_number(block, 956);
    const bool protocol = request.protocol == 1 || request.protocol == 2;
    const bool reserved = read_block_number(block, 140) == 0 && all_zero(block.subspan(410, 542));
    if (!texts || request.port_name.empty() || !protocol || !reserved)
        return spooler_error::invalid_parameter;
    return 0;
}

// DeletePort, version 1: name at 0 (64 characters), reserved 128 to 227, version 228, reserved 232.
std::uint32_t read_delete_port(Bytes block, std::u16string& port_name) {
    if (block.size() != delete_port_size)
        return spooler_error::invalid_data;
    if (read_block_number(block, 228) != 1)
        return spooler_error::invalid_level;
    const bool reserved = all_zero(block.subspan(128, 100)) && read_block_number(block, 232) == 0;
    if (!take(block, 0, 64, port_name) || port_name.empty() || !reserved)
        return spooler_error::invalid_parameter;
    return 0;
}

// The fields whose meaning only the monitor knows hold something, so that a reader who must leave them alone
// can be caught changing them.
std::vector<std::uint8_t> new_configuration(std::uint32_t size, std::u16string_view port_name) {
    std::vector<std::uint8_t> block(size);
    write_number(block, 0, 1);
    write_number(block, 4, size);
    write_block_text(block, configuration_name_offset, configuration_name_capacity, port_name);
    if (size == 6168) {
        write_block_text(block, 2056, 512, u"0.0.0.0");
        write_block_text(block, 3084, 512, u"idle");
        write_block_text(block, 4116, 512, u"C:\\Windows\\System32\\spool");
        write_block_text(block, 5140, 512, u"unnamed");
    } else if (size == 4112) {
        write_block_text(block, 2060, 512, u"idle");
        write_block_text(block, 3088, 512, u"unnamed");
    }
    return block;
}

} // namespace platform
