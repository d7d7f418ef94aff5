#include "stand_in.h"

#include "machine/machine_json.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <map>
#include <optional>
#include <utility>

namespace stand_in {
namespace {

constexpr std::uint32_t service_running = 4;

struct Spooler {
    SRWLOCK lock = SRWLOCK_INIT;
    bool looked = false;                      // for the machine file; it is read once
    std::optional<platform::Machine> machine; // empty when that failed
    platform::FaultCounts faults;
    std::map<std::uintptr_t, Handle> handles;
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

void load_once() {
    if (std::exchange(spooler().looked, true))
        return;
    try {
        spooler().machine = platform::load_machine(machine_file());
    } catch (const std::exception& problem) {
        note(std::string("the machine file: ") + problem.what());
    }
}

} // namespace

Call::Call(const char* name, std::string argument)
    : name_(name), argument_(std::move(argument)), entry_error_(GetLastError()) {
    AcquireSRWLockExclusive(&spooler().lock);
    load_once();
}

Call::~Call() {
    ReleaseSRWLockExclusive(&spooler().lock);
    SetLastError(error_ == 0 ? entry_error_ : error_);
}

bool Call::fails(std::uint32_t default_error) {
    if (!spooler().machine)
        return false;
    const platform::Fault* fault = spooler().faults.due(spooler().machine->faults, name_, argument_);
    if (fault != nullptr)
        error_ = fault->error.value_or(default_error);
    return fault != nullptr;
}

bool Call::machine_missing() {
    if (!spooler().machine)
        fail(RPC_S_SERVER_UNAVAILABLE);
    return !spooler().machine;
}

bool Call::spooler_away() {
    if (machine_missing())
        return true;
    const auto& services = machine().services;
    const auto service = std::find_if(services.begin(), services.end(), [](const auto& entry) {
        return platform::same_name(entry.name, u"Spooler");
    });
    if (service == services.end() || service->now.empty() || service->now.front().state == service_running)
        return false;
    fail(RPC_S_SERVER_UNAVAILABLE);
    return true;
}

BOOL Call::refuse(const char* why) {
    note(std::string(name_) + "(" + argument_ + "): " + why);
    return fail(ERROR_CALL_NOT_IMPLEMENTED);
}

bool Call::local(const wchar_t* server) {
    if (server == nullptr || *server == 0)
        return true;
    refuse("only the local spooler is there");
    return false;
}

BOOL Call::fail(std::uint32_t error) {
    error_ = error;
    return FALSE;
}

BOOL Call::end(std::uint32_t error) {
    if (error != 0)
        return fail(error);
    return save() ? TRUE : FALSE;
}

bool Call::save() {
    try {
        platform::save_machine(machine(), machine_file());
        return true;
    } catch (const std::exception& problem) {
        note(std::string("the machine file: ") + problem.what());
        error_ = ERROR_WRITE_FAULT;
        return false;
    }
}

platform::Machine& Call::machine() {
    return *spooler().machine;
}

HANDLE Call::open(Handle handle) {
    const std::uintptr_t number = ++spooler().last_handle;
    spooler().handles.emplace(number, std::move(handle));
    return reinterpret_cast<HANDLE>(number);
}

const Handle* Call::find(HANDLE handle, bool monitor) {
    const auto found = spooler().handles.find(reinterpret_cast<std::uintptr_t>(handle));
    if (found != spooler().handles.end() && found->second.monitor == monitor)
        return &found->second;
    fail(ERROR_INVALID_HANDLE);
    return nullptr;
}

bool Call::close(HANDLE handle) {
    return spooler().handles.erase(reinterpret_cast<std::uintptr_t>(handle)) == 1;
}

platform::PrintQueue* Call::queue(HANDLE handle, std::uint32_t access) {
    const Handle* const opened = find(handle, false);
    if (opened == nullptr)
        return nullptr;
    platform::PrintQueue* const found = platform::find_queue(state(), opened->name);
    if (found == nullptr)
        fail(ERROR_PRINTER_DELETED);
    else if ((opened->access & access) != access)
        fail(ERROR_ACCESS_DENIED);
    return error_ == 0 ? found : nullptr;
}

bool Call::good_enumeration(const void* buffer, DWORD size, const DWORD* needed, const DWORD* returned) {
    if (needed == nullptr || returned == nullptr)
        fail(RPC_X_NULL_REF_POINTER);
    else if (buffer == nullptr && size != 0)
        fail(ERROR_INVALID_USER_BUFFER);
    return error_ == 0;
}

std::u16string model_text(const wchar_t* text) {
    const std::wstring_view whole = text == nullptr ? std::wstring_view() : text;
    return {whole.begin(), whole.end()};
}

std::wstring platform_text(std::u16string_view text) {
    return {text.begin(), text.end()};
}

std::u16string ansi_text(std::string_view text) {
    if (text.empty())
        return {};
    const int bytes = static_cast<int>(text.size());
    std::wstring wide(text.size(), L'\0'); // no code page of the system has more characters than bytes
    const int length = MultiByteToWideChar(CP_ACP, 0, text.data(), bytes, wide.data(), bytes);
    return {wide.begin(), wide.begin() + length};
}

std::string shown(const wchar_t* text) {
    return text == nullptr ? "(null)" : platform::to_utf8(model_text(text));
}

void note(const std::string& line) {
    std::ofstream(notes_file(), std::ios::binary | std::ios::app) << line << "\r\n";
}

} // namespace stand_in
