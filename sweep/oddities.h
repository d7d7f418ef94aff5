// What is known to be odd and stays as it is, each with its reason.
#pragma once

#include "sweep/cases.h"

#include <string>

namespace sweep {

// Whether the complaint about such a run is known.
bool is_known(const Case& one, const std::string& complaint);

} // namespace sweep
