// Installs and removals one after the other in this process, on one machine.
#pragma once

#include <string>

namespace sweep {

// What is wrong, empty for nothing: a round that doesn't end well, or memory or open files that a round
// leaves behind. `told` gets a line of figures.
std::string soak(unsigned long rounds, std::string& told);

} // namespace sweep
