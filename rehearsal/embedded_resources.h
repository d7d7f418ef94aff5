// The program's resources, compiled, inside the tool.
#pragma once

#include <filesystem>

namespace rehearsal {

// The .res file that the tool was built with, as a file in memory that goes with the process. Throws
// std::runtime_error when there is no memory for it.
std::filesystem::path embedded_resources();

} // namespace rehearsal
