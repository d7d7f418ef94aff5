// Code pages, locale and user-interface languages.
#pragma once

#include "windef.h"

#define CP_ACP 0
#define CP_UTF8 65001
#define MB_PRECOMPOSED 0x00000001
#define MB_ERR_INVALID_CHARS 0x00000008
#define WC_ERR_INVALID_CHARS 0x00000080
#define WC_NO_BEST_FIT_CHARS 0x00000400

// Lengths of -1 take the text with its terminator. An out size of 0 asks for the size needed.
int WINAPI MultiByteToWideChar(UINT code_page, DWORD flags, LPCSTR bytes, int byte_count, LPWSTR text,
                               int size);
int WINAPI WideCharToMultiByte(UINT code_page, DWORD flags, LPCWSTR text, int length, LPSTR bytes, int size,
                               LPCSTR default_character, LPBOOL used_default);
BOOL WINAPI IsDBCSLeadByte(BYTE byte);
BOOL WINAPI IsDBCSLeadByteEx(UINT code_page, BYTE byte);
UINT WINAPI GetACP();

#define LOCALE_SYSTEM_DEFAULT 0x0800
#define LOCALE_USER_DEFAULT 0x0400
#define LOCALE_SABBREVLANGNAME 0x00000003

#define LANG_CHINESE 0x04
#define LANG_GERMAN 0x07
#define LANG_ENGLISH 0x09
#define LANG_SPANISH 0x0a
#define LANG_FRENCH 0x0c
#define LANG_JAPANESE 0x11
#define SUBLANG_NEUTRAL 0x00
#define SUBLANG_DEFAULT 0x01
#define SUBLANG_ENGLISH_UK 0x02

#define MAKELANGID(primary, sub)                                                                             \
    (static_cast<WORD>((static_cast<WORD>(sub) << 10) | static_cast<WORD>(primary)))
#define PRIMARYLANGID(language) (static_cast<WORD>(static_cast<WORD>(language) & 0x3ff))
#define SUBLANGID(language) (static_cast<WORD>(static_cast<WORD>(language) >> 10))

// The characters written with the terminator, or 0.
int WINAPI GetLocaleInfoW(LCID locale, LCTYPE type, LPWSTR data, int size);
LANGID WINAPI SetThreadUILanguage(LANGID language);
LANGID WINAPI GetThreadUILanguage();
