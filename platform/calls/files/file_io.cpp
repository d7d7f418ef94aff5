#include "calls/files/file_object.h"
#include "calls/run/session.h"

#include <windows.h>

#include <algorithm>
#include <cerrno>
#include <unistd.h>

namespace {

using platform::failed;
using platform::File;
using platform::session;

// The size by the file's facts: false and the last error when there are none.
bool size_of(const File& file, std::uint64_t& size) {
    struct stat facts;
    if (file.descriptor >= 0 && fstat(file.descriptor, &facts) != 0) {
        failed(platform::error_of(errno));
        return false;
    }
    size = file.descriptor < 0 || file.folder ? 0 : static_cast<std::uint64_t>(facts.st_size);
    return true;
}

// POSIX takes as much as it likes at a time; the platform's calls move everything that there is.
BOOL read_all(File& file, char* bytes, DWORD size, DWORD& got) {
    while (got < size) {
        const ssize_t count =
            pread(file.descriptor, bytes + got, size - got, static_cast<off_t>(file.position));
        if (count < 0)
            return failed(platform::error_of(errno));
        if (count == 0)
            break;
        got += static_cast<DWORD>(count);
        file.position += static_cast<std::uint64_t>(count);
    }
    return TRUE;
}

BOOL write_all(File& file, const char* bytes, DWORD size, DWORD& written) {
    while (written < size) {
        const ssize_t count = file.append_only ? write(file.descriptor, bytes + written, size - written)
                                               : pwrite(file.descriptor, bytes + written, size - written,
                                                        static_cast<off_t>(file.position));
        if (count < 0)
            return failed(platform::error_of(errno));
        written += static_cast<DWORD>(count);
        file.position += static_cast<std::uint64_t>(count);
    }
    return TRUE;
}

} // namespace

BOOL ReadFile(HANDLE handle, LPVOID bytes, DWORD size, LPDWORD got, LPOVERLAPPED overlapped) {
    const platform::CalledFile called(handle);
    platform::Call call("ReadFile", called);
    if (overlapped != nullptr || got == nullptr)
        call.refuse("only plain reading with a count is modelled");
    *got = 0;
    if (call.fails(ERROR_GEN_FAILURE))
        return FALSE;
    const auto file = called.behind();
    if (!file)
        return FALSE;
    if (!file->read)
        return failed(ERROR_ACCESS_DENIED);
    if (file->folder)
        return failed(ERROR_INVALID_FUNCTION);
    if (file->link)
        call.refuse("reading a link itself");
    const std::lock_guard lock(file->mutex);
    return read_all(*file, static_cast<char*>(bytes), size, *got);
}

BOOL WriteFile(HANDLE handle, LPCVOID bytes, DWORD size, LPDWORD written, LPOVERLAPPED overlapped) {
    const platform::CalledFile called(handle);
    platform::Call call("WriteFile", called);
    if (overlapped != nullptr || written == nullptr)
        call.refuse("only plain writing with a count is modelled");
    *written = 0;
    if (call.fails(ERROR_DISK_FULL))
        return FALSE;
    const auto file = called.behind();
    if (!file)
        return FALSE;
    if (!file->write)
        return failed(ERROR_ACCESS_DENIED);
    if (file->folder)
        return failed(ERROR_INVALID_FUNCTION);
    if (file->link)
        call.refuse("writing to a link itself");
    const std::lock_guard lock(file->mutex);
    return write_all(*file, static_cast<const char*>(bytes), size, *written);
}

BOOL FlushFileBuffers(HANDLE handle) {
    const platform::CalledFile called(handle);
    platform::Call call("FlushFileBuffers", called);
    if (call.fails(ERROR_GEN_FAILURE))
        return FALSE;
    const auto file = called.behind();
    if (!file)
        return FALSE;
    if (!file->write)
        return failed(ERROR_ACCESS_DENIED);
    session().user.file_flushed();
    return TRUE;
}

DWORD SetFilePointer(HANDLE handle, LONG low, PLONG high, DWORD origin) {
    const platform::CalledFile called(handle);
    platform::Call call("SetFilePointer", called);
    if (call.fails(ERROR_GEN_FAILURE))
        return INVALID_SET_FILE_POINTER;
    const auto file = called.behind();
    std::uint64_t size = 0;
    if (!file || !size_of(*file, size))
        return INVALID_SET_FILE_POINTER;
    const std::lock_guard lock(file->mutex);
    const std::uint64_t base = origin == FILE_BEGIN ? 0 : origin == FILE_CURRENT ? file->position : size;
    const auto distance =
        high == nullptr ? std::int64_t{low}
                        : (std::int64_t{*high} << 32) | static_cast<std::int64_t>(static_cast<DWORD>(low));
    const std::int64_t target = static_cast<std::int64_t>(base) + distance;
    DWORD error = ERROR_SUCCESS;
    if (origin > FILE_END || (high == nullptr && target > std::int64_t{UINT32_MAX}))
        error = ERROR_INVALID_PARAMETER;
    else if (target < 0)
        error = ERROR_NEGATIVE_SEEK;
    if (error != ERROR_SUCCESS) {
        platform::set_last_error(error);
        return INVALID_SET_FILE_POINTER;
    }
    file->position = static_cast<std::uint64_t>(target);
    if (high != nullptr)
        *high = static_cast<LONG>(target >> 32);
    // The low half may look like the failure; the last error tells them apart.
    if (static_cast<DWORD>(target) == INVALID_SET_FILE_POINTER)
        platform::set_last_error(ERROR_SUCCESS);
    return static_cast<DWORD>(target);
}

DWORD GetFileSize(HANDLE handle, LPDWORD high) {
    const platform::CalledFile called(handle);
    platform::Call call("GetFileSize", called);
    if (call.fails(ERROR_GEN_FAILURE))
        return INVALID_FILE_SIZE;
    const auto file = called.behind();
    std::uint64_t size = 0;
    if (!file || !size_of(*file, size))
        return INVALID_FILE_SIZE;
    if (high != nullptr)
        *high = static_cast<DWORD>(size >> 32);
    if (static_cast<DWORD>(size) == INVALID_FILE_SIZE)
        platform::set_last_error(ERROR_SUCCESS);
    return static_cast<DWORD>(size);
}
