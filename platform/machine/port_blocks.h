// The blocks that port monitors take, read and written byte by byte at their published offsets. Numbers are
// 32 bits, little-endian; texts 16-bit characters with a terminator inside their field.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace platform {

using Bytes = std::span<const std::uint8_t>;

constexpr std::uint32_t add_port_size = 964;
constexpr std::uint32_t delete_port_size = 236;

struct PortRequest {
    std::u16string port_name;
    std::uint32_t protocol = 0; // 1 RAW, 2 LPR
    std::u16string host_address;
    std::u16string snmp_community;
    std::u16string queue;
    std::u16string ip_address;
    std::uint32_t port_number = 0;
    std::uint32_t snmp_enabled = 0;
};

// What a monitor answers to a block that it can't read: invalid_data for a wrong size, invalid_level for
// another version than 1, invalid_parameter for a field that breaks the layout; 0 when the request was read.
std::uint32_t read_add_port(Bytes block, PortRequest& request);
std::uint32_t read_delete_port(Bytes block, std::u16string& port_name);

// The text that begins at `offset` and ends with a terminator before `offset` + `capacity` characters.
std::optional<std::u16string> read_block_text(Bytes block, std::size_t offset, std::size_t capacity);
std::uint32_t read_block_number(Bytes block, std::size_t offset);

// A custom monitor's configuration block as the monitor makes it for a new port, with 6,168 or 4,112 bytes.
std::vector<std::uint8_t> new_configuration(std::uint32_t size, std::u16string_view port_name);
// Where both kinds of configuration block hold the port's name, and how many characters of room it has.
constexpr std::size_t configuration_name_offset = 8;
constexpr std::size_t configuration_name_capacity = 1024;
void write_block_text(std::span<std::uint8_t> block, std::size_t offset, std::size_t capacity,
                      std::u16string_view text);

} // namespace platform
