// The process's one spooler: the machine behind it, its lock, its handles, and what every call does first and
// last.
#pragma once

#include "machine/fault_rules.h"
#include "machine/machine.h"
#include "machine/spooler_records.h"

#include <windows.h>

#include <winspool.h>

#include <cstdint>
#include <string>
#include <string_view>

namespace stand_in {

// An open queue, or the transceive interface of a port monitor.
struct Handle {
    std::u16string name;
    std::uint32_t access = 0;
    bool monitor = false;
};

// One call of the program. It holds the spooler's lock from its begin to its end, so that what it found stays
// true, and leaves the thread's last error as it was unless the call fails.
class Call {
public:
    // `argument` is what faults may ask about; the rehearsal's call of that name gives the same.
    Call(const char* name, std::string argument);
    ~Call();
    Call(const Call&) = delete;
    Call& operator=(const Call&) = delete;

    // Whether a fault is due; `default_error` where that names none. The error is kept.
    bool fails(std::uint32_t default_error);
    void about(std::string argument) { argument_ = std::move(argument); } // in place of the constructor's
    // Whether there is no machine, since its file can't be read; with RPC_S_SERVER_UNAVAILABLE kept.
    bool machine_missing();
    // The same, and also while the spooler's service doesn't run.
    bool spooler_away();
    // For what isn't modelled: a note, and ERROR_CALL_NOT_IMPLEMENTED.
    BOOL refuse(const char* why);
    // The local spooler alone is there; false after a refusal.
    bool local(const wchar_t* server);

    BOOL fail(std::uint32_t error); // keeps the error and gives FALSE
    BOOL end(std::uint32_t error);  // the same for an error; for 0 saves the machine and gives TRUE
    bool save();                    // false with ERROR_WRITE_FAULT kept and noted
    std::uint32_t error() const { return error_; }
    void clear_error() { entry_error_ = ERROR_SUCCESS; } // leaves 0 as the thread's last error at success

    platform::Machine& machine();
    platform::SpoolerState& state() { return machine().spooler; }

    HANDLE open(Handle handle);
    const Handle* find(HANDLE handle, bool monitor); // null, with ERROR_INVALID_HANDLE kept
    bool close(HANDLE handle);
    // The queue behind a handle with that access, or null and the error kept.
    platform::PrintQueue* queue(HANDLE handle, std::uint32_t access);

    // What every enumeration checks of its buffer arguments.
    bool good_enumeration(const void* buffer, DWORD size, const DWORD* needed, const DWORD* returned);
    template<class Record>
    BOOL deliver(const platform::RecordBuffer<Record>& records, void* buffer, DWORD size, DWORD* needed,
                 DWORD* returned) {
        return platform::deliver_records(records, buffer, size, needed, returned)
                   ? TRUE
                   : fail(ERROR_INSUFFICIENT_BUFFER);
    }

private:
    const char* name_;
    std::string argument_;
    DWORD entry_error_;
    std::uint32_t error_ = 0;
};

// Text across the border: the model's is char16_t, the platform's wchar_t of the same 16 bits. Null is empty.
std::u16string model_text(const wchar_t* text);
std::wstring platform_text(std::u16string_view text);
std::u16string ansi_text(std::string_view text); // from the ANSI code page
std::string shown(const wchar_t* text);          // for an argument; null gives "(null)"

// A line at the end of the diagnostic file.
void note(const std::string& line);

} // namespace stand_in
