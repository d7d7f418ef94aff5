// The tables of the ANSI code pages: one or two bytes to a character and back.
#pragma once

#include <array>
#include <cstdint>
#include <vector>

namespace platform {

struct CodePageTable {
    std::uint32_t code_page = 0;
    char16_t unknown = u'?';            // for a lead byte with a trail byte that makes no character with it
    std::array<bool, 256> lead{};       // whether the byte begins a two-byte character
    std::vector<char16_t> single;       // 256: characters of single bytes
    std::vector<char16_t> pairs;        // 65536, by lead * 256 + trail; 0 for none; empty without lead bytes
    std::vector<std::uint16_t> bytes;   // 65536, by character: the byte or lead * 256 + trail; 0 for none
    std::vector<std::uint16_t> nearest; // the same, and for what has none the bytes of the best fit
};

// Null for a code page that isn't known; UTF-8 has no table. Good until the process ends, from any thread.
const CodePageTable* code_page_table(std::uint32_t code_page);

} // namespace platform
