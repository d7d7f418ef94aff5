#include "app/relaunch.h"

#include "state/app_state.h"
#include "support/text.h"

#include <failed_step.h>

#include <iterator>

namespace {

constexpr size_t path_capacity = 512;
constexpr size_t command_capacity = 1024;
constexpr DWORD longest_path = 511;    // what the module's path and the child's may take, terminator included
constexpr size_t command_limit = 1023; // for the quoted path and the blank behind it
constexpr size_t arguments_limit = 511; // for the whole line once arguments are added
constexpr DWORD wait_ms = 10000;

// Appends within a limit that counts the terminator; a limit that is used up copies nothing.
int append_within(WCHAR* out, size_t limit, const WCHAR* text) {
    return text_length(out) + 1 < limit ? append_text(out, limit, text) : text[0] == 0;
}

// The child's path, beside the running program. 0 when there is none, or none that is whole.
int build_child_path(WCHAR* child_path, const WCHAR* child_name) {
    const DWORD length = GetModuleFileNameW(nullptr, child_path, longest_path);
    if (length == 0 || length >= longest_path) {
        copy_text(child_path, path_capacity, child_name);
        return 0;
    }
    DWORD index = length - 1;
    while (index > 0 && child_path[index] != '\\')
        --index;
    if (index > 0)
        ++index;
    return copy_text(child_path + index, longest_path - index, child_name);
}

// The arguments of a raw command line: what stands behind the program's word, quoted or not, and the blanks.
const WCHAR* find_arguments(const WCHAR* command_line) {
    const WCHAR* place = command_line;
    const WCHAR end = *place == '"' ? '"' : ' ';
    if (*place == '"')
        ++place;
    while (*place != 0 && *place != end)
        ++place;
    if (*place == '"')
        ++place;
    while (*place == ' ')
        ++place;
    return place;
}

void build_child_command(WCHAR* command, const WCHAR* child_path) {
    command[0] = 0;
    append_within(command, command_limit, TEXT("\""));
    append_within(command, command_limit, child_path);
    append_within(command, command_limit, TEXT("\""));
    const WCHAR* const command_line = GetCommandLineW();
    const WCHAR* const arguments = find_arguments(command_line != nullptr ? command_line : TEXT(""));
    if (*arguments == 0)
        return;
    append_within(command, command_limit, TEXT(" "));
    append_within(command, arguments_limit, arguments);
}

int start_child(WCHAR* command, PROCESS_INFORMATION* child) {
    STARTUPINFOW startup = {};
    startup.cb = sizeof startup;
    startup.wShowWindow = SW_SHOWNORMAL;
    return CreateProcessW(nullptr, command, nullptr, nullptr, FALSE, 0, nullptr, nullptr, &startup, child) !=
           0;
}

// Waits for the child's end. A child that really ends with 259, the code of a running one, can't be told from
// a running one by its code: the wait then goes on.
DWORD wait_for_child(HANDLE process) {
    DWORD exit_code = 0;
    DWORD code = 0;
    while (GetExitCodeProcess(process, &code)) {
        if (code != STILL_ACTIVE)
            return 0;
        exit_code = code;
        WaitForSingleObject(process, wait_ms);
    }
    return exit_code;
}

} // namespace

int relaunch_64(const WCHAR* child_name) {
    WCHAR child_path[path_capacity] = {};
    WCHAR child_command[command_capacity] = {};
    const int startable = build_child_path(child_path, child_name);
    build_child_command(child_command, child_path);
    PROCESS_INFORMATION child = {};
    if (!startable || !start_child(child_command, &child)) {
        step_failed(TEXT("starting the program for 64 bits"));
        if (app.silent == 0)
            MessageBoxW(nullptr, child_command, TEXT("installer can't start"),
                        MB_TOPMOST | MB_ICONEXCLAMATION);
        return 1;
    }
    const DWORD exit_code = wait_for_child(child.hProcess);
    CloseHandle(child.hProcess);
    CloseHandle(child.hThread);
    return static_cast<int>(exit_code);
}
