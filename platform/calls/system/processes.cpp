#include "calls/system/processes.h"

#include "calls/files/paths.h"
#include "calls/run/session.h"
#include "machine/text.h"

#include <program_bits.h>
#include <windows.h>

#include <algorithm>
#include <memory>
#include <mutex>

namespace platform {
namespace {

struct ProcessThreadObject final : KernelObject {
    const char* kind() const override { return "process thread"; }
};

struct StartedProcesses {
    std::mutex mutex;
    std::vector<std::u16string> commands;
};

HANDLE current_process() {
    return reinterpret_cast<HANDLE>(static_cast<LONG_PTR>(-1));
}

// Milliseconds until the process ends; 0 when it has ended.
std::uint32_t rest_of(const ProcessObject& process) {
    const std::uint32_t passed = session().clock.ticks() - process.started;
    return passed >= process.runs_for ? 0 : process.runs_for - passed;
}

// The program's path in the command line.
struct PathPart {
    std::size_t start = 0;
    std::size_t end = 0;
};

// A program to start, or the error when there is none.
struct FoundProgram {
    const ChildProgram* program = nullptr;
    DWORD error = ERROR_FILE_NOT_FOUND;
};

FoundProgram find_program(std::u16string path) {
    const std::size_t name_start = path.find_last_of(u"\\/:") + 1;
    if (path.find(u'.', name_start) == std::u16string::npos)
        path += u".exe";
    const RealPath file = real_path(path.c_str());
    const std::u16string name = path.substr(name_start);
    const bool lent = session().options.lend_sibling && same_name(name, sibling_name);
    if (!lent && (file.error != 0 || !file.exists || file.folder))
        return {};
    for (const ChildProgram& program : session().machine.child_programs) {
        if (same_name(program.name, name))
            return {&program, 0};
    }
    return {nullptr, ERROR_BAD_EXE_FORMAT}; // to the machine any other file is no program
}

// The platform ends the path inside the caller's buffer while it looks for the file, and puts the character
// back; a command line in constant memory therefore crashes.
FoundProgram find_program_at(WCHAR* command_line, const PathPart& part) {
    const WCHAR kept = command_line[part.end];
    command_line[part.end] = 0;
    const FoundProgram found = find_program(command_line + part.start);
    command_line[part.end] = kept;
    return found;
}

// Without quotes the path ends at a blank, and the shortest one that names a file is taken.
FoundProgram find_program_of(WCHAR* command_line) {
    const std::u16string_view text(command_line);
    if (text.starts_with(u'"')) {
        const std::size_t quote = text.find(u'"', 1);
        return find_program_at(command_line, {1, quote == std::u16string_view::npos ? text.size() : quote});
    }
    for (std::size_t end = text.find(u' ');; end = text.find(u' ', end + 1)) {
        const bool whole = end == std::u16string_view::npos;
        const FoundProgram found = find_program_at(command_line, {0, whole ? text.size() : end});
        if (found.error != ERROR_FILE_NOT_FOUND || whole)
            return found;
    }
}

void start_program(const ChildProgram& program, const WCHAR* command_line, PROCESS_INFORMATION& information) {
    const auto process = std::make_shared<ProcessObject>();
    process->started = session().clock.ticks();
    process->runs_for = program.runs_for_ms;
    process->exit_code = program.exit_code;
    if (session().options.run_sibling && same_name(program.name, sibling_name)) {
        const ChildEnd end = session().options.run_sibling(command_line);
        process->runs_for = end.milliseconds;
        process->exit_code = end.exit_code;
    }
    information = {};
    information.hProcess = session().handles.open(process);
    information.hThread = session().handles.open(std::make_shared<ProcessThreadObject>());
    StartedProcesses& started = session().area<StartedProcesses>();
    const std::lock_guard lock(started.mutex);
    started.commands.emplace_back(command_line);
    information.dwProcessId = static_cast<DWORD>(0x2000 + 8 * started.commands.size());
    information.dwThreadId = information.dwProcessId + 4;
}

} // namespace

std::optional<std::uint32_t> ProcessObject::wait(std::uint32_t milliseconds) {
    const std::uint32_t rest = rest_of(*this);
    session().clock.pass(std::min(rest, milliseconds));
    return rest > milliseconds ? WAIT_TIMEOUT : WAIT_OBJECT_0;
}

std::vector<std::u16string> started_commands() {
    StartedProcesses& started = session().area<StartedProcesses>();
    const std::lock_guard lock(started.mutex);
    return started.commands;
}

} // namespace platform

using namespace platform;

int platform_program_bits() {
    return static_cast<int>(program_bits());
}

HANDLE GetCurrentProcess() {
    const Call call("GetCurrentProcess");
    return current_process();
}

BOOL CreateProcessW(LPCWSTR application, LPWSTR command_line, SECURITY_ATTRIBUTES* process_security,
                    SECURITY_ATTRIBUTES* thread_security, BOOL inherit, DWORD flags, LPVOID environment,
                    LPCWSTR folder, LPSTARTUPINFOW startup, LPPROCESS_INFORMATION information) {
    Call call("CreateProcessW", shown(command_line));
    if (application != nullptr || process_security != nullptr || thread_security != nullptr ||
        inherit != FALSE || flags != 0 || environment != nullptr || folder != nullptr)
        call.refuse("only a command line and the start-up record are modelled");
    if (call.fails(ERROR_FILE_NOT_FOUND))
        return FALSE;
    if (command_line == nullptr || startup == nullptr || information == nullptr ||
        startup->cb != sizeof *startup) {
        set_last_error(ERROR_INVALID_PARAMETER);
        return FALSE;
    }
    const FoundProgram found = find_program_of(command_line);
    if (found.program == nullptr) {
        set_last_error(found.error);
        return FALSE;
    }
    start_program(*found.program, command_line, *information);
    return TRUE;
}

BOOL GetExitCodeProcess(HANDLE handle, LPDWORD exit_code) {
    const bool self = handle == current_process();
    Call call("GetExitCodeProcess", self ? "this process" : "child process");
    if (call.fails(ERROR_INVALID_HANDLE))
        return FALSE;
    if (self) {
        *exit_code = STILL_ACTIVE;
        return TRUE;
    }
    const auto process = session().handles.find<ProcessObject>(handle);
    if (!process) {
        set_last_error(ERROR_INVALID_HANDLE);
        return FALSE;
    }
    *exit_code = rest_of(*process) > 0 ? STILL_ACTIVE : process->exit_code;
    return TRUE;
}
