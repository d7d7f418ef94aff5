#include "calls/files/disk.h"
#include "calls/files/file_object.h"
#include "calls/run/session.h"
#include "calls/text/filled_text.h"
#include "machine/text.h"

#include <windows.h>

#include <cerrno>

namespace {

using platform::shown;

constexpr std::size_t folder_limit = MAX_PATH - 12; // a folder to create leaves room for a short file name

BOOL result(std::uint32_t error) {
    if (error != 0)
        platform::set_last_error(error);
    return error == 0 ? TRUE : FALSE;
}

} // namespace

DWORD GetCurrentDirectoryW(DWORD size, LPWSTR path) {
    platform::Call call("GetCurrentDirectoryW");
    if (call.fails(ERROR_NOT_ENOUGH_MEMORY))
        return 0;
    return platform::give_text(call, platform::session().machine.current_folder, path, size);
}

DWORD GetFileAttributesW(LPCWSTR path) {
    platform::Call call("GetFileAttributesW", shown(path));
    if (call.fails(ERROR_ACCESS_DENIED))
        return INVALID_FILE_ATTRIBUTES;
    const platform::RealPath place = platform::real_path(path);
    std::uint32_t error = place.error;
    if (error == 0 && !place.exists)
        error = ERROR_FILE_NOT_FOUND;
    else if (error == 0 && place.folder_wanted && !place.folder)
        error = ERROR_INVALID_NAME;
    struct stat facts {};
    facts.st_mode = S_IFDIR;
    if (error == 0 && !place.real.empty() && lstat(place.real.c_str(), &facts) != 0)
        error = platform::error_of(errno);
    return result(error) ? platform::attributes_of(facts, place.folder) : INVALID_FILE_ATTRIBUTES;
}

// The one attribute that is kept here is that a file is read-only.
BOOL SetFileAttributesW(LPCWSTR path, DWORD attributes) {
    platform::Call call("SetFileAttributesW", shown(path));
    if (call.fails(ERROR_ACCESS_DENIED))
        return FALSE;
    if ((attributes & ~DWORD{FILE_ATTRIBUTE_READONLY | FILE_ATTRIBUTE_ARCHIVE | FILE_ATTRIBUTE_NORMAL}) != 0)
        call.refuse("attributes " + std::to_string(attributes));
    return result(
        platform::set_read_only(platform::real_path(path), (attributes & FILE_ATTRIBUTE_READONLY) != 0));
}

BOOL DeleteFileW(LPCWSTR path) {
    platform::Call call("DeleteFileW", shown(path));
    if (call.fails(ERROR_ACCESS_DENIED))
        return FALSE;
    return result(platform::delete_file(platform::real_path(path), false));
}

BOOL CopyFileW(LPCWSTR source, LPCWSTR target, BOOL fail_if_exists) {
    platform::Call call("CopyFileW", shown(source) + " to " + shown(target));
    if (call.fails(ERROR_ACCESS_DENIED))
        return FALSE;
    const platform::RealPath from = platform::real_path(source);
    const platform::RealPath to = platform::real_path(target);
    if (from.error == 0 && from.exists && to.error == 0 && to.exists && fail_if_exists != FALSE)
        return result(ERROR_FILE_EXISTS);
    return result(platform::copy_file(from, to, false));
}

BOOL CreateDirectoryW(LPCWSTR path, LPSECURITY_ATTRIBUTES security) {
    platform::Call call("CreateDirectoryW", shown(path));
    if (call.fails(ERROR_ACCESS_DENIED))
        return FALSE;
    if (security != nullptr)
        call.refuse("security attributes");
    return result(platform::make_folder(platform::real_path(path, folder_limit)));
}

BOOL RemoveDirectoryW(LPCWSTR path) {
    platform::Call call("RemoveDirectoryW", shown(path));
    if (call.fails(ERROR_ACCESS_DENIED))
        return FALSE;
    return result(platform::remove_folder(platform::real_path(path)));
}
