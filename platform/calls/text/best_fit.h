// What a code page writes for characters that it hasn't: the nearest letter that it has.
#pragma once

#include <cstdint>
#include <vector>

namespace platform {

struct BestFit {
    char16_t character; // has no counterpart in the code page
    char16_t written;   // has one
};

// The whole of the code page's published best-fit table; empty for a code page that isn't known.
std::vector<BestFit> best_fits(std::uint32_t code_page);

} // namespace platform
