// The drive C of a run that is either wholly there in the end or not at all: the run works on a copy, which
// takes the drive's place when everything went well.
#pragma once

#include "rehearsal/changeover.h"
#include "rehearsal/unfinished.h"

#include <filesystem>

namespace rehearsal {

class StagedDrive {
public:
    // Copies the drive, if there is one, into a folder beside it. Times and rights are kept, links stay
    // links, and a file with several names shares them with its copy. Throws std::runtime_error with the
    // reason, for instance when the disk is full.
    explicit StagedDrive(const std::filesystem::path& drive);

    const std::filesystem::path& path() const { return stage_.path(); } // where the run works
    const std::filesystem::path& original() const { return drive_; }
    // What is to be renamed for the copy to take the drive's place.
    Replacement replacement() const { return {stage_.path(), drive_}; }

private:
    const std::filesystem::path drive_;
    Unfinished stage_;
};

} // namespace rehearsal
