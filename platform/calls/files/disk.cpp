#include "calls/files/disk.h"

#include "calls/files/file_object.h"

#include <cerrno>
#include <fstream>
#include <unistd.h>

namespace fs = std::filesystem;

namespace platform {
namespace {

constexpr std::uint32_t share_all = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;

bool is_read_only(const struct stat& facts) {
    return (facts.st_mode & S_IWUSR) == 0;
}

std::uint32_t source_error(const RealPath& source) {
    if (source.error != 0)
        return source.error;
    struct stat facts;
    if (!source.exists || (!source.folder && stat(source.real.c_str(), &facts) != 0))
        return ERROR_FILE_NOT_FOUND;
    if (source.folder || !S_ISREG(facts.st_mode))
        return ERROR_ACCESS_DENIED;
    return open_files()->admits(use_of(facts, FILE_SHARE_READ, share_all)) ? 0 : ERROR_SHARING_VIOLATION;
}

bool same_file(const RealPath& a, const struct stat& facts) {
    struct stat own;
    return stat(a.real.c_str(), &own) == 0 && own.st_dev == facts.st_dev && own.st_ino == facts.st_ino;
}

// `source` is null when the bytes come from elsewhere.
std::uint32_t target_error(const RealPath* source, const RealPath& target, bool over_read_only) {
    if (target.error != 0)
        return target.error;
    if (target.folder)
        return ERROR_ACCESS_DENIED;
    if (target.folder_wanted)
        return ERROR_INVALID_NAME;
    if (target.read_only)
        return ERROR_WRITE_PROTECT;
    struct stat facts;
    if (!target.exists || stat(target.real.c_str(), &facts) != 0)
        return 0;
    if (!S_ISREG(facts.st_mode) || (is_read_only(facts) && !over_read_only))
        return ERROR_ACCESS_DENIED;
    if ((source != nullptr && same_file(*source, facts)) ||
        !open_files()->admits(use_of(facts, FILE_SHARE_WRITE, 0)))
        return ERROR_SHARING_VIOLATION;
    if (is_read_only(facts) && chmod(target.real.c_str(), facts.st_mode | S_IWUSR) != 0)
        return error_of(errno);
    return 0;
}

} // namespace

std::uint32_t copy_file(const RealPath& source, const RealPath& target, bool over_read_only) {
    std::uint32_t error = source_error(source);
    if (error == 0)
        error = target_error(&source, target, over_read_only);
    if (error != 0)
        return error;
    std::error_code failed;
    fs::copy_file(source.real, target.real, fs::copy_options::overwrite_existing, failed);
    if (failed)
        return error_of(failed.value());
    const auto time = fs::last_write_time(source.real, failed);
    if (!failed)
        fs::last_write_time(target.real, time, failed);
    return failed ? error_of(failed.value()) : 0;
}

std::uint32_t write_file(const RealPath& target, std::string_view bytes) {
    const std::uint32_t error = target_error(nullptr, target, false);
    if (error != 0)
        return error;
    errno = 0;
    std::ofstream file(target.real, std::ios::binary | std::ios::trunc);
    file << bytes;
    file.close();
    return file ? 0 : error_of(errno);
}

std::uint32_t set_read_only(const RealPath& path, bool read_only) {
    if (path.error != 0)
        return path.error;
    struct stat facts;
    if (!path.exists || path.real.empty() || stat(path.real.c_str(), &facts) != 0)
        return ERROR_FILE_NOT_FOUND;
    if (path.read_only)
        return ERROR_WRITE_PROTECT;
    if (!S_ISREG(facts.st_mode))
        return ERROR_ACCESS_DENIED;
    const mode_t mode =
        read_only ? facts.st_mode & ~mode_t{S_IWUSR | S_IWGRP | S_IWOTH} : facts.st_mode | S_IWUSR;
    return chmod(path.real.c_str(), mode) == 0 ? 0 : error_of(errno);
}

std::uint32_t delete_file(const RealPath& path, bool read_only_too) {
    if (path.error != 0)
        return path.error;
    struct stat facts;
    if (!path.exists || (!path.real.empty() && lstat(path.real.c_str(), &facts) != 0))
        return ERROR_FILE_NOT_FOUND;
    if (path.read_only)
        return ERROR_WRITE_PROTECT;
    if (path.folder)
        return ERROR_ACCESS_DENIED;
    if (S_ISREG(facts.st_mode)) {
        if (is_read_only(facts) && !read_only_too)
            return ERROR_ACCESS_DENIED;
        if (!open_files()->admits(use_of(facts, FILE_SHARE_DELETE, share_all)))
            return ERROR_SHARING_VIOLATION;
    }
    return unlink(path.real.c_str()) == 0 ? 0 : error_of(errno);
}

std::uint32_t make_folder(const RealPath& path) {
    if (path.error != 0)
        return path.error;
    if (path.root)
        return ERROR_ACCESS_DENIED;
    if (path.exists)
        return ERROR_ALREADY_EXISTS;
    if (path.read_only)
        return ERROR_WRITE_PROTECT;
    return mkdir(path.real.c_str(), 0755) == 0 ? 0 : error_of(errno);
}

std::uint32_t remove_folder(const RealPath& path) {
    if (path.error != 0)
        return path.error;
    if (!path.exists)
        return ERROR_FILE_NOT_FOUND;
    if (!path.folder)
        return ERROR_DIRECTORY;
    if (path.read_only)
        return ERROR_WRITE_PROTECT;
    if (path.root)
        return ERROR_ACCESS_DENIED;
    const int result = path.link ? unlink(path.real.c_str()) : rmdir(path.real.c_str());
    return result == 0 ? 0 : error_of(errno);
}

} // namespace platform
