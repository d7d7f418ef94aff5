// Files and folders. Names go without regard to case, and a short name opens what the long one does; a path
// of MAX_PATH characters or more (a folder to create: of MAX_PATH - 12) is refused unless it begins with
// "\\?\".
#pragma once

#include "windef.h"

#define INVALID_FILE_SIZE 0xffffffffu
#define INVALID_SET_FILE_POINTER 0xffffffffu
#define INVALID_FILE_ATTRIBUTES 0xffffffffu

#define GENERIC_READ 0x80000000u
#define GENERIC_WRITE 0x40000000u
#define FILE_READ_DATA 0x0001
#define FILE_WRITE_DATA 0x0002
#define FILE_APPEND_DATA 0x0004
#define FILE_READ_ATTRIBUTES 0x0080

#define FILE_SHARE_READ 0x00000001
#define FILE_SHARE_WRITE 0x00000002
#define FILE_SHARE_DELETE 0x00000004

#define CREATE_NEW 1
#define CREATE_ALWAYS 2
#define OPEN_EXISTING 3
#define OPEN_ALWAYS 4
#define TRUNCATE_EXISTING 5

#define FILE_ATTRIBUTE_READONLY 0x00000001
#define FILE_ATTRIBUTE_DIRECTORY 0x00000010
#define FILE_ATTRIBUTE_ARCHIVE 0x00000020
#define FILE_ATTRIBUTE_NORMAL 0x00000080
#define FILE_ATTRIBUTE_REPARSE_POINT 0x00000400
#define FILE_FLAG_BACKUP_SEMANTICS 0x02000000
#define FILE_FLAG_OPEN_REPARSE_POINT 0x00200000

#define FILE_BEGIN 0
#define FILE_CURRENT 1
#define FILE_END 2

#define FILE_TYPE_UNKNOWN 0x0000
#define FILE_TYPE_DISK 0x0001

#define FILE_NAME_NORMALIZED 0x0
#define VOLUME_NAME_DOS 0x0

struct SECURITY_ATTRIBUTES {
    DWORD nLength;
    LPVOID lpSecurityDescriptor;
    BOOL bInheritHandle;
};
using LPSECURITY_ATTRIBUTES = SECURITY_ATTRIBUTES*;

struct OVERLAPPED; // asynchronous work isn't modelled: pass null
using LPOVERLAPPED = OVERLAPPED*;

struct BY_HANDLE_FILE_INFORMATION {
    DWORD dwFileAttributes;
    FILETIME ftCreationTime;
    FILETIME ftLastAccessTime;
    FILETIME ftLastWriteTime;
    DWORD dwVolumeSerialNumber;
    DWORD nFileSizeHigh;
    DWORD nFileSizeLow;
    DWORD nNumberOfLinks;
    DWORD nFileIndexHigh;
    DWORD nFileIndexLow;
};
using LPBY_HANDLE_FILE_INFORMATION = BY_HANDLE_FILE_INFORMATION*;

struct WIN32_FIND_DATAW {
    DWORD dwFileAttributes;
    FILETIME ftCreationTime;
    FILETIME ftLastAccessTime;
    FILETIME ftLastWriteTime;
    DWORD nFileSizeHigh;
    DWORD nFileSizeLow;
    DWORD dwReserved0;
    DWORD dwReserved1;
    WCHAR cFileName[MAX_PATH];
    WCHAR cAlternateFileName[14]; // the short name; empty when cFileName is of the form 8.3
};
using LPWIN32_FIND_DATAW = WIN32_FIND_DATAW*;

// The length without terminator when it fits, otherwise the size needed with it.
DWORD WINAPI GetCurrentDirectoryW(DWORD size, LPWSTR path);

// OPEN_ALWAYS and CREATE_ALWAYS set ERROR_ALREADY_EXISTS when the file was there, else 0. A folder needs
// FILE_FLAG_BACKUP_SEMANTICS.
HANDLE WINAPI CreateFileW(LPCWSTR path, DWORD access, DWORD share, LPSECURITY_ATTRIBUTES security,
                          DWORD disposition, DWORD flags, HANDLE template_file);
BOOL WINAPI ReadFile(HANDLE file, LPVOID bytes, DWORD size, LPDWORD got, LPOVERLAPPED overlapped);
BOOL WINAPI WriteFile(HANDLE file, LPCVOID bytes, DWORD size, LPDWORD written, LPOVERLAPPED overlapped);
BOOL WINAPI FlushFileBuffers(HANDLE file);
DWORD WINAPI SetFilePointer(HANDLE file, LONG low, PLONG high, DWORD origin);
DWORD WINAPI GetFileSize(HANDLE file, LPDWORD high);
DWORD WINAPI GetFileType(HANDLE file);
BOOL WINAPI GetFileInformationByHandle(HANDLE file, LPBY_HANDLE_FILE_INFORMATION information);
// As GetCurrentDirectoryW; the path has the form "\\?\C:\Folder\File", every link followed.
DWORD WINAPI GetFinalPathNameByHandleW(HANDLE file, LPWSTR path, DWORD size, DWORD flags);

DWORD WINAPI GetFileAttributesW(LPCWSTR path);
BOOL WINAPI SetFileAttributesW(LPCWSTR path, DWORD attributes);
BOOL WINAPI DeleteFileW(LPCWSTR path);
BOOL WINAPI CopyFileW(LPCWSTR source, LPCWSTR target, BOOL fail_if_exists);
BOOL WINAPI CreateDirectoryW(LPCWSTR path, LPSECURITY_ATTRIBUTES security);
BOOL WINAPI RemoveDirectoryW(LPCWSTR path);

// Entries come sorted by their upper-case names, "." and ".." first. The pattern is held against the short
// names as well.
HANDLE WINAPI FindFirstFileW(LPCWSTR pattern, LPWIN32_FIND_DATAW entry);
BOOL WINAPI FindNextFileW(HANDLE search, LPWIN32_FIND_DATAW entry);
BOOL WINAPI FindClose(HANDLE search);
