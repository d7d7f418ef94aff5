// Which files are open, and what each opening allows the others.
#pragma once

#include <cstdint>
#include <list>
#include <memory>
#include <mutex>
#include <sys/types.h>

struct stat;

namespace platform {

// What an opening uses of a file, and what it lets others use: FILE_SHARE_READ 1, FILE_SHARE_WRITE 2,
// FILE_SHARE_DELETE 4. An opening that uses nothing (it looks at attributes alone) is in nobody's way.
struct FileUse {
    dev_t device = 0;
    ino_t file = 0;
    std::uint32_t uses = 0;
    std::uint32_t shares = 0;
};

class OpenFiles {
public:
    using Place = std::list<FileUse>::iterator;

    // Whether the use gets along with all present ones.
    bool admits(const FileUse& use) const;
    // The same, and takes it in: true, and its place. Give it back by leave().
    bool enter(const FileUse& use, Place& place);
    void leave(Place place);

private:
    bool admits_locked(const FileUse& use) const;

    mutable std::mutex mutex_;
    std::list<FileUse> uses_;
};

// The session's. Files keep it alive, since they may outlive the session's areas.
std::shared_ptr<OpenFiles> open_files();

FileUse use_of(const struct stat& facts, std::uint32_t uses, std::uint32_t shares);

} // namespace platform
