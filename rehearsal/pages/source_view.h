// Findings beside the lines of the files that they are about.
#pragma once

#include "rehearsal/check/finding.h"
#include "rehearsal/check/medium.h"
#include "rehearsal/pages/page.h"

#include <string>
#include <string_view>
#include <vector>

namespace rehearsal::pages {

// A file's lines as check::Place counts them, as UTF-8 and without their ends. Behind a byte order mark of
// UTF-16 its text is UTF-16; else each line is UTF-8 where it can be, and otherwise 8-bit text of code page
// 1252. None for a file that has NUL bytes in it and no such mark.
std::vector<std::string> source_lines(std::string_view bytes);

// The findings, file by file, each beneath its line with some lines around it; the rest of the file is folded
// away. They carry the name of their severity as their kind for a filter. They have to be sorted by file and
// line, as a report has them.
void put_findings(Html& html, const check::Medium& medium, const std::vector<check::Finding>& findings);

// The tone of a finding, and that of the worst of several.
Tone tone_of(check::Severity severity);
Tone worst_tone(const std::vector<check::Finding>& findings);
// Choices for put_filters.
std::vector<FilterChoice> severity_choices(const std::vector<check::Finding>& findings);

} // namespace rehearsal::pages
