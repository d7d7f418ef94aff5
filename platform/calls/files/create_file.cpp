#include "calls/files/file_object.h"
#include "calls/run/session.h"
#include "machine/text.h"

#include <windows.h>

#include <cerrno>
#include <fcntl.h>
#include <unistd.h>

namespace {

using platform::File;
using platform::RealPath;
using platform::session;

constexpr DWORD known_flags = FILE_ATTRIBUTE_NORMAL | FILE_ATTRIBUTE_ARCHIVE | FILE_FLAG_BACKUP_SEMANTICS |
                              FILE_FLAG_OPEN_REPARSE_POINT;
constexpr DWORD known_access =
    GENERIC_READ | GENERIC_WRITE | FILE_READ_DATA | FILE_WRITE_DATA | FILE_APPEND_DATA | FILE_READ_ATTRIBUTES;

struct Wish {
    bool read = false;
    bool overwrite = false; // may write anywhere
    bool append = false;    // may write at the end
    DWORD share = 0;
    DWORD disposition = 0;
    DWORD flags = 0;

    bool writes() const { return overwrite || append; }
    bool creates() const { return disposition != OPEN_EXISTING && disposition != TRUNCATE_EXISTING; }
    bool truncates() const { return disposition == CREATE_ALWAYS || disposition == TRUNCATE_EXISTING; }
    bool link_itself() const { return (flags & FILE_FLAG_OPEN_REPARSE_POINT) != 0; }
};

// 0, or why the wish can't come true for what is, or isn't, there.
DWORD objection(const RealPath& path, const Wish& wish) {
    const bool takes_folders = (wish.flags & FILE_FLAG_BACKUP_SEMANTICS) != 0;
    if (path.error != 0)
        return path.error;
    if (path.folder && !takes_folders)
        return path.folder_wanted ? ERROR_PATH_NOT_FOUND : ERROR_ACCESS_DENIED;
    if (path.folder_wanted && !path.folder)
        return ERROR_INVALID_NAME;
    if (!path.exists)
        return !wish.creates() ? ERROR_FILE_NOT_FOUND : path.read_only ? ERROR_WRITE_PROTECT : ERROR_SUCCESS;
    if (wish.disposition == CREATE_NEW)
        return ERROR_FILE_EXISTS;
    if (path.folder)
        return wish.truncates()                  ? ERROR_ACCESS_DENIED
               : wish.writes() && path.read_only ? ERROR_WRITE_PROTECT
                                                 : ERROR_SUCCESS;
    if (path.read_only && (wish.writes() || wish.truncates()))
        return ERROR_WRITE_PROTECT;
    return ERROR_SUCCESS;
}

int open_flags(const RealPath& path, const Wish& wish) {
    constexpr int always = O_CLOEXEC | O_NONBLOCK; // a pipe that lies there must not hold the run up
    if (path.link && wish.link_itself())
        return O_PATH | O_NOFOLLOW | O_CLOEXEC;
    if (path.folder)
        return O_RDONLY | O_DIRECTORY | O_CLOEXEC;
    const int create = path.exists && !path.link ? 0 : wish.creates() ? O_CREAT : 0;
    if (!wish.read && !wish.writes() && !wish.truncates())
        return create == 0 ? O_PATH | O_CLOEXEC : O_RDONLY | create | always;
    const int access = wish.writes() || wish.truncates() ? (wish.read ? O_RDWR : O_WRONLY) : O_RDONLY;
    return access | create | always | (wish.append && !wish.overwrite ? O_APPEND : 0);
}

// Opens the real file: 0 or the error. A file that another opening keeps to itself isn't truncated.
DWORD open_real(const RealPath& path, const Wish& wish, File& file) {
    file.descriptor = open(path.real.c_str(), open_flags(path, wish), 0644);
    if (file.descriptor < 0)
        return platform::error_of(errno);
    struct stat facts;
    if (fstat(file.descriptor, &facts) != 0)
        return platform::error_of(errno);
    if (!S_ISREG(facts.st_mode) && !S_ISDIR(facts.st_mode) && !S_ISLNK(facts.st_mode))
        return ERROR_ACCESS_DENIED;
    // The system's own check doesn't hold for a privileged user.
    if (path.exists && S_ISREG(facts.st_mode) && (facts.st_mode & S_IWUSR) == 0 &&
        (wish.writes() || wish.truncates()))
        return ERROR_ACCESS_DENIED;
    const DWORD uses = (wish.read ? FILE_SHARE_READ : 0u) | (wish.writes() ? FILE_SHARE_WRITE : 0u);
    if (!file.claim(uses, wish.share))
        return ERROR_SHARING_VIOLATION;
    if (wish.truncates() && path.exists && ftruncate(file.descriptor, 0) != 0)
        return platform::error_of(errno);
    return ERROR_SUCCESS;
}

Wish wish_of(platform::Call& call, DWORD access, DWORD share, DWORD disposition, DWORD flags) {
    if ((access & ~known_access) != 0 || (flags & ~known_flags) != 0)
        call.refuse("access or flags");
    Wish wish;
    wish.read = (access & (GENERIC_READ | FILE_READ_DATA)) != 0;
    wish.overwrite = (access & (GENERIC_WRITE | FILE_WRITE_DATA)) != 0;
    wish.append = (access & (GENERIC_WRITE | FILE_APPEND_DATA)) != 0;
    wish.share = share;
    wish.disposition = disposition;
    wish.flags = flags;
    return wish;
}

} // namespace

HANDLE CreateFileW(LPCWSTR path, DWORD access, DWORD share, LPSECURITY_ATTRIBUTES security, DWORD disposition,
                   DWORD flags, HANDLE template_file) {
    platform::Call call("CreateFileW", platform::shown(path));
    if (call.fails(ERROR_ACCESS_DENIED))
        return INVALID_HANDLE_VALUE;
    if (security != nullptr || template_file != nullptr)
        call.refuse("security attributes or a template");
    const Wish wish = wish_of(call, access, share, disposition, flags);
    const bool bad = disposition < CREATE_NEW || disposition > TRUNCATE_EXISTING || (share & ~7u) != 0 ||
                     (disposition == TRUNCATE_EXISTING && (access & GENERIC_WRITE) == 0);
    const RealPath place = platform::real_path(path);
    DWORD error = bad ? ERROR_INVALID_PARAMETER : objection(place, wish);
    const auto file = std::make_shared<File>();
    if (error == ERROR_SUCCESS && !place.real.empty())
        error = open_real(place, wish, *file);
    if (error != ERROR_SUCCESS) {
        platform::set_last_error(error);
        return INVALID_HANDLE_VALUE;
    }
    file->read = wish.read;
    file->write = wish.writes();
    file->append_only = wish.append && !wish.overwrite;
    file->link = place.link && wish.link_itself();
    file->folder = place.folder && !file->link;
    file->path = place.text;
    file->shown_path = platform::to_utf8(place.text);
    if (disposition == OPEN_ALWAYS || disposition == CREATE_ALWAYS)
        platform::set_last_error(place.exists ? ERROR_ALREADY_EXISTS : ERROR_SUCCESS);
    return session().handles.open(file);
}
