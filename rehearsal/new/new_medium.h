// trk new: a skeleton of a distribution folder, with everything that can be written before driver and
// programs are there, and the list of what only its maker can supply.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace rehearsal::skeleton {

struct NewOptions {
    std::filesystem::path folder;
    std::string model;  // "Label 300": queue, folders, and with underscores what printers answer with
    std::string driver; // "Label 300 Driver"
    std::vector<std::string> languages; // of the table of languages; empty: all
};

// A file of the folder. Lines end in CR LF.
struct SkeletonFile {
    std::string path;  // below the folder, with '/'
    std::string bytes; // as they are written
};

// What the maker puts there. `path` is below the folder; `what` is one sentence.
struct Missing {
    std::string path;
    std::string what;
};

// Why names or languages don't serve; empty when they do.
std::string refuse_names(const NewOptions& options);

// The files of the skeleton. `date` is the INF's, "07/26/2024". The names must serve.
std::vector<SkeletonFile> skeleton_files(const NewOptions& options, const std::string& date);
std::vector<Missing> missing_files(const NewOptions& options);    // that the skeleton doesn't have
std::vector<Missing> texts_to_replace(const NewOptions& options); // that it has, as examples

// Writes the skeleton: the folder must not exist, or be empty. Nothing is left of one that can't be written
// whole. std::runtime_error with the reason.
void write_skeleton(const NewOptions& options);

// The whole sub-command: its exit status.
int new_medium(const NewOptions& options);

} // namespace rehearsal::skeleton
