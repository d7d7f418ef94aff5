#include "rehearsal/drive_files.h"

#include <algorithm>

#include <sys/types.h>

#include <sha256.h>

namespace fs = std::filesystem;

namespace rehearsal {

std::string file_digest(const fs::path& file) {
    char hexadecimal[SHA256_DIGEST_STRING_LENGTH] = {};
    return SHA256File(file.c_str(), hexadecimal) == nullptr ? std::string{} : hexadecimal;
}

DriveFiles list_drive(const fs::path& drive_c) {
    DriveFiles files;
    for (const fs::directory_entry& entry : fs::recursive_directory_iterator(drive_c)) {
        std::string name = "C:\\" + fs::relative(entry.path(), drive_c).string();
        std::replace(name.begin(), name.end(), '/', '\\');
        if (entry.is_directory())
            files[name] = {0, {}, true};
        else
            files[name] = {entry.file_size(), file_digest(entry.path()), false};
    }
    return files;
}

} // namespace rehearsal
