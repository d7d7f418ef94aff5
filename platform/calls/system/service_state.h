// What other areas may ask about the machine's services.
#pragma once

#include <cstdint>
#include <string_view>

namespace platform {

// The service's present state (SERVICE_RUNNING 4, ...), or 0 when there is no such service.
std::uint32_t service_state(std::u16string_view name);

} // namespace platform
