#include "support/memory.h"

void* allocate_bytes(size_t bytes) {
    return HeapAlloc(GetProcessHeap(), HEAP_ZERO_MEMORY, bytes);
}

WCHAR* allocate_characters(size_t count) {
    constexpr size_t most = static_cast<size_t>(-1) / sizeof(WCHAR);
    return count != 0 && count <= most ? static_cast<WCHAR*>(allocate_bytes(count * sizeof(WCHAR))) : nullptr;
}

void release_bytes(void* block) {
    if (block != nullptr)
        HeapFree(GetProcessHeap(), 0, block);
}
