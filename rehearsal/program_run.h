// One run of the real program in a session of its own.
#pragma once

#include "calls/run/gate.h"
#include "rehearsal/log_follower.h"
#include "rehearsal/outcome.h"

#include <windows.h>

#include <filesystem>
#include <functional>
#include <string>
#include <vector>

namespace rehearsal {

// The folder that is drive C for a machine file, when nothing else is said.
std::filesystem::path drive_of(const std::filesystem::path& machine_file);

// The folders that the machine has from the start, as the program sees them.
std::vector<std::u16string> first_folders(const platform::Machine& machine);

// Makes the folders on the drive that the machine has from the start.
void prepare_drive(const platform::Machine& machine, const std::filesystem::path& drive_c);

struct ProgramRun {
    std::filesystem::path drive_c; // prepared by run_program
    // What drive_c is a fresh copy of, times included: then only what the run changes is digested. Else
    // empty.
    std::filesystem::path original_drive;
    std::filesystem::path medium;
    std::string command_line; // arguments alone, UTF-8
    bool real_time = false;
    unsigned program_bits = 0; // of the program, 32 or 64; 0: as many as the system has
    bool hand_over = false;    // a sibling that it starts is the same program again, with 64 bits
    bool lend_sibling = false; // the sibling counts as present where the medium has none
    std::function<int(HINSTANCE, char* command_line)> entry;    // empty: the setup program's WinMain
    std::function<void(const platform::JournalEntry&)> on_call; // may be empty
    std::function<void()> finished; // called at the end of the run, still inside the session; may be empty
};

// What a user starts is trk_setup.exe, unless the machine names its sibling. On a 64-bit system it hands over
// to the sibling beside it; a medium that has none yet borrows the one of this project, unless the machine is
// told to have none. Sets the run's program by its medium.
void choose_program(const platform::Machine& machine, ProgramRun& run);

// Runs the program from its entry point on. The machine is changed in place; `log` has the run's lines
// afterwards. What the user did and saw (boxes, problem) is the caller's to add to the outcome.
Outcome run_program(const ProgramRun& run, platform::Machine& machine, platform::User& user,
                    LogFollower& log);

} // namespace rehearsal
