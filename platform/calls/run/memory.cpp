#include "calls/run/session.h"

#include <windows.h>

// Blocks of the process heap, and those of the older local heap that other calls give out, all noted in the
// session's ledger. Giving back can't be made to fail: no program can do anything about it, and the ledger
// would only show what was asked for.
namespace {

constexpr SIZE_T largest_block = SIZE_T{1}
                                 << 30; // above it the machine has no memory, as a small one wouldn't

// A value that no handle of the table has: those are multiples of four.
HANDLE process_heap() {
    return reinterpret_cast<HANDLE>(std::uintptr_t{0x10001});
}

} // namespace

HANDLE GetProcessHeap() {
    platform::Call call("GetProcessHeap");
    return process_heap();
}

LPVOID HeapAlloc(HANDLE heap, DWORD flags, SIZE_T bytes) {
    platform::Call call("HeapAlloc", std::to_string(bytes));
    if (heap != process_heap())
        call.refuse("only the process heap is there");
    if ((flags & ~DWORD{HEAP_ZERO_MEMORY}) != 0)
        call.refuse("flags " + std::to_string(flags));
    if (call.fails(ERROR_NOT_ENOUGH_MEMORY))
        return nullptr;
    const bool zeroed = (flags & HEAP_ZERO_MEMORY) != 0;
    void* const block =
        bytes > largest_block ? nullptr : platform::session().memory.allocate(bytes, "HeapAlloc", zeroed);
    if (block == nullptr)
        platform::set_last_error(ERROR_NOT_ENOUGH_MEMORY);
    return block;
}

BOOL HeapFree(HANDLE heap, DWORD flags, LPVOID block) {
    platform::Call call("HeapFree");
    if (heap != process_heap() || flags != 0)
        call.refuse("only the process heap is there, without flags");
    if (platform::session().memory.release(block, "HeapAlloc"))
        return TRUE;
    platform::set_last_error(ERROR_INVALID_PARAMETER);
    return FALSE;
}

HLOCAL LocalFree(HLOCAL block) {
    platform::Call call("LocalFree");
    if (platform::session().memory.release(block, "LocalAlloc"))
        return nullptr;
    platform::set_last_error(ERROR_INVALID_HANDLE);
    return block;
}
