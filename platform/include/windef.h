// The platform's basic types, as its headers of the same name declare them. 32-bit words are 32 bits wide
// here too, and 16-bit text is char16_t, so that a literal is TEXT("...") on both platforms.
#pragma once

#include <cstddef>
#include <cstdint>

#define WINAPI
#define CALLBACK
#define STDMETHODCALLTYPE
#define __cdecl
#define TEXT(text) u##text

using BOOL = int;
using BYTE = unsigned char;
using WORD = unsigned short;
using DWORD = unsigned int;
using UINT = unsigned int;
using INT = int;
using LONG = int;
using ULONG = unsigned int;
using USHORT = unsigned short;
using ULONGLONG = unsigned long long;
using DWORDLONG = unsigned long long;
using LONGLONG = long long;
using UCHAR = unsigned char;
using WCHAR = char16_t;
using LANGID = WORD;
using LCID = DWORD;
using LCTYPE = DWORD;
using HRESULT = LONG;
using LSTATUS = LONG;
using REGSAM = DWORD;
using ACCESS_MASK = DWORD;

using INT_PTR = std::intptr_t;
using UINT_PTR = std::uintptr_t;
using LONG_PTR = std::intptr_t;
using ULONG_PTR = std::uintptr_t;
using DWORD_PTR = std::uintptr_t;
using SIZE_T = std::size_t;
using WPARAM = UINT_PTR;
using LPARAM = LONG_PTR;
using LRESULT = LONG_PTR;

using LPVOID = void*;
using PVOID = void*;
using LPCVOID = const void*;
using LPBYTE = BYTE*;
using PBYTE = BYTE*;
using LPBOOL = BOOL*;
using PBOOL = BOOL*;
using LPDWORD = DWORD*;
using PDWORD = DWORD*;
using PULONG = ULONG*;
using PLONG = LONG*;
using LPSTR = char*;
using LPCSTR = const char*;
using LPWSTR = WCHAR*;
using PWSTR = WCHAR*;
using LPCWSTR = const WCHAR*;
using PCWSTR = const WCHAR*;

// Handles of different kinds are different types, as with the platform's STRICT.
#define DECLARE_HANDLE(name)                                                                                 \
    struct name##__ {                                                                                        \
        int unused;                                                                                          \
    };                                                                                                       \
    using name = name##__*

using HANDLE = void*;
DECLARE_HANDLE(HINSTANCE);
DECLARE_HANDLE(HWND);
DECLARE_HANDLE(HMENU);
DECLARE_HANDLE(HICON);
DECLARE_HANDLE(HRGN);
DECLARE_HANDLE(HKEY);
DECLARE_HANDLE(HRSRC);
DECLARE_HANDLE(HDC);
DECLARE_HANDLE(HFONT);
DECLARE_HANDLE(HBRUSH);
DECLARE_HANDLE(SC_HANDLE);
using HMODULE = HINSTANCE;
using HCURSOR = HICON;
using HLOCAL = HANDLE;
using HGDIOBJ = HANDLE;
using LPHANDLE = HANDLE*;
using PHKEY = HKEY*;

using FARPROC = INT_PTR (*)();
using DLGPROC = INT_PTR (*)(HWND, UINT, WPARAM, LPARAM);

#define FALSE 0
#define TRUE 1
#define MAX_PATH 260

#define LOWORD(value) (static_cast<WORD>(static_cast<DWORD_PTR>(value) & 0xffff))
#define HIWORD(value) (static_cast<WORD>((static_cast<DWORD_PTR>(value) >> 16) & 0xffff))
#define MAKEWPARAM(low, high)                                                                                \
    (static_cast<WPARAM>(static_cast<DWORD>(static_cast<WORD>(low)) |                                        \
                         (static_cast<DWORD>(static_cast<WORD>(high)) << 16)))
#define MAKELONG(low, high)                                                                                  \
    (static_cast<LONG>(static_cast<DWORD>(static_cast<WORD>(low)) |                                          \
                       (static_cast<DWORD>(static_cast<WORD>(high)) << 16)))
#define MAKELPARAM(low, high) (static_cast<LPARAM>(MAKEWPARAM(low, high)))
#define MAKEINTRESOURCEW(id) (reinterpret_cast<LPWSTR>(static_cast<ULONG_PTR>(static_cast<WORD>(id))))

struct RECT {
    LONG left;
    LONG top;
    LONG right;
    LONG bottom;
};
using LPRECT = RECT*;

struct POINT {
    LONG x;
    LONG y;
};
using LPPOINT = POINT*;

struct FILETIME {
    DWORD dwLowDateTime;
    DWORD dwHighDateTime;
};

struct GUID {
    std::uint32_t Data1;
    std::uint16_t Data2;
    std::uint16_t Data3;
    std::uint8_t Data4[8];
};
using IID = GUID;
using CLSID = GUID;
using REFIID = const IID&;
using REFCLSID = const CLSID&;
