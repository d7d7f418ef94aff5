// trk_preload LIBRARY PROGRAM [ARGUMENTS]: runs the program with a library loaded before its first
// instruction, and ends with the program's exit code, or with 125 when it couldn't be started that way.
#include <windows.h>

#include <cstdio>
#include <string>
#include <string_view>

namespace {

constexpr DWORD not_started = 125;
constexpr DWORD load_limit_ms = 20'000;

int failed(const wchar_t* what) {
    std::fprintf(stderr, "trk_preload: %ls: error %lu\n", what, GetLastError());
    return not_started;
}

bool load_in(HANDLE process, std::wstring_view library) {
    const SIZE_T size = (library.size() + 1) * sizeof(wchar_t);
    void* const name = VirtualAllocEx(process, nullptr, size, MEM_COMMIT | MEM_RESERVE, PAGE_READWRITE);
    if (name == nullptr || !WriteProcessMemory(process, name, library.data(), size, nullptr))
        return false;
    // kernel32 lies at the same place in all processes.
    const auto load = reinterpret_cast<LPTHREAD_START_ROUTINE>(
        GetProcAddress(GetModuleHandleW(L"kernel32.dll"), "LoadLibraryW"));
    const HANDLE thread = CreateRemoteThread(process, nullptr, 0, load, name, 0, nullptr);
    if (thread == nullptr)
        return false;
    DWORD module = 0; // its lower half
    const bool ended =
        WaitForSingleObject(thread, load_limit_ms) == WAIT_OBJECT_0 && GetExitCodeThread(thread, &module);
    CloseHandle(thread);
    return ended && module != 0;
}

DWORD run(const PROCESS_INFORMATION& program, const wchar_t* library) {
    if (!load_in(program.hProcess, library)) {
        const int code = failed(library);
        TerminateProcess(program.hProcess, not_started);
        return static_cast<DWORD>(code);
    }
    DWORD exit_code = not_started;
    ResumeThread(program.hThread);
    WaitForSingleObject(program.hProcess, INFINITE);
    GetExitCodeProcess(program.hProcess, &exit_code);
    return exit_code;
}

} // namespace

int wmain(int count, wchar_t** arguments) {
    if (count < 3) {
        std::fprintf(stderr, "usage: trk_preload LIBRARY PROGRAM [ARGUMENTS]\n");
        return not_started;
    }
    std::wstring command_line;
    for (int i = 2; i < count; ++i)
        command_line.append(i == 2 ? L"\"" : L" \"").append(arguments[i]).append(L"\"");
    STARTUPINFOW startup = {};
    startup.cb = sizeof startup;
    PROCESS_INFORMATION program = {};
    if (!CreateProcessW(arguments[2], command_line.data(), nullptr, nullptr, FALSE, CREATE_SUSPENDED, nullptr,
                        nullptr, &startup, &program))
        return failed(arguments[2]);
    const DWORD exit_code = run(program, arguments[1]);
    CloseHandle(program.hThread);
    CloseHandle(program.hProcess);
    return static_cast<int>(exit_code);
}
