#include "support/library_search.h"

#include <windows.h>

namespace {

constexpr DWORD search_system_folder = 0x800; // LOAD_LIBRARY_SEARCH_SYSTEM32, which a Vista SDK doesn't name

using SetDefaultDllDirectoriesCall = BOOL(WINAPI*)(DWORD flags);

int is_vista_or_older() {
    OSVERSIONINFOW version = {};
    version.dwOSVersionInfoSize = sizeof version;
    if (!GetVersionExW(&version))
        return 1;
    return version.dwMajorVersion < 6 || (version.dwMajorVersion == 6 && version.dwMinorVersion == 0);
}

} // namespace

void limit_library_search() {
    if (is_vista_or_older())
        return;
    const HMODULE kernel = GetModuleHandleW(TEXT("kernel32.dll"));
    if (kernel == nullptr)
        return;
    const auto set_directories =
        reinterpret_cast<SetDefaultDllDirectoriesCall>(GetProcAddress(kernel, "SetDefaultDllDirectories"));
    if (set_directories != nullptr)
        set_directories(search_system_folder);
}
