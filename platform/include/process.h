// Thread start of the runtime library.
#pragma once

#include <cstdint>

#ifndef __stdcall
#define __stdcall
#endif

// A thread that closes its handle itself when it ends, so that the caller can't rely on it; -1 with errno set
// when it can't be started.
std::uintptr_t _beginthread(void (*start)(void*), unsigned stack_size, void* argument);
// A thread whose handle the caller closes; 0 with errno set when it can't be started.
std::uintptr_t _beginthreadex(void* security, unsigned stack_size, unsigned (*start)(void*), void* argument,
                              unsigned flags, unsigned* thread_id);
