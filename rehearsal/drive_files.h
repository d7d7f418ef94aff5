// The files on the simulated drive C, to tell what a run made of them.
#pragma once

#include <cstdint>
#include <filesystem>
#include <map>
#include <string>

namespace rehearsal {

struct DriveFile {
    std::uintmax_t size = 0; // bytes
    std::string sha256;      // hexadecimal; empty for a folder
    bool folder = false;
    bool operator==(const DriveFile&) const = default;
};

// Path as the program sees it ("C:\Program Files\...") -> the file.
using DriveFiles = std::map<std::string, DriveFile>;

// SHA-256 in hexadecimal digits; empty when the file can't be read.
std::string file_digest(const std::filesystem::path& file);

DriveFiles list_drive(const std::filesystem::path& drive_c);

} // namespace rehearsal
