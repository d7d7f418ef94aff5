// For the tests of one subject: a medium of a few files, and what the subject finds in it.
#pragma once

#include "rehearsal/check/subjects.h"

#include <string>
#include <utility>
#include <vector>

namespace tests {

using MediumFiles = std::vector<std::pair<std::string, std::string>>; // path with '/', bytes

// Each finding as "id file:line:column" in the order in which they were found; without its place when that is
// the file as a whole: "id file".
std::vector<std::string> places_found(const MediumFiles& files, void (*check)(const rehearsal::check::Medium&,
                                                                              rehearsal::check::Findings&));

// The same as one text each: "id: reason".
std::vector<std::string> reasons_found(const MediumFiles& files,
                                       void (*check)(const rehearsal::check::Medium&,
                                                     rehearsal::check::Findings&));

// A folder with the files, gone with its owner.
class MediumFolder {
public:
    explicit MediumFolder(const MediumFiles& files);
    ~MediumFolder();
    MediumFolder(const MediumFolder&) = delete;
    MediumFolder& operator=(const MediumFolder&) = delete;
    const std::string& path() const { return path_; }

private:
    std::string path_;
};

// Little-endian with a mark; plain letters only.
std::string utf16(std::string_view text);

} // namespace tests
