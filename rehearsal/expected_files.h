// The files and shortcuts that an install leaves, by the rows that the documentation of a distribution folder
// names; what is missing is told by name.
#pragma once

#include "rehearsal/outcome.h"

#include <filesystem>
#include <string>
#include <vector>

namespace rehearsal {

// The program folder with every file of the medium that belongs into it, byte by byte; appends what is
// missing. `drive_c` holds the files of files_after.
void check_files(const Outcome& outcome, const std::filesystem::path& medium,
                 const std::filesystem::path& drive_c, std::vector<std::string>& missing);

// The group with both shortcuts, each leading to its program.
void check_shortcuts(const Outcome& outcome, const std::filesystem::path& drive_c,
                     std::vector<std::string>& missing);

} // namespace rehearsal
