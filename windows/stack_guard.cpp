// The stack protector's word and what happens when a function finds it changed. The compiler's own library
// takes the word from the crypto provider, which would load libraries before the search for them is limited.
#include <windows.h>

#include <cstdint>
#include <initializer_list>

extern "C" {
// Starts as the value that newer loaders replace by a random one; see load_config.cpp.
#ifdef _WIN64
std::uintptr_t __stack_chk_guard = 0x00002B992DDFA232;
#else
std::uintptr_t __stack_chk_guard = 0xBB40E64E;
#endif
}

extern "C" [[noreturn]] void __stack_chk_fail() {
    constexpr UINT stack_buffer_overrun = 0xC0000409; // STATUS_STACK_BUFFER_OVERRUN
    TerminateProcess(GetCurrentProcess(), stack_buffer_overrun);
    __builtin_trap();
}

// Runs before all other constructors, so that no protected routine is on the stack while the word changes.
// Time, ids and addresses are what start-up has at hand on systems whose loader brings no random value.
extern "C" __attribute__((constructor(101), no_stack_protector)) void start_stack_guard() {
    FILETIME time = {};
    GetSystemTimeAsFileTime(&time);
    LARGE_INTEGER counter = {};
    QueryPerformanceCounter(&counter);
    std::uintptr_t word = reinterpret_cast<std::uintptr_t>(&counter);
    for (std::uintptr_t part : {std::uintptr_t{time.dwLowDateTime}, std::uintptr_t{GetTickCount()},
                                std::uintptr_t{GetCurrentThreadId()}, std::uintptr_t{GetCurrentProcessId()},
                                static_cast<std::uintptr_t>(counter.QuadPart)})
        word = (word ^ part) * 0x01000193; // FNV's prime spreads each part over the word
    __stack_chk_guard ^= word;
}
