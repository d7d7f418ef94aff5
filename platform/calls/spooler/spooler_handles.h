// What the spooler's calls share: its handles, its lock, and how enumerations answer.
#pragma once

#include "calls/run/session.h"
#include "machine/spooler_records.h"

#include <windows.h>

#include <mutex>

namespace platform {

// An open queue, or the transceive interface of a port monitor.
struct SpoolerHandle : Object {
    SpoolerHandle(std::u16string_view its_name, std::uint32_t rights, bool is_monitor)
        : name(its_name), access(rights), monitor(is_monitor) {}
    const char* kind() const override { return monitor ? "port monitor" : "printer"; }
    const std::u16string name;
    const std::uint32_t access;
    const bool monitor;
};

// Held over each look at, and change of, the machine's spooler.
std::mutex& spooler_lock();

// True, with the last error set, while the Spooler service doesn't run; a machine without that service has a
// spooler all the same.
bool spooler_away();

// The layer has the local spooler alone: a null or empty server name.
void refuse_servers(const Call& call, const char16_t* server);

// The queue behind a handle; null with the last error set when the handle isn't one of a queue, or when that
// is gone. Call under the lock.
PrintQueue* queue_behind(HANDLE handle, std::shared_ptr<SpoolerHandle>& opened);

// What every enumeration checks of its buffer arguments; false with the last error set.
bool good_enumeration(const BYTE* buffer, DWORD size, const DWORD* needed, const DWORD* returned);

// The records into the caller's buffer, or the size that it must have.
template<class Record>
BOOL deliver(const RecordBuffer<Record>& records, BYTE* buffer, DWORD size, DWORD* needed, DWORD* returned) {
    return deliver_records(records, buffer, size, needed, returned) ? TRUE
                                                                    : failed(ERROR_INSUFFICIENT_BUFFER);
}

} // namespace platform
