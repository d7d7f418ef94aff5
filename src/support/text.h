// Bounded text: composing, scanning and copying. Capacities count the terminator, in characters for 16-bit
// text and in bytes for 8-bit text. Conversions between the widths go by the ANSI code page.
#pragma once

#include <windows.h>

#include <cstdarg>
#include <cstddef>

// Composes 16-bit text by `format`: %s 16-bit text, %S 8-bit text, %d %u %x (32 bits), %lx the same as %x,
// %ls the same as %s, %c, %%, and a minimum width with zero or blank padding before d, u and x (%04x). A null
// text counts as empty. The result is always terminated: 1 when the whole text fits, 0 when it was cut.
int format_text(WCHAR* out, size_t capacity, const WCHAR* format, ...);
int format_text_list(WCHAR* out, size_t capacity, const WCHAR* format, va_list arguments);

// The same, and gives the text's length, or `capacity` when it was cut.
size_t compose_text(WCHAR* out, size_t capacity, const WCHAR* format, va_list arguments);

// The same for 8-bit text, where %s is 8-bit text and there is no %S. A cut never leaves half a character.
int format_ansi(char* out, size_t capacity, const char* format, ...);

// Scans 8-bit text by a format of "%d" and literal characters, as the standard scan does: white space before
// a number is skipped, a sign is taken, numbers saturate at the 32-bit limits. `values` has room for
// `value_count` numbers, which are set to 0 first. Gives the number of fields converted, or -1 when the text
// ends before the first.
int scan_numbers(const char* text, const char* format, int* values, size_t value_count);

// The decimal number at the start of the text: white space, sign, digits; saturating; 0 when there is no
// digit.
int scan_number(const char* text);

size_t text_length(const WCHAR* text); // null gives 0
size_t ansi_length(const char* text);  // null gives 0

// Copy and append, always terminated: 1 when everything fits, 0 when it was cut. Null counts as empty.
int copy_text(WCHAR* out, size_t capacity, const WCHAR* text);
int append_text(WCHAR* out, size_t capacity, const WCHAR* text);
int copy_ansi(char* out, size_t capacity, const char* text);

// Bytes of the whole characters at the start of the text that lie within its first `limit` bytes.
size_t whole_ansi_length(const char* text, size_t limit);

// To 16-bit and to 8-bit text by the ANSI code page; always terminated, 1 when everything fits, 0 when it was
// cut or can't be converted. A cut never leaves half a character.
int widen(WCHAR* out, size_t capacity, const char* text);
int narrow(char* out, size_t capacity, const WCHAR* text);

// The same for a name: 0 also when the 8-bit form, of at most 511 bytes, stands for another name. The code
// page's best fit must not make one thing's name out of another's.
int narrow_name(char* out, size_t capacity, const WCHAR* name);

// The first place of `part` in `text`, exact, or null.
const WCHAR* find_text(const WCHAR* text, const WCHAR* part);
const char* find_ansi(const char* text, const char* part);

// The same for a part that is looked for in names: in a double-byte code page the second byte of a character
// may have a letter's value, and no place begins there. `text` begins with a whole character.
const char* find_in_names(const char* text, const char* part);
void replace_in_name(char* name, char old_character, char new_character); // 7-bit characters

int same_text(const WCHAR* first, const WCHAR* second); // exact: 1 or 0
int starts_with(const WCHAR* text, const WCHAR* start); // 1 or 0
int ansi_starts_with(const char* text, const char* start);

// The letter, if it is one of the 26 from `from` on (A or a), as that of the alphabet that begins with `to`;
// any other character as it is.
WCHAR change_case(WCHAR letter, WCHAR from, WCHAR to);

// Puts blanks in place of the control characters among the first `length` bytes, so that what a stranger sent
// can't end a line or move a column.
void blank_controls(char* text, size_t length);

// Whether the text is one plain file or folder name: not empty, not "." or "..", no separator, colon,
// wildcard, quote, angle bracket, bar or control character, and no blank or point at its end.
int is_plain_name(const WCHAR* name);
