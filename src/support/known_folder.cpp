#include "support/known_folder.h"

#include <shlobj.h>

#include "support/install_log.h"

WCHAR* find_known_folder(const GUID& id, const WCHAR* name) {
    WCHAR* path = nullptr;
    const HRESULT result = SHGetKnownFolderPath(id, 0, nullptr, &path);
    if (result >= 0 && path != nullptr)
        return path;
    log_failure(TEXT("Get %s failed %d\r\n"), name, result);
    CoTaskMemFree(path);
    return nullptr;
}
