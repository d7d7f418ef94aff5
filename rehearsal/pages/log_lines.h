// Lines of an install log with their meaning beside them.
#pragma once

#include "rehearsal/log/lines.h"
#include "rehearsal/pages/html.h"
#include "rehearsal/pages/page.h"

#include <string>
#include <string_view>

namespace rehearsal::pages {

// A list's entry. `line` is null for one that the program doesn't write. `kind` is that of a filter; `id` may
// be empty; `number` too, else it is shown in front.
struct ShownLine {
    std::string_view text;
    const logs::Line* line = nullptr;
    std::string_view kind;
    std::string_view id;
    std::string_view number;
};

void put_log_line(Html& html, const ShownLine& line);

// "plain", "notice", "failed" or "foreign": the kind of a line by its weight.
const char* kind_of(const logs::Line* line);

} // namespace rehearsal::pages
