#include "calls/files/paths.h"
#include "calls/run/session.h"
#include "calls/shell/com.h"
#include "machine/text.h"

#include <shlobj.h>
#include <shlwapi.h>
#include <windows.h>

#include <cstring>
#include <string>

namespace {

struct KnownFolder {
    const char* name;
    const std::u16string* path; // null: not modelled
};

KnownFolder known_folder(const GUID& id) {
    const platform::Folders& folders = platform::session().machine.folders;
    if (platform::same_id(id, FOLDERID_ProgramFiles))
        return {"ProgramFiles", &folders.program_files};
    if (platform::same_id(id, FOLDERID_CommonPrograms))
        return {"CommonPrograms", &folders.common_programs};
    return {"another", nullptr};
}

} // namespace

// Without flags the folder has to be there; one that isn't counts as not found.
HRESULT SHGetKnownFolderPath(REFKNOWNFOLDERID id, DWORD flags, HANDLE token, PWSTR* path) {
    const KnownFolder folder = known_folder(id);
    platform::Call call("SHGetKnownFolderPath", folder.name);
    *path = nullptr;
    if (call.fails(static_cast<std::uint32_t>(E_FAIL)))
        return static_cast<HRESULT>(call.error());
    if (folder.path == nullptr || flags != 0 || token != nullptr)
        call.refuse("only Program Files and the common Programs, without flags and token");
    if (!platform::real_path(folder.path->c_str()).folder)
        return HRESULT_FROM_WIN32(ERROR_FILE_NOT_FOUND);
    const std::size_t bytes = (folder.path->size() + 1) * sizeof(WCHAR);
    *path = static_cast<PWSTR>(platform::session().memory.allocate(bytes, "CoTaskMemAlloc", false));
    if (*path == nullptr)
        return E_OUTOFMEMORY;
    std::memcpy(*path, folder.path->c_str(), bytes);
    return S_OK;
}

// A separator at the very end belongs to the last element, so that "C:\" and "a\b\" become "C:\" and "b\".
void PathStripPathW(LPWSTR path) {
    platform::Call call("PathStripPathW", platform::shown(path));
    if (path == nullptr)
        return;
    const auto separates = [](WCHAR c) { return c == u'\\' || c == u'/'; };
    const WCHAR* last = path;
    for (const WCHAR* place = path; *place != 0; ++place)
        if ((separates(*place) || *place == u':') && place[1] != 0 && !separates(place[1]))
            last = place + 1;
    std::memmove(path, last, (std::char_traits<WCHAR>::length(last) + 1) * sizeof(WCHAR));
}
