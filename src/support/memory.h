// Memory of the process heap.
#pragma once

#include <windows.h>

#include <cstddef>

// Zeroed memory, or null; the second gives it back (null is accepted).
void* allocate_bytes(size_t bytes);
void release_bytes(void* block);

// Zeroed room for so many characters, to be released likewise, or null; also for none, and when their bytes
// are too many to be counted, as the platform may tell lengths that are none.
WCHAR* allocate_characters(size_t count);
