#include "calls/files/file_object.h"

#include "calls/run/session.h"

#include <cerrno>
#include <unistd.h>

namespace platform {

File::~File() {
    if (table_)
        table_->leave(place_);
    if (descriptor >= 0)
        close(descriptor);
}

bool File::claim(std::uint32_t uses, std::uint32_t shares) {
    struct stat facts;
    if (fstat(descriptor, &facts) != 0)
        return false;
    const auto table = open_files();
    if (!table->enter(use_of(facts, uses, shares), place_))
        return false;
    table_ = table;
    return true;
}

std::shared_ptr<File> file_behind(const void* handle) {
    auto file = session().handles.find<File>(handle);
    if (!file)
        set_last_error(ERROR_INVALID_HANDLE);
    return file;
}

std::uint32_t error_of(int posix_error) {
    switch (posix_error) {
    case ENOENT:
        return ERROR_FILE_NOT_FOUND;
    case ENOTDIR:
        return ERROR_PATH_NOT_FOUND;
    case EACCES:
    case EPERM:
    case EISDIR:
        return ERROR_ACCESS_DENIED;
    case EROFS:
        return ERROR_WRITE_PROTECT;
    case ENOSPC:
    case EDQUOT:
        return ERROR_DISK_FULL;
    case EEXIST:
        return ERROR_ALREADY_EXISTS;
    case ENOTEMPTY:
        return ERROR_DIR_NOT_EMPTY;
    case ENAMETOOLONG:
    case EILSEQ:
        return ERROR_INVALID_NAME;
    default:
        return ERROR_GEN_FAILURE;
    }
}

std::uint32_t attributes_of(const struct stat& facts, bool leads_to_folder) {
    if (S_ISLNK(facts.st_mode))
        return FILE_ATTRIBUTE_REPARSE_POINT | (leads_to_folder ? FILE_ATTRIBUTE_DIRECTORY : 0u);
    if (S_ISDIR(facts.st_mode))
        return FILE_ATTRIBUTE_DIRECTORY;
    return FILE_ATTRIBUTE_ARCHIVE | ((facts.st_mode & S_IWUSR) == 0 ? FILE_ATTRIBUTE_READONLY : 0u);
}

FILETIME file_time(const struct timespec& time) {
    constexpr std::uint64_t from_1601_to_1970 = 11'644'473'600; // seconds
    const std::uint64_t ticks = (static_cast<std::uint64_t>(time.tv_sec) + from_1601_to_1970) * 10'000'000 +
                                static_cast<std::uint64_t>(time.tv_nsec) / 100;
    return {static_cast<DWORD>(ticks), static_cast<DWORD>(ticks >> 32)};
}

CalledFile::CalledFile(const void* handle)
    : handle_(handle), file_(session().handles.peek_as<File>(handle)) {}

} // namespace platform
