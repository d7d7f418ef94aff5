// What CloseHandle closes: files, mutexes, threads and processes derive from this; keys, printers, services
// and searches derive from Object alone, since they have closing calls of their own.
#pragma once

#include "calls/run/handles.h"

#include <cstdint>
#include <optional>

namespace platform {

struct KernelObject : Object {
    // WaitForSingleObject's wait on this object and its result; nothing where waiting isn't modelled for the
    // kind.
    virtual std::optional<std::uint32_t> wait(std::uint32_t milliseconds) {
        static_cast<void>(milliseconds);
        return std::nullopt;
    }
};

} // namespace platform
