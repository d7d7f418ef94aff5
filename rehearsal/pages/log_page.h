// The page of trk log.
#pragma once

#include "rehearsal/log/runs.h"

#include <string>

namespace rehearsal::pages {

// The runs from `first` on, from 0. `file` is where the log came from.
std::string log_page(const logs::Reading& reading, std::size_t first, const std::string& file);

} // namespace rehearsal::pages
