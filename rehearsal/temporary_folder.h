// A folder of trk's own below the system's temporary one, taken away at its end.
#pragma once

#include "rehearsal/unfinished.h"

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <stdexcept>
#include <string>

#include <stdlib.h>

namespace rehearsal {

class TemporaryFolder {
public:
    // `name` begins its name. Throws std::runtime_error when none can be made.
    explicit TemporaryFolder(const char* name) {
        std::string path = (std::filesystem::temp_directory_path() / name).string() + "-XXXXXX";
        if (mkdtemp(path.data()) == nullptr)
            throw std::runtime_error(path + ": can't be made: " + std::strerror(errno));
        path_ = path;
    }
    ~TemporaryFolder() { delete_tree(path_); }
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;

    const std::filesystem::path& path() const { return path_; }

private:
    std::filesystem::path path_;
};

} // namespace rehearsal
