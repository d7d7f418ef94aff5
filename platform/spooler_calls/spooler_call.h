// The spooler's calls are one source for two hosts: the rehearsal's session, and the library that stands in
// for the spooler under Wine. This is all that they ask of their host; calls/spooler and acceptance/winspool
// implement it.
#pragma once

#include "calls/text/ansi_text.h" // each host has its own from_ansi
#include "machine/driver_store.h"
#include "machine/machine.h"
#include "machine/spooler_records.h"

#include <windows.h>

#include <winspool.h>

#include <memory>
#include <string>

namespace platform {

// What stands behind a handle: an open queue, or the transceive interface of a port monitor.
struct OpenedPrinter {
    std::u16string name;
    std::uint32_t access = 0;
    bool monitor = false;
};

// One call of the program. What state() gives is this call's alone from then on to its end.
class SpoolerCall {
public:
    // `argument` is what faults may ask about, UTF-8.
    explicit SpoolerCall(const char* name, std::string argument = {});
    ~SpoolerCall();
    SpoolerCall(const SpoolerCall&) = delete;
    SpoolerCall& operator=(const SpoolerCall&) = delete;

    // Whether a fault is due; `default_error` where that names none. The error is kept.
    bool fails(std::uint32_t default_error);
    // For what isn't modelled: the session stops here, the library notes it and keeps
    // ERROR_CALL_NOT_IMPLEMENTED.
    BOOL refuse(const std::string& why);
    // Whether there is no spooler to ask, with RPC_S_SERVER_UNAVAILABLE kept: its service doesn't run. A
    // machine without that service has a spooler all the same.
    bool spooler_away();

    BOOL fail(std::uint32_t error); // keeps the error, which is the thread's last one at the end; gives FALSE
    std::uint32_t error() const { return error_; } // the kept one, 0 for none

    SpoolerState& state();
    const Machine& machine(); // the rest of what the host runs on
    bool save(); // the state, where the host keeps it in a file; false with ERROR_WRITE_FAULT kept

    HANDLE open(OpenedPrinter printer);
    // Null, with ERROR_INVALID_HANDLE kept, when the handle isn't one of a queue, or of a monitor.
    std::shared_ptr<const OpenedPrinter> find(HANDLE handle, bool monitor);
    BOOL close(HANDLE handle); // any other handle is noted as misuse
    // What to tell about the bytes that the call needs; `capacity` is the caller's.
    ToldSize told_size(std::size_t needed, std::size_t capacity);

    // The rest is the same for both hosts.
    BOOL end(std::uint32_t error); // keeps the error; for 0 saves
    // The queue behind a handle with at least that access, or null and the error kept.
    PrintQueue* queue(HANDLE handle, std::uint32_t access);
    // The local spooler alone is there: true for a null or empty name, false after a refusal.
    bool local(const WCHAR* server);
    // What every enumeration checks of its buffer arguments.
    bool good_enumeration(const BYTE* buffer, DWORD size, const DWORD* needed, const DWORD* returned);
    // The records into the caller's buffer, or the size that it must have.
    template<class Record>
    BOOL deliver(const RecordBuffer<Record>& records, BYTE* buffer, DWORD size, DWORD* needed,
                 DWORD* returned) {
        return deliver_records(records, buffer, size, needed, returned, told_size(records.bytes(), size))
                   ? TRUE
                   : fail(ERROR_INSUFFICIENT_BUFFER);
    }

private:
    struct Host; // what the host keeps for a call
    std::unique_ptr<Host> host_;
    std::uint32_t error_ = 0;
};

// What journals call a handle, and the name of the queue behind it; empty for a handle that isn't open.
std::string handle_kind(HANDLE handle);
std::u16string handle_name(HANDLE handle);

std::unique_ptr<PackageFiles> package_files(); // the machine's files

// Text across the border, whose characters have 16 bits on both hosts. Null is empty, or "(null)" when shown.
std::u16string model_text(const WCHAR* text);
std::u16string environment_or_own(const SpoolerState& state,
                                  const WCHAR* environment); // null is the spooler's own
std::string shown_text(const WCHAR* text);
bool given(const WCHAR* text); // neither null nor empty

} // namespace platform
