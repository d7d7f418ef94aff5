// trk rehearse: the whole program against a machine that a file describes.
#pragma once

#include <filesystem>
#include <string>

namespace rehearsal {

struct RehearseOptions {
    std::filesystem::path medium;
    std::filesystem::path machine_file; // empty: a fresh machine in a temporary folder
    std::string profile;                // of a machine in place of the file; empty: none
    std::filesystem::path drive_c;      // empty: beside the machine file, its name with ".drive-c" behind it
    std::filesystem::path script;       // empty: a person at a terminal, or a user who cancels
    std::filesystem::path record;       // where a person's actions go as a script; empty: nowhere
    std::string command_line;
    std::string report;         // file, "-" for standard output, empty for none
    std::filesystem::path html; // file of the run as a page; empty for none
    bool quiet = false;
};

int rehearse(const RehearseOptions& options);

} // namespace rehearsal
