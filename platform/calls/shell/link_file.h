// What a shell link file (.lnk) says, and its published binary form. All numbers are little-endian.
//
//   header        76 bytes: size, class id, which parts follow, the target's attributes, times and size
//   link info     the target's volume and path, 8-bit and 16-bit, when there is a target
//   name          16-bit count of characters, then the characters; likewise the working folder
//   end           32 bits of zero: no further blocks
#pragma once

#include <cstdint>
#include <string>

namespace platform {

struct LinkFile {
    std::u16string target; // absolute; empty: the link leads nowhere
    std::u16string working_folder;
    std::u16string description;
};

// The target's facts at the time when the link is saved; zeros when it isn't there.
struct LinkTargetFacts {
    std::uint32_t attributes = 0;
    std::uint64_t created = 0, accessed = 0, written = 0; // 100 ns since 1601
    std::uint32_t size = 0;                               // low 32 bits
    std::uint32_t volume_serial = 0;
};

// Each text has at most 65,535 characters. 8-bit text goes by the code page.
std::string write_link(const LinkFile& link, const LinkTargetFacts& facts, std::uint32_t code_page);

} // namespace platform
