// Child programs: they run on the machine's clock, for as long as the machine's description says.
#pragma once

#include "calls/run/kernel_object.h"

#include <cstdint>
#include <string>
#include <vector>

namespace platform {

struct ProcessObject final : KernelObject {
    const char* kind() const override { return "process"; }
    // The clock jumps to the process's end or to the end of the wait.
    std::optional<std::uint32_t> wait(std::uint32_t milliseconds) override;
    std::uint32_t started = 0; // ticks
    std::uint32_t runs_for = 0;
    std::uint32_t exit_code = 0;
};

// The command lines of the programs that were started, in their order.
std::vector<std::u16string> started_commands();

} // namespace platform
