// The page of trk check.
#pragma once

#include "rehearsal/check/check.h"
#include "rehearsal/check/medium.h"

#include <string>

namespace rehearsal::pages {

std::string check_page(const check::Report& report, const check::Medium& medium);

} // namespace rehearsal::pages
