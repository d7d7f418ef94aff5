// How the libraries that are loaded at their first use are found, and what the user sees when that fails.
#include "resources/resource_ids.h"
#include "support/text.h"

#include <windows.h>

#include <delayimp.h>

#include <iterator>

namespace {

// By its full path, so that it comes from the system folder on systems too that can't limit the search.
FARPROC load_from_system_folder(const char* library) {
    WCHAR path[MAX_PATH] = {};
    WCHAR name[64] = {};
    const UINT length = GetSystemDirectoryW(path, static_cast<UINT>(std::size(path)));
    if (length == 0 || length >= std::size(path) || !widen(name, std::size(name), library) ||
        !append_text(path, std::size(path), TEXT("\\")) || !append_text(path, std::size(path), name))
        return nullptr;
    return reinterpret_cast<FARPROC>(LoadLibraryExW(path, nullptr, LOAD_WITH_ALTERED_SEARCH_PATH));
}

// A system without the function can't run the step that called it, and nothing behind it either.
void report_and_end(const DelayLoadInfo* info, int function_missing) {
    WCHAR text[256] = {};
    if (!function_missing)
        format_text(text, std::size(text), TEXT("%S can't be loaded (error %u)."), info->szDll,
                    info->dwLastError);
    else if (info->dlp.fImportByName)
        format_text(text, std::size(text), TEXT("This Windows is too old: %S has no %S."), info->szDll,
                    info->dlp.szProcName);
    else
        format_text(text, std::size(text), TEXT("This Windows is too old: %S has no function %u."),
                    info->szDll, info->dlp.dwOrdinal);
    MessageBoxW(nullptr, text, TEXT(COMPANY_NAME), MB_TOPMOST | MB_ICONEXCLAMATION);
    ExitProcess(1);
}

// Gives a module for a library about to be loaded, and null, which leaves the step to the caller, for all
// else.
FARPROC WINAPI on_delay_load(unsigned event, DelayLoadInfo* info) {
    if (event == dliNotePreLoadLibrary)
        return load_from_system_folder(info->szDll);
    return nullptr;
}

FARPROC WINAPI on_delay_load_failure(unsigned event, DelayLoadInfo* info) {
    if (event == dliFailLoadLib || event == dliFailGetProc)
        report_and_end(info, event == dliFailGetProc);
    return nullptr;
}

} // namespace

// The helper of the compiler's library calls what these name.
PfnDliHook __pfnDliNotifyHook2 = on_delay_load;
PfnDliHook __pfnDliFailureHook2 = on_delay_load_failure;
