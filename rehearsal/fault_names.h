// Faults of calls that there aren't.
#pragma once

#include "machine/machine.h"

#include <filesystem>

namespace rehearsal {

// Throws std::runtime_error with file, line, column and the names that may have been meant, when a fault of
// the machine names a call that the layer doesn't have.
void check_fault_names(const platform::Machine& machine, const std::filesystem::path& file);

} // namespace rehearsal
