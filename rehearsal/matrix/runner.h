// Runs cells side by side, each in a process of its own.
#pragma once

#include "rehearsal/matrix/cell_run.h"

#include <chrono>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace rehearsal::matrix {

struct RunCounts {
    std::size_t done = 0;
    std::size_t failed = 0;             // of those, without a fault
    std::size_t waiting = 0;            // or running, as far as they are known
    std::size_t without_fault_left = 0; // of those; each may bring others with a fault
};

struct RunSettings {
    std::filesystem::path medium;
    unsigned jobs = 1;
    std::optional<std::chrono::seconds> limit;     // no cell is begun after it
    std::chrono::seconds longest{60};              // for one cell; it is ended then and isn't modelled
    std::function<void(const RunCounts&)> counted; // after each cell; may be empty
    // The cells with a fault that come of a cell without one that ended well; may be empty.
    std::function<std::vector<Cell>(const Cell&, const std::vector<std::string>& calls)> faults_of;
};

struct RunEnd {
    std::vector<Result> results; // as they ended
    std::size_t not_run = 0;
    bool more = false; // cells without a fault are among those, so that their faults aren't known
    bool late = false; // the limit was over
    int signal = 0;    // SIGINT, SIGTERM or SIGHUP ended it; 0: none
};

// To be called while this process has one thread: its children are copies of it. A signal ends those that
// run, and the others are left out; none is left behind, also when this process is killed. std::runtime_error
// when no process or folder can be made.
RunEnd run_cells(const std::vector<Cell>& cells, const MediumDriver& driver, const RunSettings& settings);

} // namespace rehearsal::matrix
