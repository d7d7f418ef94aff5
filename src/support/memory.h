// Memory of the process heap.
#pragma once

#include <cstddef>

// Zeroed memory, or null; the second gives it back (null is accepted).
void* allocate_bytes(size_t bytes);
void release_bytes(void* block);
