// What may be wrong with a run in which something was made to fail.
#pragma once

#include "sweep/cases.h"

#include <string>
#include <vector>

namespace sweep {

// A run must come to its end by itself, misuse nothing and leave nothing open; it may fail, but whatever is
// missing at its end has been told to the user or in the log. Behind a user's events it has to end as if
// there had been none. One text for each thing that is wrong.
std::vector<std::string> judge(const Case& one, const Scenario& scenario, const rehearsal::Outcome& outcome);

} // namespace sweep
