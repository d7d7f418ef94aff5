// The outcome of a rehearsal as JSON, for other programs.
#pragma once

#include "rehearsal/judge.h"
#include "rehearsal/outcome.h"

#include <filesystem>
#include <string>

namespace rehearsal {

std::string report_text(const Outcome& outcome, const Verdict& verdict, const std::filesystem::path& drive_c);

} // namespace rehearsal
