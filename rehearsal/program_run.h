// One run of the real program in a session of its own.
#pragma once

#include "calls/gate.h"
#include "rehearsal/log_follower.h"
#include "rehearsal/outcome.h"

#include <filesystem>
#include <functional>
#include <string>

namespace rehearsal {

struct ProgramRun {
    std::filesystem::path drive_c; // made ready with the folders that the machine has from the start
    std::filesystem::path medium;
    std::string command_line; // arguments alone, UTF-8
    bool real_time = false;
    std::function<void(const platform::JournalEntry&)> on_call; // may be empty
    std::function<void()> finished; // called at the end of the run, still inside the session; may be empty
};

// Runs the program from WinMain on. The machine is changed in place; `log` has the run's lines afterwards.
// What the user did and saw (boxes, problem) is the caller's to add to the outcome.
Outcome run_program(const ProgramRun& run, platform::Machine& machine, platform::User& user,
                    LogFollower& log);

} // namespace rehearsal
