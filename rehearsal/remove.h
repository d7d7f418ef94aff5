// trk remove: takes an installation off the machine that rehearsals left behind.
#pragma once

#include <filesystem>
#include <string>

namespace rehearsal {

struct RemoveOptions {
    std::filesystem::path machine_file;
    std::filesystem::path drive_c; // empty: beside the machine file, its name with ".drive-c" behind it
    std::string model;             // the model's display name; empty: the only one that is installed
    std::filesystem::path before; // a machine file of an earlier time, with its drive beside it; may be empty
    bool quiet = false;
};

// Removes, tells what the machine then differs in from the earlier time, and gives an exit status as rehearse
// does.
int remove(const RemoveOptions& options);

} // namespace rehearsal
