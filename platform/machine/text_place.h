// Where something stands in a text file.
#pragma once

#include <cstddef>

namespace platform {

// Both count from 1; 0 for nowhere. Columns are UTF-16 units (bytes where a file is read as bytes), a tab is
// one.
struct TextPlace {
    std::size_t line = 0;
    std::size_t column = 0;
    bool operator==(const TextPlace&) const = default;
};

} // namespace platform
