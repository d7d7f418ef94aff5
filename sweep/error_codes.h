// The errors with which a call is made to fail.
#pragma once

#include <array>
#include <cstdint>
#include <string_view>

namespace sweep {

using ErrorCodes = std::array<std::uint32_t, 3>;

// The three of a call. Those that only say where a list ends are left out: a list that ends early can't be
// told from a shorter one.
ErrorCodes error_codes(std::string_view call);

} // namespace sweep
