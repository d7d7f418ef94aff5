#include "rehearsal/output_file.h"

#include "machine/machine_json.h"
#include "rehearsal/shown_text.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <stdexcept>
#include <utility>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace fs = std::filesystem;

namespace rehearsal {
namespace {

[[noreturn]] void fail(const fs::path& path, const std::string& what) {
    throw std::runtime_error(path.string() + ": " + what + ": " + std::strerror(errno));
}

bool is_ordinary(const fs::path& path) {
    std::error_code ignored;
    const fs::file_status status = fs::status(path, ignored);
    return !fs::exists(status) || fs::is_regular_file(status) || fs::is_directory(status);
}

// The file itself where a link leads to it.
fs::path target_of(const fs::path& path) {
    return fs::is_symlink(path) ? fs::weakly_canonical(path) : path;
}

} // namespace

OutputFile::OutputFile(fs::path path) : path_(std::move(path)) {
    std::error_code ignored;
    if (fs::is_directory(path_)) {
        errno = EISDIR;
        fail(path_, "can't be written");
    }
    if (is_ordinary(path_)) {
        const fs::path target = target_of(path_);
        clear_leftovers(target);
        beside_ = std::make_unique<Unfinished>(name_beside(target));
    }
    const fs::path& opened = beside_ ? beside_->path() : path_;
    const int flags = O_WRONLY | O_CLOEXEC | (beside_ ? O_CREAT | O_TRUNC : 0);
    descriptor_ = open(opened.c_str(), flags, 0666);
    if (descriptor_ < 0)
        fail(path_, "can't be written");
    struct stat old = {};
    if (beside_ && stat(path_.c_str(), &old) == 0 && fchmod(descriptor_, old.st_mode & 0777) != 0)
        fail(path_, "its rights can't be kept");
}

OutputFile::~OutputFile() {
    if (descriptor_ >= 0)
        close(descriptor_);
}

void OutputFile::write(const std::string& text) {
    for (std::size_t done = 0; done < text.size();) {
        const ssize_t written = ::write(descriptor_, text.data() + done, text.size() - done);
        if (written < 0 && errno != EINTR)
            fail(path_, "can't be written");
        done += written > 0 ? static_cast<std::size_t>(written) : 0;
    }
    if (beside_ && fsync(descriptor_) != 0)
        fail(path_, "can't be written");
}

std::optional<Replacement> OutputFile::replacement() const {
    if (!beside_)
        return std::nullopt;
    return Replacement{beside_->path(), target_of(path_)};
}

void OutputFile::lock() {
    if (flock(descriptor_, LOCK_EX | LOCK_NB) != 0)
        fail(path_, "can't be locked");
}

Replacement finished_machine(OutputFile& file, const platform::Machine& machine) {
    file.write(platform::machine_text(machine));
    file.lock();
    return file.replacement().value(); // what can be read and rewritten is an ordinary file
}

void write_file(const fs::path& path, const std::string& text) {
    OutputFile file(path);
    file.write(text);
    if (const auto replacement = file.replacement())
        change_over({}, {*replacement});
}

MachineLock::MachineLock(const fs::path& file) {
    take(file);
    if (!finish_change_over(file))
        return;
    std::fprintf(stderr, "trk: note: %s: an earlier run was cut off; its results are in their places now\n",
                 shown_text(file.string()).c_str());
    close(std::exchange(descriptor_, -1));
    take(file); // the one that is there now
}

void MachineLock::take(const fs::path& file) {
    for (;;) {
        descriptor_ = open(file.c_str(), O_RDONLY | O_CLOEXEC);
        if (descriptor_ < 0)
            fail(file, "can't be read");
        if (flock(descriptor_, LOCK_EX | LOCK_NB) != 0) {
            const int error = errno;
            close(std::exchange(descriptor_, -1));
            errno = error;
            if (error == EWOULDBLOCK)
                throw std::runtime_error(file.string() + ": another trk is at work on this machine");
            fail(file, "can't be locked");
        }
        // A run that was over a moment ago has put a new file in this one's place.
        struct stat locked = {}, named = {};
        if (fstat(descriptor_, &locked) == 0 && stat(file.c_str(), &named) == 0 &&
            locked.st_ino == named.st_ino && locked.st_dev == named.st_dev)
            return;
        close(std::exchange(descriptor_, -1));
    }
}

MachineLock::~MachineLock() {
    if (descriptor_ >= 0)
        close(descriptor_);
}

void refuse_same_file(const std::string& first_name, const fs::path& first, const std::string& second_name,
                      const fs::path& second) {
    std::error_code ignored;
    if (first.empty() || second.empty())
        return;
    if (fs::equivalent(first, second, ignored) || fs::weakly_canonical(fs::absolute(first), ignored) ==
                                                      fs::weakly_canonical(fs::absolute(second), ignored))
        throw std::runtime_error(second.string() + ": " + first_name + " and " + second_name +
                                 " are the same file");
}

} // namespace rehearsal
