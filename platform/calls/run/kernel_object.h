// What CloseHandle closes: files, mutexes, threads and processes derive from this; keys, printers, services
// and searches derive from Object alone, since they have closing calls of their own.
#pragma once

#include "calls/run/handles.h"

namespace platform {

struct KernelObject : Object {};

} // namespace platform
