// The install log: one 8-bit text file in the machine-wide temporary folder, appended to by every run.
#pragma once

#include <windows.h>

#include <failed_step.h>

#include <cstddef>

// Room of a composed log line, in characters with the terminator.
constexpr size_t log_line_capacity = 1024;

// The machine-wide temporary folder into `buffer` of `size` characters: 1 when a source gave one, else 0.
// With use_environment the process's TEMP and TMP are asked first.
int find_temp_dir(WCHAR* buffer, DWORD size, int use_environment);

// Opens <temp folder>\<name><extension> for appending and puts its path into `path` of `size` characters. The
// handle, or INVALID_HANDLE_VALUE: the run then goes on without a log. A file that isn't an ordinary one with
// one name, lying in the temp folder itself, is closed again.
HANDLE open_log(const WCHAR* name, const WCHAR* extension, WCHAR* path, DWORD size);

// Closes the run's log, app.log_handle, between two lines of a worker that may still live. Its later ones go
// nowhere.
void close_log();

// Writes the text, in the ANSI code page, to the end of the file, whole and flushed, from any thread. Does
// nothing with INVALID_HANDLE_VALUE, nor with a log that close_log has closed since the caller took its
// handle.
void log_write(HANDLE handle, const WCHAR* text);

// Writes a line of whole texts, which may be long: they, of which null counts as empty, and CR LF go to the
// run's log as one piece.
void log_text(const WCHAR* text);
void log_texts(const WCHAR* first, const WCHAR* second, const WCHAR* third, const WCHAR* fourth);

// Composes a line as format_text does and writes it to the run's log. A line beyond its capacity
// (log_line_capacity, or the one given) is cut and keeps the line end that the format closes with.
void log_line(const WCHAR* format, ...);
void log_line_within(size_t capacity, const WCHAR* format, ...);

// The same for a line that tells of a failed step. A rehearsal hears of it; the log's bytes are no others. A
// procedure can't hand on what it got for "...", so these are inlined, which on Windows leaves the line's
// call.
template<class... Values>
inline void log_failure(const WCHAR* format, Values... values) {
    log_line(format, values...);
    line_failed();
}
template<class... Values>
inline void log_failure_within(size_t capacity, const WCHAR* format, Values... values) {
    log_line_within(capacity, format, values...);
    line_failed();
}
