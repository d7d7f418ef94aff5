// The base calls: errors, memory, time, version, environment. Files, processes and threads, and modules have
// headers of their own.
#pragma once

#include "fileapi.h"
#include "libloaderapi.h"
#include "processthreadsapi.h"
#include "windef.h"

#define INVALID_HANDLE_VALUE (reinterpret_cast<HANDLE>(static_cast<LONG_PTR>(-1)))
#define INFINITE 0xffffffffu

// The last error of the calling thread.
DWORD WINAPI GetLastError();
void WINAPI SetLastError(DWORD code);

// Closes files, threads, processes and mutexes; other kinds of handles have calls of their own.
BOOL WINAPI CloseHandle(HANDLE handle);

#define HEAP_ZERO_MEMORY 0x00000008

HANDLE WINAPI GetProcessHeap();
LPVOID WINAPI HeapAlloc(HANDLE heap, DWORD flags, SIZE_T bytes);
BOOL WINAPI HeapFree(HANDLE heap, DWORD flags, LPVOID block);
HLOCAL WINAPI LocalFree(HLOCAL block); // null on success

#define FORMAT_MESSAGE_ALLOCATE_BUFFER 0x00000100
#define FORMAT_MESSAGE_IGNORE_INSERTS 0x00000200
#define FORMAT_MESSAGE_FROM_SYSTEM 0x00001000

// Only texts of the system; with FORMAT_MESSAGE_ALLOCATE_BUFFER `text` is the address of a pointer, released
// with LocalFree. `arguments` has to be null.
DWORD WINAPI FormatMessageW(DWORD flags, LPCVOID source, DWORD code, DWORD language, LPWSTR text, DWORD size,
                            void* arguments);

struct SYSTEMTIME {
    WORD wYear;
    WORD wMonth;
    WORD wDayOfWeek;
    WORD wDay;
    WORD wHour;
    WORD wMinute;
    WORD wSecond;
    WORD wMilliseconds;
};
using LPSYSTEMTIME = SYSTEMTIME*;

void WINAPI GetLocalTime(LPSYSTEMTIME time);
void WINAPI Sleep(DWORD milliseconds);
DWORD WINAPI GetTickCount();

struct OSVERSIONINFOW {
    DWORD dwOSVersionInfoSize;
    DWORD dwMajorVersion;
    DWORD dwMinorVersion;
    DWORD dwBuildNumber;
    DWORD dwPlatformId;
    WCHAR szCSDVersion[128];
};
using LPOSVERSIONINFOW = OSVERSIONINFOW*;

struct OSVERSIONINFOEXW {
    DWORD dwOSVersionInfoSize;
    DWORD dwMajorVersion;
    DWORD dwMinorVersion;
    DWORD dwBuildNumber;
    DWORD dwPlatformId;
    WCHAR szCSDVersion[128];
    WORD wServicePackMajor;
    WORD wServicePackMinor;
    WORD wSuiteMask;
    BYTE wProductType;
    BYTE wReserved;
};
using LPOSVERSIONINFOEXW = OSVERSIONINFOEXW*;

#define VER_PLATFORM_WIN32_NT 2
#define VER_NT_WORKSTATION 1

BOOL WINAPI GetVersionExW(LPOSVERSIONINFOW version);

// All of these give the length without terminator when the text fits, otherwise the size needed.
DWORD WINAPI GetEnvironmentVariableW(LPCWSTR name, LPWSTR value, DWORD size);
UINT WINAPI GetWindowsDirectoryW(LPWSTR path, UINT size);
UINT WINAPI GetSystemDirectoryW(LPWSTR path, UINT size);
// The size needed with the terminator, whether or not it fits.
DWORD WINAPI ExpandEnvironmentStringsW(LPCWSTR source, LPWSTR target, DWORD size);

LPWSTR WINAPI GetCommandLineW();

// Equal gives 0; texts that differ at all aren't equal. The order is that of the character codes.
int WINAPI lstrcmpW(LPCWSTR a, LPCWSTR b);
