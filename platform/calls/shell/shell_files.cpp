// Copying and deleting as the shell does it, for the two sets of flags that the program works with. Codes are
// the system's where it has one, else the shell's published ones.
#include "calls/files/disk.h"
#include "calls/files/wildcards.h"
#include "calls/run/session.h"
#include "machine/text.h"

#include <shellapi.h>
#include <windows.h>

#include <algorithm>

namespace {

using platform::PlainPath;
using platform::RealPath;
using platform::session;

constexpr int path_too_deep = 0x79;           // DE_PATHTOODEEP
constexpr int path_invalid = 0x7C;            // DE_INVALIDFILES
constexpr int target_is_a_file = 0x80;        // DE_FLDDESTISFILE
constexpr std::size_t longest_list = 1 << 16; // characters, where the buffer's size isn't known

constexpr DWORD copy_flags =
    FOF_SILENT | FOF_NOCONFIRMATION | FOF_FILESONLY | FOF_NOERRORUI | FOF_NORECURSION;
constexpr DWORD delete_flags = FOF_SILENT | FOF_NOCONFIRMATION | FOF_NOERRORUI;

// The paths of a list, up to its second terminator. A list without one, which the real shell would read on
// from into whatever lies behind it, stops the run.
std::vector<std::u16string> read_list(const platform::Call& call, const WCHAR* list) {
    const auto bytes = session().memory.bytes_from(list);
    const std::size_t limit = bytes ? *bytes / sizeof(WCHAR) : longest_list;
    std::vector<std::u16string> paths(1);
    for (std::size_t place = 0; place < limit; ++place) {
        if (list[place] != 0) {
            paths.back() += list[place];
        } else if (paths.back().empty()) {
            paths.pop_back();
            if (paths.empty())
                call.refuse("an empty list of paths");
            return paths;
        } else {
            paths.emplace_back();
        }
    }
    call.refuse("a list of paths without its second terminator");
}

// 0 and the plain path, or the code.
int shell_path(const platform::Call& call, const std::u16string& text, PlainPath& path) {
    if (text.starts_with(u"\\\\?\\"))
        return path_invalid;
    if (text.size() < 3 || text[1] != u':')
        call.refuse("a path that isn't absolute");
    path = platform::plain_path(text.c_str(), true);
    if (path.text().size() >= MAX_PATH)
        return path_too_deep;
    return path.error == ERROR_INVALID_NAME ? path_invalid : static_cast<int>(path.error);
}

PlainPath below(PlainPath folder, const std::u16string& name) {
    folder.names.push_back(name);
    folder.folder_wanted = false;
    return folder;
}

int make_folders(const PlainPath& path) {
    PlainPath level = path;
    level.folder_wanted = false;
    level.names.clear();
    for (const std::u16string& name : path.names) {
        level.names.push_back(name);
        const RealPath place = platform::look_up(level);
        const std::uint32_t error = place.exists ? 0 : platform::make_folder(place);
        if (error != 0)
            return static_cast<int>(error);
    }
    return 0;
}

int copy_one(const PlainPath& source, const RealPath& target) {
    if (target.text.size() >= MAX_PATH)
        return path_too_deep;
    return static_cast<int>(platform::copy_file(platform::look_up(source), target, true));
}

// The files that the source's last name matches; folders stay out.
std::vector<std::u16string> files_of(const RealPath& folder, const std::u16string& pattern) {
    std::vector<std::u16string> names;
    for (const platform::FolderEntry& entry : platform::folder_entries(folder))
        if (platform::matches_either(pattern, entry.name, entry.short_name) &&
            !std::filesystem::is_directory(entry.real))
            names.push_back(entry.name);
    std::sort(names.begin(), names.end());
    return names;
}

// A target folder that isn't there is made: the question whether to make it counts as answered by yes.
int copy_pattern(PlainPath source, const PlainPath& target) {
    const std::u16string pattern = source.names.back();
    source.names.pop_back();
    const RealPath folder = platform::look_up(source);
    if (folder.error != 0 || !folder.folder)
        return ERROR_PATH_NOT_FOUND;
    const std::vector<std::u16string> names = files_of(folder, pattern);
    if (names.empty())
        return ERROR_FILE_NOT_FOUND;
    const RealPath place = platform::look_up(target);
    if (place.exists && !place.folder)
        return target_is_a_file;
    int code = make_folders(target);
    platform::FolderNames targets(platform::look_up(target));
    for (std::size_t index = 0; index < names.size() && code == 0; ++index)
        code = copy_one(below(source, names[index]), targets.look_up(names[index]));
    return code;
}

int copy_source(const platform::Call& call, const PlainPath& source, const PlainPath& target) {
    if (!source.names.empty() && platform::has_wildcard(source.names.back()))
        return copy_pattern(source, target);
    const RealPath place = platform::look_up(source);
    if (place.error != 0)
        return static_cast<int>(place.error);
    if (!place.exists)
        return ERROR_FILE_NOT_FOUND;
    if (place.folder)
        call.refuse("copying a folder");
    if (!target.folder_wanted && !platform::look_up(target).folder)
        return copy_one(source, platform::look_up(target));
    const int code = make_folders(target);
    return code != 0 ? code : copy_one(source, platform::look_up(below(target, source.names.back())));
}

int copy(const platform::Call& call, const SHFILEOPSTRUCTW& operation) {
    const std::vector<std::u16string> targets = read_list(call, operation.pTo);
    if (targets.size() != 1)
        call.refuse("more than one target");
    PlainPath target;
    int code = shell_path(call, targets[0], target);
    if (code == 0 && std::any_of(target.names.begin(), target.names.end(), platform::has_wildcard))
        code = path_invalid;
    for (const std::u16string& text : read_list(call, operation.pFrom)) {
        PlainPath source;
        if (code == 0)
            code = shell_path(call, text, source);
        if (code == 0)
            code = copy_source(call, source, target);
    }
    return code;
}

// With all that is in it. A link goes, and what it leads to stays.
int delete_tree(const PlainPath& path) {
    const RealPath place = platform::look_up(path);
    if (place.error != 0)
        return static_cast<int>(place.error);
    if (!place.folder || place.link)
        return static_cast<int>(place.link && place.folder ? platform::remove_folder(place)
                                                           : platform::delete_file(place, true));
    if (place.read_only)
        return ERROR_WRITE_PROTECT;
    for (const platform::FolderEntry& entry : platform::folder_entries(place)) {
        const int code = delete_tree(below(path, entry.name));
        if (code != 0)
            return code;
    }
    return static_cast<int>(platform::remove_folder(place));
}

int delete_all(const platform::Call& call, const SHFILEOPSTRUCTW& operation) {
    int code = 0;
    for (const std::u16string& text : read_list(call, operation.pFrom)) {
        PlainPath path;
        if (code == 0)
            code = shell_path(call, text, path);
        if (code != 0)
            break;
        if (path.names.empty() || platform::has_wildcard(path.names.back()))
            call.refuse("deleting a whole drive, or by wildcards");
        code = delete_tree(path);
    }
    return code;
}

std::string shown_operation(const SHFILEOPSTRUCTW& operation) {
    std::string text = (operation.wFunc == FO_COPY     ? "copy "
                        : operation.wFunc == FO_DELETE ? "delete "
                                                       : "operation ") +
                       platform::shown(operation.pFrom);
    return operation.wFunc == FO_COPY ? text + " to " + platform::shown(operation.pTo) : text;
}

} // namespace

int SHFileOperationW(LPSHFILEOPSTRUCTW operation) {
    platform::Call call("SHFileOperationW", shown_operation(*operation));
    operation->fAnyOperationsAborted = FALSE;
    if (call.fails(ERROR_ACCESS_DENIED))
        return static_cast<int>(call.error());
    const bool copies = operation->wFunc == FO_COPY && operation->fFlags == copy_flags;
    const bool deletes = operation->wFunc == FO_DELETE && operation->fFlags == delete_flags;
    if ((!copies && !deletes) || operation->pFrom == nullptr || (copies && operation->pTo == nullptr))
        call.refuse("operation " + std::to_string(operation->wFunc) + " with flags " +
                    std::to_string(operation->fFlags));
    const int code = copies ? copy(call, *operation) : delete_all(call, *operation);
    operation->fAnyOperationsAborted = code != 0 ? TRUE : FALSE; // the first failure ends it
    return code;
}
