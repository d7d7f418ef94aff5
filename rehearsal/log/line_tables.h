// The parts of the table of lines.
#pragma once

#include "rehearsal/log/lines.h"

namespace rehearsal::logs {

std::span<const Line> lines_of_setup();   // from the start to the terms page
std::span<const Line> lines_of_install(); // the worker's
std::span<const Line> lines_of_library(); // of operations that the setup doesn't call

} // namespace rehearsal::logs
