// What kind of program a file is, by the headers of the portable executable format (published by the
// platform's maker as "PE Format").
#pragma once

#include <cstdint>
#include <string_view>

namespace rehearsal::check {

enum PeMachine : std::uint16_t { pe_none = 0, pe_x86 = 0x014C, pe_amd64 = 0x8664, pe_arm64 = 0xAA64 };

struct PeKind {
    bool program = false;      // there are the headers of a program or library
    std::uint16_t machine = 0; // PeMachine, or another number of the format
    bool library = false;
};

// `bytes`: the file's beginning, or all of it.
PeKind read_pe_kind(std::string_view bytes);

// "x86", "amd64", "arm64", or the number.
const char* name_of_machine(std::uint16_t machine);

} // namespace rehearsal::check
