// Processes, threads, mutexes and waits.
#pragma once

#include "windef.h"

struct SECURITY_ATTRIBUTES;

#define INFINITE 0xffffffffu
#define WAIT_OBJECT_0 0x00000000u
#define WAIT_ABANDONED 0x00000080u
#define WAIT_TIMEOUT 258u
#define WAIT_FAILED 0xffffffffu
#define STILL_ACTIVE 259u

struct STARTUPINFOW {
    DWORD cb;
    LPWSTR lpReserved;
    LPWSTR lpDesktop;
    LPWSTR lpTitle;
    DWORD dwX;
    DWORD dwY;
    DWORD dwXSize;
    DWORD dwYSize;
    DWORD dwXCountChars;
    DWORD dwYCountChars;
    DWORD dwFillAttribute;
    DWORD dwFlags;
    WORD wShowWindow;
    WORD cbReserved2;
    LPBYTE lpReserved2;
    HANDLE hStdInput;
    HANDLE hStdOutput;
    HANDLE hStdError;
};
using LPSTARTUPINFOW = STARTUPINFOW*;

struct PROCESS_INFORMATION {
    HANDLE hProcess;
    HANDLE hThread;
    DWORD dwProcessId;
    DWORD dwThreadId;
};
using LPPROCESS_INFORMATION = PROCESS_INFORMATION*;

HANDLE WINAPI GetCurrentProcess();
DWORD WINAPI GetCurrentThreadId();
// Starts only the programs that the machine's description names; takes no environment or folder of its own.
BOOL WINAPI CreateProcessW(LPCWSTR application, LPWSTR command_line, SECURITY_ATTRIBUTES* process_security,
                           SECURITY_ATTRIBUTES* thread_security, BOOL inherit, DWORD flags,
                           LPVOID environment, LPCWSTR folder, LPSTARTUPINFOW startup,
                           LPPROCESS_INFORMATION information);
BOOL WINAPI GetExitCodeProcess(HANDLE process, LPDWORD exit_code);

HANDLE WINAPI CreateMutexW(SECURITY_ATTRIBUTES* security, BOOL owned, LPCWSTR name);
BOOL WINAPI ReleaseMutex(HANDLE mutex);
DWORD WINAPI WaitForSingleObject(HANDLE object, DWORD milliseconds);
