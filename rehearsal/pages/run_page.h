// The page of trk rehearse.
#pragma once

#include "rehearsal/check/finding.h"
#include "rehearsal/check/medium.h"
#include "rehearsal/judge.h"
#include "rehearsal/outcome.h"
#include "rehearsal/timeline.h"

#include <string>
#include <vector>

namespace rehearsal::pages {

struct RunShown {
    std::string machine; // as it was named; empty: a fresh one
    std::string script;  // likewise; empty: none
    const Timeline& timeline;
    const Outcome& outcome;
    const Verdict& verdict;
    const check::Medium& medium;
    const std::vector<check::Finding>& findings; // of the medium
};

std::string run_page(const RunShown& run);

} // namespace rehearsal::pages
