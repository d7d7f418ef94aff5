#include "calls/files/open_files.h"

#include "calls/run/session.h"

#include <algorithm>
#include <sys/stat.h>

namespace platform {
namespace {

struct FilesState {
    const std::shared_ptr<OpenFiles> open = std::make_shared<OpenFiles>();
};

bool same_file(const FileUse& a, const FileUse& b) {
    return a.device == b.device && a.file == b.file;
}

} // namespace

bool OpenFiles::admits_locked(const FileUse& use) const {
    return use.uses == 0 || std::none_of(uses_.begin(), uses_.end(), [&](const FileUse& present) {
               return same_file(present, use) &&
                      ((use.uses & ~present.shares) != 0 || (present.uses & ~use.shares) != 0);
           });
}

bool OpenFiles::admits(const FileUse& use) const {
    const std::lock_guard lock(mutex_);
    return admits_locked(use);
}

bool OpenFiles::enter(const FileUse& use, Place& place) {
    const std::lock_guard lock(mutex_);
    if (!admits_locked(use))
        return false;
    // An opening of attributes alone asks for nothing and forbids nothing.
    place = uses_.insert(uses_.end(), use.uses == 0 ? FileUse{} : use);
    return true;
}

void OpenFiles::leave(Place place) {
    const std::lock_guard lock(mutex_);
    uses_.erase(place);
}

std::shared_ptr<OpenFiles> open_files() {
    return session().area<FilesState>().open;
}

FileUse use_of(const struct stat& facts, std::uint32_t uses, std::uint32_t shares) {
    return {facts.st_dev, facts.st_ino, uses, shares};
}

} // namespace platform
