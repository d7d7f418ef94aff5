// What came of a rehearsed run, and the judgement over it.
#pragma once

#include "calls/run/gate.h"
#include "calls/run/user.h"
#include "machine/machine.h"
#include "rehearsal/drive_files.h"

#include <string>
#include <vector>

namespace rehearsal {

// What the user asked for, as far as the run got to hear it. Texts are UTF-8.
struct Asked {
    bool install = false; // the terms were accepted, and the install began
    bool network = false; // over the network, not by USB
    bool make_default = false;
    int language = 0;            // of the program's texts, a row of its language table
    std::string address;         // of the selected printer
    std::string model;           // as the program folder is called
    std::string driver;          // of the medium's INF, as the two below
    std::uint64_t version = 0;   // as DRIVER_INFO_6 has it
    std::string inf_file;        // its name alone
    std::size_t label_sizes = 0; // good rows of the medium's table
};

struct Outcome {
    int exit_code = 0;
    Asked asked;
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

// The calls that faults name without ever having struck, because the call didn't come or not so often. Those
// of faults that may miss aren't among them.
std::vector<std::string> find_idle_faults(const Outcome& outcome);

// Whether the path is new or changed.
bool was_made(const Outcome& outcome, const std::string& path);

} // namespace rehearsal
