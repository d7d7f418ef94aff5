// What one platform made of a scenario, to be held against what the other made of it.
#pragma once

#include <filesystem>
#include <map>
#include <string>
#include <vector>

namespace acceptance {

// Path below drive C in small letters, with slashes -> what lies there. Windows names know no case, and the
// two drives write their standing folders differently.
struct MadeFile {
    std::filesystem::path place;
    bool folder = false;
};
using MadeFiles = std::map<std::string, MadeFile>;

// What a run made on the drive: what its beginning doesn't have, or has with other bytes. Links on the drive
// lead to the beginning's own files.
MadeFiles list_made(const std::filesystem::path& drive, const std::filesystem::path& beginning);

// A line for each difference.
using Differences = std::vector<std::string>;

// The install log, apart from the lines that must differ.
void compare_logs(const std::string& rehearsed, const std::string& wine, Differences& out);

// Files and folders; shell links by what they say, all others by their bytes.
void compare_drives(const MadeFiles& rehearsed, const MadeFiles& wine, Differences& out);

std::string read_bytes(const std::filesystem::path& file); // throws std::runtime_error

} // namespace acceptance
