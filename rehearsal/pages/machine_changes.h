// What a run changed of the machine, key by key of the machine file, and of its drive.
#pragma once

#include "rehearsal/outcome.h"
#include "rehearsal/pages/html.h"

#include <string>
#include <vector>

namespace rehearsal::pages {

struct Change {
    std::string thing;         // "spooler / queues / Label 100 Series"
    std::string key;           // of the thing: "data / Label Sizes\258"; empty: the thing itself
    std::string before, after; // empty: not there
};

// In the order of the machine file; what one thing has changed in stands together. Records are told by their
// names and not by their places.
std::vector<Change> machine_changes(const platform::Machine& before, const platform::Machine& after);

void put_machine_changes(Html& html, const Outcome& outcome);
void put_file_changes(Html& html, const Outcome& outcome);

} // namespace rehearsal::pages
