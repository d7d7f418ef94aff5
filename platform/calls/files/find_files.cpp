#include "calls/files/file_object.h"
#include "calls/files/wildcards.h"
#include "calls/run/session.h"
#include "machine/text.h"

#include <windows.h>

#include <algorithm>

namespace {

using platform::FolderEntry;
using platform::RealPath;
using platform::session;

// A search holds what it found when it began.
struct Search : platform::Object {
    const char* kind() const override { return "search"; }
    std::string pattern;
    std::vector<WIN32_FIND_DATAW> entries;
    std::size_t next = 0;
};

WIN32_FIND_DATAW entry_data(const FolderEntry& entry) {
    WIN32_FIND_DATAW data{};
    struct stat facts {};
    facts.st_mode = S_IFDIR; // of a folder above the medium
    struct stat target;
    if (!entry.real.empty() && lstat(entry.real.c_str(), &facts) != 0)
        facts.st_mode = S_IFREG | S_IWUSR; // taken away in this moment
    const bool leads_to_folder =
        S_ISLNK(facts.st_mode) && stat(entry.real.c_str(), &target) == 0 && S_ISDIR(target.st_mode);
    data.dwFileAttributes = platform::attributes_of(facts, leads_to_folder);
    data.ftCreationTime = platform::file_time(facts.st_mtim);
    data.ftLastAccessTime = platform::file_time(facts.st_atim);
    data.ftLastWriteTime = platform::file_time(facts.st_mtim);
    if (S_ISREG(facts.st_mode)) {
        data.nFileSizeHigh = static_cast<DWORD>(static_cast<std::uint64_t>(facts.st_size) >> 32);
        data.nFileSizeLow = static_cast<DWORD>(facts.st_size);
    }
    entry.name.copy(data.cFileName, std::size(data.cFileName) - 1);
    entry.short_name.copy(data.cAlternateFileName, std::size(data.cAlternateFileName) - 1);
    return data;
}

bool sorts_before(const FolderEntry& a, const FolderEntry& b) {
    return platform::upper_case(a.name) < platform::upper_case(b.name);
}

// The entries of the folder that match, in the order in which they are delivered.
std::vector<FolderEntry> matching(const RealPath& folder, std::u16string_view pattern) {
    std::vector<FolderEntry> found;
    for (FolderEntry& entry : platform::folder_entries(folder))
        if (platform::matches_either(pattern, entry.name, entry.short_name))
            found.push_back(std::move(entry));
    std::sort(found.begin(), found.end(), sorts_before);
    if (!folder.root)
        for (const char16_t* name : {u"..", u"."})
            if (platform::matches(pattern, name))
                found.insert(found.begin(), FolderEntry{name, folder.real});
    return found;
}

// 0 and the entries, or the error.
DWORD search(LPCWSTR pattern, std::vector<FolderEntry>& found) {
    platform::PlainPath path = platform::plain_path(pattern, true);
    if (path.error != 0)
        return path.error;
    if (path.names.empty() || path.folder_wanted)
        return ERROR_FILE_NOT_FOUND;
    const std::u16string last = path.names.back();
    path.names.pop_back();
    const RealPath folder = platform::look_up(path);
    if (folder.error != 0 || !folder.exists)
        return ERROR_PATH_NOT_FOUND;
    if (!folder.folder)
        return ERROR_DIRECTORY;
    found = matching(folder, last);
    return found.empty() ? ERROR_FILE_NOT_FOUND : ERROR_SUCCESS;
}

} // namespace

HANDLE FindFirstFileW(LPCWSTR pattern, LPWIN32_FIND_DATAW entry) {
    platform::Call call("FindFirstFileW", platform::shown(pattern));
    if (call.fails(ERROR_ACCESS_DENIED))
        return INVALID_HANDLE_VALUE;
    const std::u16string_view text = pattern == nullptr ? u"" : pattern;
    if (text.ends_with(u'.') && platform::has_wildcard(text))
        call.refuse("a pattern that ends in a point");
    std::vector<FolderEntry> found;
    const DWORD error = search(pattern, found);
    if (error != ERROR_SUCCESS) {
        platform::set_last_error(error);
        return INVALID_HANDLE_VALUE;
    }
    const auto object = std::make_shared<Search>();
    object->pattern = platform::shown(pattern);
    for (const FolderEntry& one : found)
        object->entries.push_back(entry_data(one));
    *entry = object->entries[object->next++];
    return session().handles.open(object);
}

BOOL FindNextFileW(HANDLE handle, LPWIN32_FIND_DATAW entry) {
    const auto known = std::dynamic_pointer_cast<Search>(session().handles.peek(handle));
    platform::Call call("FindNextFileW", known ? known->pattern : "");
    if (call.fails(ERROR_GEN_FAILURE))
        return FALSE;
    const auto search = session().handles.find<Search>(handle);
    if (!search || search->next == search->entries.size()) {
        platform::set_last_error(search ? ERROR_NO_MORE_FILES : ERROR_INVALID_HANDLE);
        return FALSE;
    }
    *entry = search->entries[search->next++];
    return TRUE;
}

BOOL FindClose(HANDLE handle) {
    const auto known = std::dynamic_pointer_cast<Search>(session().handles.peek(handle));
    platform::Call call("FindClose", known ? known->pattern : "");
    if (known && session().handles.close(handle))
        return TRUE;
    if (!known)
        session().gate.misuse("FindClose of a handle that isn't a search");
    platform::set_last_error(ERROR_INVALID_HANDLE);
    return FALSE;
}
