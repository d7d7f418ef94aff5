#include "acceptance/pilot/program.h"

#include <tlhelp32.h>

namespace pilot {
namespace {

constexpr UINT terminated_code = 258;

} // namespace

Program::~Program() {
    if (process_ != nullptr)
        CloseHandle(process_);
}

std::string Program::start(std::wstring command_line, const std::wstring& folder) {
    STARTUPINFOW startup = {};
    startup.cb = sizeof startup;
    PROCESS_INFORMATION information = {};
    if (!CreateProcessW(nullptr, command_line.data(), nullptr, nullptr, FALSE, 0, nullptr, folder.c_str(),
                        &startup, &information))
        return "the program can't be started: error " + std::to_string(GetLastError());
    CloseHandle(information.hThread);
    process_ = information.hProcess;
    id_ = information.dwProcessId;
    return {};
}

bool Program::ended() const {
    return WaitForSingleObject(process_, 0) == WAIT_OBJECT_0;
}

DWORD Program::exit_code() const {
    DWORD code = 0;
    GetExitCodeProcess(process_, &code);
    return code;
}

std::vector<DWORD> Program::process_ids() const {
    std::vector<DWORD> ids = {id_};
    const HANDLE snapshot = CreateToolhelp32Snapshot(TH32CS_SNAPPROCESS, 0);
    if (snapshot == INVALID_HANDLE_VALUE)
        return ids;
    PROCESSENTRY32W entry = {};
    entry.dwSize = sizeof entry;
    for (BOOL more = Process32FirstW(snapshot, &entry); more; more = Process32NextW(snapshot, &entry))
        if (entry.th32ParentProcessID == id_)
            ids.push_back(entry.th32ProcessID);
    CloseHandle(snapshot);
    return ids;
}

void Program::terminate() const {
    for (const DWORD id : process_ids()) {
        const HANDLE process = OpenProcess(PROCESS_TERMINATE, FALSE, id);
        if (process == nullptr)
            continue;
        TerminateProcess(process, terminated_code);
        CloseHandle(process);
    }
}

} // namespace pilot
