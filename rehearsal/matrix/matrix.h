// trk matrix: what a release of a medium has to survive, in one table.
#pragma once

#include <cstddef>
#include <filesystem>
#include <string>
#include <vector>

namespace rehearsal::matrix {

struct MatrixOptions {
    std::filesystem::path medium;
    std::string faults = "none";    // "none", "some" or "all"
    std::string format = "text";    // "text", "json", "junit" or "html"
    std::vector<std::string> only;  // patterns of cells' names; empty: all
    std::string shard;              // "3/8"; empty: the whole
    std::vector<std::string> merge; // files of earlier runs, printed in place of a run
    unsigned time = 0;              // seconds after which no cell is begun; 0: no limit
    unsigned jobs = 0;              // processes side by side; 0: as many as the computer has processors
    bool list = false;              // the cells' names alone
};

// The whole sub-command: its exit status, 1 when a run without a fault failed.
int run_matrix(const MatrixOptions& options);

} // namespace rehearsal::matrix
