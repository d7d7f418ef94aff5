// trk check: a distribution folder is looked at, and what is wrong with it is told with its place.
#pragma once

#include "rehearsal/check/finding.h"

#include <filesystem>
#include <iosfwd>
#include <string>
#include <vector>

namespace rehearsal::check {

struct CheckOptions {
    std::filesystem::path medium;
    std::string explain;             // an id, or "all": explained in place of looking at a medium
    std::string format = "text";     // a printer's name
    std::vector<std::string> only;   // ids; empty: all
    std::vector<std::string> ignore; // ids
    std::filesystem::path html;      // file of the findings as a page; empty for none
    bool strict = false;             // warnings are errors
    bool brief = false;              // text without remedies
};

// What came of a check, for the printers.
struct Report {
    std::string medium; // as it was named
    std::size_t files = 0;
    std::vector<Finding> findings; // by file, line and column
    std::vector<Rule> rules;       // that were looked after
    std::size_t count(Severity severity) const;
};

// Looks at the whole medium. std::runtime_error when a file can't be read.
std::vector<Finding> check_medium(const std::filesystem::path& medium);

// The whole sub-command: its exit status.
int run_check(const CheckOptions& options);

// Whether a rehearsal can come to grief over the finding. It never loads programs nor verifies signatures,
// can't know which of two INFs was meant, and starts no sibling.
bool shows_in_rehearsal(const Finding& finding);

// What there is in the medium to explain a rehearsal that failed: its errors of that kind, one line each with
// the remedy, under a headline; nothing when there are none.
void explain_failed_run(std::ostream& out, const std::filesystem::path& medium);

// The rule as a section of Markdown, which is also what the handbook has of it.
std::string explain(const Rule& rule);

const char* name_of(Severity severity); // "error", "warning", "unjudged"

} // namespace rehearsal::check
