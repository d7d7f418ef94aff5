// What came of a rehearsed run, and the judgement over it.
#pragma once

#include "calls/run/gate.h"
#include "calls/run/user.h"
#include "machine/machine.h"
#include "rehearsal/drive_files.h"

#include <string>
#include <vector>

namespace rehearsal {

struct Outcome {
    int exit_code = 0;
    std::string refusal;                       // why the layer stopped the run; empty when it didn't
    std::string problem;                       // why the user's script stopped; empty when it didn't
    std::string log;                           // this run's part, UTF-8
    std::vector<platform::DialogView> dialogs; // with their last texts
    std::vector<platform::BoxView> boxes;
    std::vector<std::string>
        failed_steps;                 // as the program told them: "log: " a line, "failed: " a step's name
    unsigned warnings = 0;            // boxes with the exclamation icon behind which the run went on
    std::vector<std::string> misuses; // what the program did that the platform forbids
    std::vector<std::string> leaks;   // handles and memory left open at the end
    std::vector<platform::JournalEntry> journal;
    platform::Machine before;
    platform::Machine after;
    DriveFiles files_before;
    DriveFiles files_after;
};

// What failed, wherever the run then led: the steps of which the program says so, and the failure boxes.
std::vector<std::string> find_failures(const Outcome& outcome);

// The calls that faults name without ever having struck: the call didn't come, or not so often.
std::vector<std::string> find_idle_faults(const Outcome& outcome);

// Whether the path is new or changed.
bool was_made(const Outcome& outcome, const std::string& path);

} // namespace rehearsal
