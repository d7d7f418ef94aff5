// The support tools' file of names, wrenchbay\profilenames.inf: little-endian 16-bit text behind a byte order
// mark that is passed over unseen. Sections and entries stand as in settings.inf, compared as case-sensitive
// prefixes; a value ends in front of its line end. A line has at most 253 characters; a longer one counts as
// several.
#pragma once

#include <windows.h>

// Reads the next line without its line end (CR LF, CR or LF) into `line` of `size` characters, and moves the
// file's position behind the line end. The bytes that the line took up in the file with its line end, never 0
// for a line; 0 at the end of the file and when it can't be read.
DWORD read_text_line_wide(HANDLE file, WCHAR* line, DWORD size);

// The field of the section into `value` of `value_size` characters, and its length; 0 when there is none. The
// section comes with its opening bracket, the key without '=' and with at most 510 characters. A value that
// doesn't fit is cut, and then a later field of the same name replaces it. Writes two log lines on every
// call.
DWORD VLI_GetProfileFieldW(const WCHAR* section, const WCHAR* key, WCHAR* value, DWORD value_size);
