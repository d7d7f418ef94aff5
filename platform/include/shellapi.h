// File operations of the shell.
#pragma once

#include "windef.h"

#define FO_MOVE 0x1
#define FO_COPY 0x2
#define FO_DELETE 0x3

#define FOF_SILENT 0x4
#define FOF_NOCONFIRMATION 0x10
#define FOF_FILESONLY 0x80
#define FOF_NOERRORUI 0x400
#define FOF_NORECURSION 0x1000

using FILEOP_FLAGS = WORD;

struct SHFILEOPSTRUCTW {
    HWND hwnd;
    UINT wFunc;
    LPCWSTR pFrom; // one path behind the other, each with its terminator, and one more at the end
    LPCWSTR pTo;
    FILEOP_FLAGS fFlags;
    BOOL fAnyOperationsAborted;
    LPVOID hNameMappings;
    PCWSTR lpszProgressTitle;
};
using LPSHFILEOPSTRUCTW = SHFILEOPSTRUCTW*;

// 0, or a code: the system's, or one of the shell's own.
int WINAPI SHFileOperationW(LPSHFILEOPSTRUCTW operation);
