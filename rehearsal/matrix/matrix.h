// trk matrix: what a release of a medium has to survive, in one table.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace rehearsal::matrix {

struct MatrixOptions {
    std::filesystem::path medium;
    std::string faults = "none";    // "none", "some" or "all"
    std::string format = "text";    // "text", "json", "junit" or "html"
    std::filesystem::path html;     // file of the results as a page; empty for none
    std::vector<std::string> only;  // patterns of names; empty: all
    std::string shard;              // "3/8"; empty: the whole
    std::vector<std::string> merge; // files of earlier runs, told of in place of a run
    std::filesystem::path write;    // a folder for one run's machine and script, in place of running it
    unsigned time = 0;              // seconds after which no run is begun; 0: no limit
    unsigned jobs = 0;              // processes side by side; 0: as many as the computer has processors
};

// The whole sub-command: its exit status.
int run_matrix(const MatrixOptions& options);

} // namespace rehearsal::matrix
