#include "rehearsal/staged_drive.h"

#include <cerrno>
#include <cstring>
#include <stdexcept>

#include <fcntl.h>
#include <linux/fs.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace fs = std::filesystem;

namespace rehearsal {
namespace {

[[noreturn]] void fail(const fs::path& path, const char* what) {
    throw std::runtime_error(path.string() + ": " + what + ": " + std::strerror(errno));
}

// The drive itself where it is a link, without a separator at its end.
fs::path resolved(const fs::path& drive) {
    const fs::path whole = fs::weakly_canonical(fs::absolute(drive));
    return whole.has_filename() ? whole : whole.parent_path();
}

void copy_times(const fs::path& to, const struct stat& from) {
    const timespec times[] = {from.st_atim, from.st_mtim};
    if (utimensat(AT_FDCWD, to.c_str(), times, AT_SYMLINK_NOFOLLOW) != 0)
        fail(to, "its time can't be set");
}

// Copies a part of a file; false where the file system can't, or has no room.
bool copy_part(int from, int to, off_t begin, off_t end) {
    off_t read = begin, written = begin;
    while (read < end)
        if (copy_file_range(from, &read, to, &written, static_cast<std::size_t>(end - read), 0) <= 0)
            return false;
    return true;
}

// Shares the bytes where the file system can, or copies what isn't a hole: a large file is mostly one, or is
// copied without its bytes coming by here.
bool copy_bytes(int from, int to, off_t size) {
    if (ioctl(to, FICLONE, from) == 0)
        return true;
    if (ftruncate(to, size) != 0)
        return false;
    for (off_t place = 0; place < size;) {
        const off_t data = lseek(from, place, SEEK_DATA);
        if (data < 0)
            return errno == ENXIO; // nothing but a hole is left
        place = lseek(from, data, SEEK_HOLE);
        if (place < 0 || !copy_part(from, to, data, place))
            return false;
    }
    return true;
}

bool copy_sparsely(const fs::path& from, const fs::path& to, const struct stat& facts) {
    const int source = open(from.c_str(), O_RDONLY | O_CLOEXEC);
    const int target = open(to.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600);
    const bool copied = source >= 0 && target >= 0 && copy_bytes(source, target, facts.st_size) &&
                        fchmod(target, facts.st_mode & 07777) == 0;
    for (const int descriptor : {source, target})
        if (descriptor >= 0)
            close(descriptor);
    return copied;
}

void copy_tree(const fs::path& from, const fs::path& to);

void copy_file(const fs::path& from, const fs::path& to, const struct stat& facts) {
    std::error_code error;
    // What goes by several names is told by their number, and that has to stay.
    if (facts.st_nlink > 1)
        fs::create_hard_link(from, to, error);
    else if (!copy_sparsely(from, to, facts))
        fs::copy_file(from, to, fs::copy_options::overwrite_existing, error);
    if (error)
        throw std::runtime_error(from.string() + ": can't be copied: " + error.message());
    if (facts.st_nlink == 1)
        copy_times(to, facts);
}

void copy_folder(const fs::path& from, const fs::path& to, const struct stat& facts) {
    if (mkdir(to.c_str(), 0700) != 0)
        fail(to, "can't be made");
    for (const fs::directory_entry& entry : fs::directory_iterator(from))
        copy_tree(entry.path(), to / entry.path().filename());
    if (chmod(to.c_str(), facts.st_mode & 07777) != 0)
        fail(to, "its rights can't be set");
    copy_times(to, facts);
}

void copy_tree(const fs::path& from, const fs::path& to) {
    struct stat facts = {};
    if (lstat(from.c_str(), &facts) != 0)
        fail(from, "can't be read");
    if (S_ISDIR(facts.st_mode))
        copy_folder(from, to, facts);
    else if (S_ISREG(facts.st_mode))
        copy_file(from, to, facts);
    else if (S_ISLNK(facts.st_mode))
        fs::copy_symlink(from, to);
    else if (!S_ISFIFO(facts.st_mode))
        throw std::runtime_error(from.string() + ": a device or socket can't be part of a drive");
    else if (mkfifo(to.c_str(), facts.st_mode & 07777) != 0)
        fail(to, "can't be made");
}

} // namespace

StagedDrive::StagedDrive(const fs::path& drive) : drive_(resolved(drive)), stage_(name_beside(drive_)) {
    std::error_code error;
    fs::create_directories(drive_.parent_path(), error);
    clear_leftovers(drive_);
    if (fs::is_directory(drive_))
        copy_tree(drive_, stage_.path());
    else if (fs::exists(fs::symlink_status(drive_)))
        throw std::runtime_error(drive_.string() + ": isn't a folder");
    else if (mkdir(stage_.path().c_str(), 0777) != 0)
        fail(drive_, "can't be made");
}

} // namespace rehearsal
