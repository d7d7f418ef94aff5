#include "support/memory.h"

#include <windows.h>

void* allocate_bytes(size_t bytes) {
    return HeapAlloc(GetProcessHeap(), HEAP_ZERO_MEMORY, bytes);
}

void release_bytes(void* block) {
    if (block != nullptr)
        HeapFree(GetProcessHeap(), 0, block);
}
