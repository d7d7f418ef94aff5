// A folder of trk's own below the system's temporary one, taken away at its end.
#pragma once

#include <filesystem>
#include <stdexcept>
#include <string>

#include <stdlib.h>

namespace rehearsal {

class TemporaryFolder {
public:
    // std::runtime_error when none can be made. `prefix` begins its name.
    explicit TemporaryFolder(const char* prefix) {
        std::string name = (std::filesystem::temp_directory_path() / prefix).string() + "-XXXXXX";
        if (mkdtemp(name.data()) == nullptr)
            throw std::runtime_error(name + ": no temporary folder can be made");
        path_ = name;
    }
    ~TemporaryFolder() {
        std::error_code ignored;
        std::filesystem::remove_all(path_, ignored);
    }
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;

    const std::filesystem::path& path() const { return path_; }

private:
    std::filesystem::path path_;
};

} // namespace rehearsal
