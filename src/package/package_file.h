// Opening and reading the text files of the distribution.
#pragma once

#include <windows.h>

#include <cstddef>

// Files are read in pieces of this many bytes, and each piece is a text of its own: what the end of a piece
// cuts in two is in neither. One more byte holds the terminator.
constexpr DWORD chunk_bytes = 4095;
using Chunk = char[chunk_bytes + 1];

// Opens for reading; others may read meanwhile. INVALID_HANDLE_VALUE when it can't be opened.
HANDLE open_package_file(const WCHAR* path);

// The same for a file of the current folder, or of a folder in it where `folder_name` isn't null. A path that
// needs more than `path_capacity` characters, at most 260, counts as a file that can't be opened.
HANDLE open_below_current_folder(const WCHAR* folder_name, const WCHAR* name, size_t path_capacity);

// Reads the next piece and terminates it: its bytes, or 0 at the end of the file and when the read fails,
// with an empty text.
DWORD read_chunk(HANDLE file, Chunk& chunk);

// Reads piece after piece until one holds the part, and gives its place in `chunk`; null when none does.
const char* find_in_chunks(HANDLE file, const char* part, Chunk& chunk);
