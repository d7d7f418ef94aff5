// The support tools' settings file, and the choice of the language that it or the system makes. The file is
// 8-bit text: a section begins with a line in '[' and ends at the next such line; an entry is a line that
// begins with its key and '=', without white space anywhere; the value is the rest of the line with its line
// end. Sections and keys are compared as case-sensitive prefixes. A line has at most 253 bytes; a longer one
// counts as several.
#pragma once

#include <windows.h>

// Reads the next line with its line end (CR LF, CR or LF) into `line` of `size` bytes, and moves the file's
// position right behind it. The line's bytes; 0 at the end of the file and when it can't be read. A line that
// doesn't fit comes in pieces.
DWORD read_text_line(HANDLE file, char* line, DWORD size);

// The first entry of the section into `value` of `value_size` bytes, and its length; 0 when there is none.
// The section comes with its brackets, the key with its '='. A value that doesn't fit is cut, and then a
// later entry with the same key replaces it; an empty one makes the result 0 and leaves the cut text. The
// file is settings.inf below the current folder with `file_flag`, else wrenchbay\settings.inf.
DWORD read_setting(const char* section, const char* key, char* value, DWORD value_size, int file_flag);

// 0 when the first `count` characters are equal, else 1. Doesn't stop at a terminator.
int compare_wide(const WCHAR* first, const WCHAR* second, int count);

// The language's index (languages.h). `from_setting` becomes 1 when settings.inf chose it, 0 when the
// system's locale did.
int VLI_Get_Locale(DWORD* from_setting, int file_flag);

// Makes the language that of the calling thread's dialogs and strings, and logs it.
void apply_language(int language);

// What the terms file of the language has behind its name; empty for the first one and for no language.
const WCHAR* terms_suffix(int language);
