// The forms in which findings are written. None knows a check.
#pragma once

#include "rehearsal/check/check.h"

#include <iosfwd>

namespace rehearsal::check {

struct TextStyle {
    bool colour = false;
    bool brief = false; // no remedies
};

// FILE:LINE:COLUMN: SEVERITY: REASON [ID], the remedy beneath, and a line that counts.
void print_text(std::ostream& out, const Report& report, const TextStyle& style);
void print_findings(std::ostream& out, const std::vector<Finding>& findings, const TextStyle& style);
void print_json(std::ostream& out, const Report& report);
// Static Analysis Results Interchange Format 2.1.0 (OASIS), one run.
void print_sarif(std::ostream& out, const Report& report);
// A test suite as CI servers read it: each error is a failed case, each rule without errors one that passed.
void print_junit(std::ostream& out, const Report& report);

} // namespace rehearsal::check
