// The names of all calls that the layer has, as they stand at the gate; a fault can only be of one of them.
#pragma once

#include <string>
#include <vector>

namespace platform {

// Sorted. The list is made from the layer's sources when it is built.
const std::vector<std::string>& call_names();

} // namespace platform
