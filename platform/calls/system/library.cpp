#include "calls/run/session.h"
#include "calls/system/modules.h"
#include "machine/text.h"

#include <windows.h>

#include <algorithm>
#include <cstring>

namespace platform {
namespace {

// Calls that the program only finds at run time; no header of the layer declares them.
BOOL is_wow64_process(HANDLE process, PBOOL wow64) {
    Call call("IsWow64Process");
    if (process != INVALID_HANDLE_VALUE) // the value of GetCurrentProcess
        call.refuse("only the own process is asked about");
    if (call.fails(ERROR_ACCESS_DENIED))
        return FALSE;
    *wow64 = program_bits() == 32 && session().machine.system == System::x64 ? TRUE : FALSE;
    return TRUE;
}

BOOL set_default_dll_directories(DWORD flags) {
    Call call("SetDefaultDllDirectories", std::to_string(flags));
    if (call.fails(ERROR_INVALID_PARAMETER))
        return FALSE;
    constexpr DWORD known = 0x1F00; // LOAD_LIBRARY_SEARCH_DLL_LOAD_DIR to LOAD_LIBRARY_SEARCH_DEFAULT_DIRS
    if (flags != 0 && (flags & ~known) == 0)
        return TRUE; // libraries are known by name here, so that there is no search to limit
    set_last_error(ERROR_INVALID_PARAMETER);
    return FALSE;
}

// Loaded with the program, in the order of their handles.
constexpr const char16_t* libraries[] = {u"kernel32.dll", u"user32.dll",   u"gdi32.dll",  u"advapi32.dll",
                                         u"shell32.dll",  u"shlwapi.dll",  u"ole32.dll",  u"winspool.drv",
                                         u"setupapi.dll", u"cfgmgr32.dll", u"ws2_32.dll", u"iphlpapi.dll"};
constexpr const char16_t* kernel = libraries[0];

struct Function {
    const char16_t* library;
    const char* name;
    FARPROC address;
};

// By way of the one function type that any other may be cast to without a warning.
template<class Signature>
FARPROC address_of(Signature* function) {
    return reinterpret_cast<FARPROC>(reinterpret_cast<void (*)()>(function));
}

const Function functions[] = {
    {kernel, "IsWow64Process", address_of(&is_wow64_process)},
    {kernel, "SetThreadUILanguage", address_of(&SetThreadUILanguage)},
    {kernel, "GetThreadUILanguage", address_of(&GetThreadUILanguage)},
    {kernel, "SetDefaultDllDirectories", address_of(&set_default_dll_directories)},
};

// Modules lie at addresses, as on the platform; these aren't values that the handle table gives early.
constexpr std::uintptr_t program_address = 0x400000;
constexpr std::uintptr_t first_library = 0x70000000;
constexpr std::uintptr_t library_distance = 0x100000;

HMODULE library_module(std::size_t index) {
    return reinterpret_cast<HMODULE>(first_library + index * library_distance);
}

// The library's name, or null for the program and for what is no module.
const char16_t* library_name(HMODULE module) {
    for (std::size_t index = 0; index < std::size(libraries); ++index)
        if (module == library_module(index))
            return libraries[index];
    return nullptr;
}

// Null, with the last error set, for a library that isn't known. A name without extension is a .dll.
HMODULE find_library(std::u16string name) {
    if (name.find(u'.') == std::u16string::npos)
        name += u".dll";
    for (std::size_t index = 0; index < std::size(libraries); ++index)
        if (same_name(libraries[index], name))
            return library_module(index);
    set_last_error(ERROR_MOD_NOT_FOUND);
    return nullptr;
}

bool is_missing(const char* name) {
    const auto& missing = session().machine.missing_functions;
    return std::find(missing.begin(), missing.end(), name) != missing.end();
}

std::u16string module_path(HMODULE module) {
    const char16_t* library = library_name(module);
    return library == nullptr ? program_path()
                              : session().machine.folders.windows + u"\\System32\\" + library;
}

} // namespace

HMODULE program_module() {
    return reinterpret_cast<HMODULE>(program_address);
}

std::u16string program_path() {
    const Machine& machine = session().machine;
    const bool ends_in_separator = !machine.current_folder.empty() && machine.current_folder.back() == u'\\';
    return machine.current_folder + (ends_in_separator ? u"" : u"\\") + machine.program_name;
}

} // namespace platform

HMODULE GetModuleHandleW(LPCWSTR name) {
    platform::Call call("GetModuleHandleW", platform::shown(name));
    if (call.fails(ERROR_MOD_NOT_FOUND))
        return nullptr;
    return name == nullptr ? platform::program_module() : platform::find_library(name);
}

HMODULE LoadLibraryW(LPCWSTR name) {
    platform::Call call("LoadLibraryW", platform::shown(name));
    if (call.fails(ERROR_MOD_NOT_FOUND))
        return nullptr;
    return platform::find_library(name);
}

FARPROC GetProcAddress(HMODULE module, LPCSTR name) {
    if (reinterpret_cast<std::uintptr_t>(name) <= 0xFFFF)
        platform::Call("GetProcAddress").refuse("a function by its number");
    platform::Call call("GetProcAddress", name);
    if (call.fails(ERROR_PROC_NOT_FOUND))
        return nullptr;
    const char16_t* library = platform::library_name(module);
    if (library == nullptr && module != platform::program_module()) {
        platform::set_last_error(ERROR_MOD_NOT_FOUND);
        return nullptr;
    }
    for (const platform::Function& function : platform::functions)
        if (function.library == library && std::strcmp(function.name, name) == 0 &&
            !platform::is_missing(name))
            return function.address;
    platform::set_last_error(ERROR_PROC_NOT_FOUND);
    return nullptr;
}

DWORD GetModuleFileNameW(HMODULE module, LPWSTR path, DWORD size) {
    platform::Call call("GetModuleFileNameW");
    if (call.fails(ERROR_NOT_ENOUGH_MEMORY))
        return 0;
    if (module != nullptr && module != platform::program_module() &&
        platform::library_name(module) == nullptr) {
        platform::set_last_error(ERROR_MOD_NOT_FOUND);
        return 0;
    }
    const std::u16string text = platform::module_path(module);
    if (size == 0 || text.size() >= size) {
        if (size != 0)
            path[text.copy(path, size - 1)] = 0;
        platform::set_last_error(ERROR_INSUFFICIENT_BUFFER);
        return size;
    }
    path[text.copy(path, size - 1)] = 0;
    return static_cast<DWORD>(text.size());
}
