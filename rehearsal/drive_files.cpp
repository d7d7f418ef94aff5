#include "rehearsal/drive_files.h"

#include <algorithm>

#include <sys/types.h>

#include <sha256.h>

namespace fs = std::filesystem;

namespace rehearsal {
namespace {

void digest(DriveFile& file, const fs::path& path) {
    if (!file.folder && file.sha256.empty() && fs::is_regular_file(path))
        file.sha256 = file_digest(path);
}

DriveFile look_at(const fs::directory_entry& entry, bool with_digest) {
    DriveFile file;
    std::error_code gone; // what a link leads to
    file.folder = entry.is_directory(gone);
    if (!entry.is_regular_file(gone))
        return file;
    file.size = entry.file_size();
    file.time = entry.last_write_time().time_since_epoch().count();
    if (with_digest)
        digest(file, entry.path());
    return file;
}

} // namespace

fs::path on_linux(const fs::path& drive_c, std::string path) {
    path.erase(0, 3); // "C:\"
    std::replace(path.begin(), path.end(), '\\', '/');
    return drive_c / path;
}

std::string file_digest(const fs::path& file) {
    char hexadecimal[SHA256_DIGEST_STRING_LENGTH] = {};
    return SHA256File(file.c_str(), hexadecimal) == nullptr ? std::string{} : hexadecimal;
}

DriveFiles list_drive(const fs::path& drive_c, bool with_digests) {
    DriveFiles files;
    const fs::path root = drive_c / ""; // every entry's path begins with it
    for (const fs::directory_entry& entry : fs::recursive_directory_iterator(root)) {
        std::string name = "C:\\" + entry.path().native().substr(root.native().size());
        std::replace(name.begin(), name.end(), '/', '\\');
        files[name] = look_at(entry, with_digests);
    }
    return files;
}

void digest_differing(DriveFiles& before, const fs::path& before_drive, DriveFiles& after,
                      const fs::path& after_drive) {
    for (auto& [path, file] : after) {
        const auto old = before.find(path);
        if (old != before.end() && old->second.size == file.size && old->second.time == file.time)
            continue;
        digest(file, on_linux(after_drive, path));
        if (old != before.end())
            digest(old->second, on_linux(before_drive, path));
    }
}

} // namespace rehearsal
