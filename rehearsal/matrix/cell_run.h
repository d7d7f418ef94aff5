// One cell's rehearsal, in this process.
#pragma once

#include "rehearsal/matrix/results.h"

#include <filesystem>
#include <string>
#include <vector>

namespace rehearsal::matrix {

struct CellEnd {
    Result result;
    std::vector<std::string> calls; // that could have failed, each once, in the order of their first coming
};

// On a machine of its own, whose drive C is the folder; it must exist. The clock jumps over waits.
CellEnd run_cell(const Cell& cell, const MediumDriver& driver, const std::filesystem::path& medium,
                 const std::filesystem::path& drive_c);

} // namespace rehearsal::matrix
