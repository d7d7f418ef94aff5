// Which of a machine's faults is due for a call: the rule, and the counts that it needs.
#pragma once

#include "machine/machine.h"

#include <map>
#include <string_view>

namespace platform {

class FaultCounts {
public:
    // Counts this call for the faults that fit it, in their order, up to the first that is due. Null when
    // none is.
    const Fault* due(const std::vector<Fault>& faults, std::string_view call, std::string_view argument);

private:
    std::map<std::size_t, unsigned> matches_; // by the fault's place in the list
};

} // namespace platform
