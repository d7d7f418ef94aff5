// The spooler's host in the process of a program under Wine: one machine, read from its file and written
// back, one lock, and handles of its own. Each call holds the lock from its begin to its end, and leaves the
// thread's last error as it was unless it fails.
#include "machine/fault_rules.h"
#include "machine/machine_json.h"
#include "spooler_calls/spooler_call.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <map>
#include <optional>
#include <utility>

namespace platform {
namespace {

constexpr std::uint32_t service_running = 4;

struct Spooler {
    SRWLOCK lock = SRWLOCK_INIT;
    bool looked = false; // for the machine file; it is read once
    bool missing = true; // it couldn't be
    Machine machine = {};
    FaultCounts faults = {};
    std::map<std::uintptr_t, std::shared_ptr<const OpenedPrinter>> handles = {};
    std::uintptr_t last_handle = 0; // numbers aren't used again, so that a second close is seen
};

// Never destroyed: the program may call while the process ends.
Spooler& spooler() {
    static Spooler& the_one = *new Spooler;
    return the_one;
}

std::wstring environment(const wchar_t* name) {
    wchar_t value[MAX_PATH] = {};
    const DWORD length = GetEnvironmentVariableW(name, value, MAX_PATH);
    return length < MAX_PATH ? std::wstring(value, length) : std::wstring();
}

std::filesystem::path machine_file() {
    return environment(L"TRK_MACHINE_FILE");
}

std::filesystem::path notes_file() {
    std::filesystem::path file = environment(L"TRK_SPOOLER_NOTES");
    if (file.empty() && !machine_file().empty()) {
        file = machine_file();
        file += L".notes";
    }
    return file;
}

// A line at the end of the diagnostic file.
void note(const std::string& line) {
    std::ofstream(notes_file(), std::ios::binary | std::ios::app) << line << "\r\n";
}

void load_once() {
    if (std::exchange(spooler().looked, true))
        return;
    try {
        spooler().machine = load_machine(machine_file());
        spooler().missing = false;
    } catch (const std::exception& problem) {
        spooler().machine.spooler = {};
        note(std::string("the machine file: ") + problem.what());
    }
}

// Call under the lock.
std::shared_ptr<const OpenedPrinter> opened(HANDLE handle) {
    const auto found = spooler().handles.find(reinterpret_cast<std::uintptr_t>(handle));
    return found == spooler().handles.end() ? nullptr : found->second;
}

std::shared_ptr<const OpenedPrinter> peek(HANDLE handle) {
    AcquireSRWLockExclusive(&spooler().lock);
    auto printer = opened(handle);
    ReleaseSRWLockExclusive(&spooler().lock);
    return printer;
}

} // namespace

struct SpoolerCall::Host {
    const char* name;
    std::string argument;
    DWORD last_error; // what the thread has at the end of a call that kept none
};

SpoolerCall::SpoolerCall(const char* name, std::string argument)
    : host_(new Host{name, std::move(argument), GetLastError()}) {
    AcquireSRWLockExclusive(&spooler().lock);
    load_once();
}

SpoolerCall::~SpoolerCall() {
    ReleaseSRWLockExclusive(&spooler().lock);
    SetLastError(error_ == 0 ? host_->last_error : error_);
}

bool SpoolerCall::fails(std::uint32_t default_error) {
    const Fault* const fault = spooler().faults.due(spooler().machine.faults, host_->name, host_->argument);
    if (fault != nullptr)
        error_ = fault->error.value_or(default_error);
    return fault != nullptr;
}

ToldSize SpoolerCall::told_size(std::size_t needed, std::size_t) {
    const auto bytes = static_cast<std::uint32_t>(needed);
    return {bytes, bytes};
}

BOOL SpoolerCall::refuse(const std::string& why) {
    note(std::string(host_->name) + "(" + host_->argument + "): " + why);
    return fail(ERROR_CALL_NOT_IMPLEMENTED);
}

bool SpoolerCall::spooler_away() {
    const auto& services = spooler().machine.services;
    const auto service = std::find_if(services.begin(), services.end(),
                                      [](const auto& entry) { return same_name(entry.name, u"Spooler"); });
    const bool runs =
        service == services.end() || service->now.empty() || service->now.front().state == service_running;
    if (runs && !spooler().missing)
        return false;
    fail(RPC_S_SERVER_UNAVAILABLE);
    return true;
}

BOOL SpoolerCall::fail(std::uint32_t error) {
    error_ = error;
    return FALSE;
}

SpoolerState& SpoolerCall::state() {
    return spooler().machine.spooler;
}

const Machine& SpoolerCall::machine() {
    return spooler().machine;
}

bool SpoolerCall::save() {
    try {
        save_machine(spooler().machine, machine_file());
        return true;
    } catch (const std::exception& problem) {
        note(std::string("the machine file: ") + problem.what());
        error_ = ERROR_WRITE_FAULT;
        return false;
    }
}

HANDLE SpoolerCall::open(OpenedPrinter printer) {
    const std::uintptr_t number = ++spooler().last_handle;
    spooler().handles.emplace(number, std::make_shared<OpenedPrinter>(std::move(printer)));
    return reinterpret_cast<HANDLE>(number);
}

std::shared_ptr<const OpenedPrinter> SpoolerCall::find(HANDLE handle, bool monitor) {
    auto printer = opened(handle);
    if (printer && printer->monitor == monitor)
        return printer;
    fail(ERROR_INVALID_HANDLE);
    return nullptr;
}

BOOL SpoolerCall::close(HANDLE handle) {
    if (spooler().handles.erase(reinterpret_cast<std::uintptr_t>(handle)) == 1)
        return TRUE;
    note("ClosePrinter of a handle that isn't open");
    return fail(ERROR_INVALID_HANDLE);
}

std::string handle_kind(HANDLE handle) {
    const auto printer = peek(handle);
    return !printer ? "" : printer->monitor ? "port monitor" : "printer";
}

std::u16string handle_name(HANDLE handle) {
    const auto printer = peek(handle);
    return printer ? printer->name : u"";
}

std::u16string from_ansi(std::string_view bytes) {
    if (bytes.empty())
        return {};
    const int size = static_cast<int>(bytes.size());
    std::wstring wide(bytes.size(), L'\0'); // no code page of the system has more characters than bytes
    const int length = MultiByteToWideChar(CP_ACP, 0, bytes.data(), size, wide.data(), size);
    return {wide.begin(), wide.begin() + length};
}

} // namespace platform
