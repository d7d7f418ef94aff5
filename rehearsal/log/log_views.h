// An install log's reading for people and for programs.
#pragma once

#include "rehearsal/log/runs.h"

#include <string>

namespace rehearsal::logs {

struct ViewOptions {
    bool colour = false;
    bool explain = false; // each line with its meaning beside it
};

// One run; `count` runs are shown in all, and this is the `place`th of the file, from 1.
std::string draw_run(const Run& run, std::size_t place, std::size_t count, const ViewOptions& options);

// The whole reading as JSON. `file` is named in it as it is.
std::string reading_as_json(const Reading& reading, const std::string& file, bool explain);

} // namespace rehearsal::logs
