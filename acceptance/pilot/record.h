// What a driven run showed, as JSON in the manner of the rehearsal's report.
#pragma once

#include "acceptance/pilot/scene.h"

#include <string>

namespace pilot {

struct Ending {
    DWORD exit_code = 0;
    std::string script_problem; // empty: the script could be followed
    bool timed_out = false;     // the program was ended at the time limit
};

std::string record_text(const Scene& scene, const Ending& ending);

} // namespace pilot
