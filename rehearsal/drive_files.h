// The files on the simulated drive C, to tell what a run made of them.
#pragma once

#include <cstdint>
#include <filesystem>
#include <map>
#include <string>

namespace rehearsal {

struct DriveFile {
    std::uintmax_t size = 0; // bytes
    std::string sha256;      // hexadecimal; empty for a folder, and where it wasn't wanted
    bool folder = false;
    std::int64_t time = 0; // of the last writing, in nanoseconds
    // Two that are one by size and content. Where neither was digested their times told already.
    bool operator==(const DriveFile& other) const {
        return size == other.size && sha256 == other.sha256 && folder == other.folder;
    }
};

// Path as the program sees it ("C:\Program Files\...") -> the file.
using DriveFiles = std::map<std::string, DriveFile>;

// Where a path of drive C lies.
std::filesystem::path on_linux(const std::filesystem::path& drive_c, std::string path);

// SHA-256 in hexadecimal digits; empty when the file can't be read.
std::string file_digest(const std::filesystem::path& file);

// Folders, files, and whatever else has a name there, a dangling link for instance, which counts as an empty
// file. Reading all bytes of large files takes its time, so they are digested on demand alone.
DriveFiles list_drive(const std::filesystem::path& drive_c, bool with_digests = true);

// Digests the files of two lists without digests that differ in time or are in one list alone; those of one
// size and time are taken to be the same.
void digest_differing(DriveFiles& before, const std::filesystem::path& before_drive, DriveFiles& after,
                      const std::filesystem::path& after_drive);

} // namespace rehearsal
