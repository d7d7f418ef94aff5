#include "rehearsal/check/files_pe.h"
#include "machine/little_endian.h"

#include <cstddef>

namespace rehearsal::check {
namespace {

constexpr std::size_t header_offset_place = 0x3C; // in the old header: where the new one begins
constexpr std::size_t machine_place = 4;          // behind "PE\0\0"
constexpr std::size_t characteristics_place = 22;
constexpr std::uint16_t is_library = 0x2000;

// 0 beyond the end.
std::uint32_t number_at(std::string_view bytes, std::size_t place, unsigned size) {
    return platform::number_at(bytes, place, size).value_or(0);
}

} // namespace

PeKind read_pe_kind(std::string_view bytes) {
    if (!bytes.starts_with("MZ"))
        return {};
    const std::size_t header = number_at(bytes, header_offset_place, 4);
    if (header == 0 || header >= bytes.size() ||
        !bytes.substr(header).starts_with(std::string_view("PE\0\0", 4)))
        return {};
    const auto machine = static_cast<std::uint16_t>(number_at(bytes, header + machine_place, 2));
    return {true, machine, (number_at(bytes, header + characteristics_place, 2) & is_library) != 0};
}

const char* name_of_machine(std::uint16_t machine) {
    switch (machine) {
    case pe_x86:
        return "x86";
    case pe_amd64:
        return "amd64";
    case pe_arm64:
        return "arm64";
    default:
        return "another machine";
    }
}

} // namespace rehearsal::check
