#include "calls/run/session.h"
#include "calls/text/filled_text.h"

#include <windows.h>

#include <algorithm>
#include <cstddef>

void GetLocalTime(LPSYSTEMTIME time) {
    platform::Call call("GetLocalTime");
    const platform::LocalTime now = platform::session().clock.local_time();
    *time = {static_cast<WORD>(now.year),   static_cast<WORD>(now.month),      static_cast<WORD>(now.weekday),
             static_cast<WORD>(now.day),    static_cast<WORD>(now.hour),       static_cast<WORD>(now.minute),
             static_cast<WORD>(now.second), static_cast<WORD>(now.millisecond)};
}

void Sleep(DWORD milliseconds) {
    platform::Call call("Sleep", std::to_string(milliseconds));
    if (milliseconds == INFINITE)
        call.refuse("a sleep without an end");
    // Giving up the rest of a time slice takes time too: whoever waits by that alone sees the clock move.
    platform::session().clock.pass(std::max(milliseconds, DWORD{1}));
}

DWORD GetTickCount() {
    platform::Call call("GetTickCount");
    return platform::session().clock.ticks();
}

BOOL GetVersionExW(LPOSVERSIONINFOW version) {
    platform::Call call("GetVersionExW", std::to_string(version->dwOSVersionInfoSize));
    if (call.fails(ERROR_INSUFFICIENT_BUFFER))
        return FALSE;
    const DWORD size = version->dwOSVersionInfoSize;
    if (size != sizeof(OSVERSIONINFOW) && size != sizeof(OSVERSIONINFOEXW)) {
        platform::set_last_error(ERROR_INSUFFICIENT_BUFFER);
        return FALSE;
    }
    const platform::SystemVersion& system = platform::session().machine.version;
    *version = {size, system.major, system.minor, system.build, VER_PLATFORM_WIN32_NT, {}};
    if (size == sizeof(OSVERSIONINFOEXW)) {
        constexpr WORD single_user = 0x0100; // VER_SUITE_SINGLEUSERTS, as every client system has it
        auto* more = reinterpret_cast<LPOSVERSIONINFOEXW>(version);
        more->wServicePackMajor = more->wServicePackMinor = 0;
        more->wSuiteMask = single_user;
        more->wProductType = VER_NT_WORKSTATION;
        more->wReserved = 0;
    }
    return TRUE;
}

UINT GetWindowsDirectoryW(LPWSTR path, UINT size) {
    platform::Call call("GetWindowsDirectoryW");
    if (call.fails(ERROR_ACCESS_DENIED))
        return 0;
    return platform::give_text(call, platform::session().machine.folders.windows, path, size);
}

UINT GetSystemDirectoryW(LPWSTR path, UINT size) {
    platform::Call call("GetSystemDirectoryW");
    if (call.fails(ERROR_ACCESS_DENIED))
        return 0;
    return platform::give_text(call, platform::session().machine.folders.windows + u"\\System32", path, size);
}
