#include "calls/files/file_object.h"
#include "calls/run/session.h"
#include "calls/text/filled_text.h"

#include <windows.h>

#include <cerrno>

namespace {

using platform::File;
using platform::session;

// Linux doesn't keep a birth time on every file system; the last change of the contents stands for it.
BY_HANDLE_FILE_INFORMATION information_of(const File& file, const struct stat& facts) {
    BY_HANDLE_FILE_INFORMATION out{};
    out.dwFileAttributes = platform::attributes_of(facts, file.folder);
    out.ftCreationTime = platform::file_time(facts.st_mtim);
    out.ftLastAccessTime = platform::file_time(facts.st_atim);
    out.ftLastWriteTime = platform::file_time(facts.st_mtim);
    out.dwVolumeSerialNumber = static_cast<DWORD>(facts.st_dev);
    if (S_ISREG(facts.st_mode)) {
        out.nFileSizeHigh = static_cast<DWORD>(static_cast<std::uint64_t>(facts.st_size) >> 32);
        out.nFileSizeLow = static_cast<DWORD>(facts.st_size);
    }
    // A folder has one name here, whatever the links that Linux counts for its sub-folders.
    out.nNumberOfLinks = S_ISDIR(facts.st_mode) ? 1 : static_cast<DWORD>(facts.st_nlink);
    out.nFileIndexHigh = static_cast<DWORD>(static_cast<std::uint64_t>(facts.st_ino) >> 32);
    out.nFileIndexLow = static_cast<DWORD>(facts.st_ino);
    return out;
}

} // namespace

DWORD GetFileType(HANDLE handle) {
    const platform::CalledFile called(handle);
    platform::Call call("GetFileType", called);
    if (call.fails(ERROR_INVALID_HANDLE))
        return FILE_TYPE_UNKNOWN;
    return called.behind() ? FILE_TYPE_DISK : FILE_TYPE_UNKNOWN;
}

BOOL GetFileInformationByHandle(HANDLE handle, LPBY_HANDLE_FILE_INFORMATION information) {
    const platform::CalledFile called(handle);
    platform::Call call("GetFileInformationByHandle", called);
    if (call.fails(ERROR_GEN_FAILURE))
        return FALSE;
    const auto file = called.behind();
    if (!file)
        return FALSE;
    struct stat facts {};
    facts.st_mode = S_IFDIR; // of a folder above the medium, which nothing more is known of
    if (file->descriptor >= 0 && fstat(file->descriptor, &facts) != 0) {
        platform::set_last_error(platform::error_of(errno));
        return FALSE;
    }
    *information = information_of(*file, facts);
    return TRUE;
}

DWORD GetFinalPathNameByHandleW(HANDLE handle, LPWSTR path, DWORD size, DWORD flags) {
    const platform::CalledFile called(handle);
    platform::Call call("GetFinalPathNameByHandleW", called);
    if (flags != (FILE_NAME_NORMALIZED | VOLUME_NAME_DOS))
        call.refuse("flags " + std::to_string(flags));
    if (call.fails(ERROR_GEN_FAILURE))
        return 0;
    const auto file = called.behind();
    if (!file)
        return 0;
    std::u16string final_path = file->path;
    if (file->descriptor >= 0) {
        std::error_code failed;
        const auto real =
            std::filesystem::read_symlink("/proc/self/fd/" + std::to_string(file->descriptor), failed);
        if (failed) {
            platform::set_last_error(platform::error_of(failed.value()));
            return 0;
        }
        final_path = platform::shown_path(real);
    }
    return platform::give_text(call, u"\\\\?\\" + final_path, path, size);
}
