// Runs cells side by side, each in a process of its own.
#pragma once

#include "rehearsal/matrix/results.h"

#include <chrono>
#include <filesystem>
#include <functional>

namespace rehearsal::matrix {

struct RunSettings {
    std::filesystem::path program; // trk itself
    std::filesystem::path medium;
    std::filesystem::path folder; // where each cell gets a folder of its own; must exist
    unsigned jobs = 1;
    std::chrono::seconds limit{0}; // no cell is begun after it; 0: none
    // Called under a lock after each cell, with how many are done and how many of them failed without a
    // fault.
    std::function<void(std::size_t done, std::size_t failed)> progress;
};

// The results in the cells' order; cells that were left out count in not_run. SIGINT and SIGTERM let those
// that run come to their end and leave the others out. A cell that takes more than a minute is ended and
// counts as not modelled.
Matrix run_cells(const std::vector<Cell>& cells, const Package& package, const RunSettings& settings);

} // namespace rehearsal::matrix
