// The roads that are swept: each a way through the program, or over the library that comes with it, on a
// machine on which it has something to do.
#pragma once

#include "rehearsal/judge.h"
#include "scenarios/scenario.h"

#include <string>
#include <vector>

namespace sweep {

// How the end of a road is judged, beyond what holds for every run.
enum class Purpose {
    install, // by the machine's state, as a rehearsal is
    removal, // likewise
    library  // by nothing more: each routine's own result is its tests' matter
};

struct Road {
    const char* name;
    Purpose purpose;
    void (*prepare)(Scenario&);
};

const std::vector<Road>& roads();

// Makes the scenario's next run a removal of the sample's model.
void prepare_removal_run(Scenario& scenario);

// What the last run of a removal was to take away.
extern rehearsal::Removal last_removal;

} // namespace sweep
