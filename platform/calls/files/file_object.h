// What stands behind a file's handle, and what the calls know about a real file.
#pragma once

#include "calls/files/open_files.h"
#include "calls/files/paths.h"
#include "calls/run/kernel_object.h"

#include <windows.h>

#include <cstdint>
#include <mutex>
#include <string>
#include <sys/stat.h>

namespace platform {

class File : public KernelObject {
public:
    File() = default;
    File(const File&) = delete;
    File& operator=(const File&) = delete;
    ~File() override;
    const char* kind() const override { return "file"; }

    std::mutex mutex; // guards the position
    std::uint64_t position = 0;
    int descriptor = -1; // -1: a folder above the medium
    bool read = false;
    bool write = false;
    bool append_only = false;
    bool folder = false;
    bool link = false; // the link itself was opened
    std::u16string path;
    std::string shown_path; // the same in UTF-8

    // Enters the file among the open ones: false when another opening forbids it.
    bool claim(std::uint32_t uses, std::uint32_t shares);

private:
    std::shared_ptr<OpenFiles> table_;
    OpenFiles::Place place_;
};

// The file behind a handle; null with the last error set when the handle isn't one of a file.
std::shared_ptr<File> file_behind(const void* handle);

// The system's code for an error of a POSIX call.
std::uint32_t error_of(int posix_error);

// FILE_ATTRIBUTE_... of a real file: a file that its owner may not write is read-only, others have the
// archive bit.
std::uint32_t attributes_of(const struct stat& facts, bool leads_to_folder);
FILETIME file_time(const struct timespec& time);

// The file that a call is about, found before the call passes the gate, for whose journal it has the path.
class CalledFile {
public:
    explicit CalledFile(const void* handle);
    operator std::string_view() const { return file_ ? file_->shown_path : std::string_view(); }
    // What file_behind() gives.
    std::shared_ptr<File> behind() const { return file_ ? file_ : file_behind(handle_); }

private:
    const void* handle_;
    std::shared_ptr<File> file_;
};

} // namespace platform
