#include "removal/service_control.h"

#include "support/install_log.h"
#include "support/memory.h"
#include "support/text.h"

#include <failed_step.h>

#include <algorithm>
#include <cstdio>
#include <iterator>

namespace {

constexpr DWORD time_limit = 30000;           // milliseconds
constexpr DWORD shortest_pending_wait = 1000; // milliseconds between two looks at a pending service
constexpr DWORD longest_pending_wait = 10000;

// Progress of a starting or stopping service, as its own checkpoints tell it.
struct Progress {
    DWORD since; // when the checkpoint rose last
    DWORD checkpoint;
};

void print_line(const char* format, DWORD number) {
    char line[96];
    format_ansi(line, std::size(line), format, number);
    std::fputs(line, stdout);
}

void print_failure(const char* format, DWORD number) {
    print_line(format, number);
    step_failed(TEXT("service control"));
}

int query_status(SC_HANDLE service, SERVICE_STATUS_PROCESS* status) {
    DWORD needed = 0;
    return QueryServiceStatusEx(service, SC_STATUS_PROCESS_INFO, reinterpret_cast<BYTE*>(status),
                                sizeof *status, &needed) != 0;
}

// The same, with a failure on standard output.
int query_or_print(SC_HANDLE service, SERVICE_STATUS_PROCESS* status) {
    if (query_status(service, status))
        return 1;
    print_failure("QueryServiceStatusEx failed (%d)\n", GetLastError());
    return 0;
}

// The differences of tick counts are unsigned, so that the counter's wrap does no harm.
int limit_exceeded(DWORD start) {
    return GetTickCount() - start > time_limit;
}

void pending_wait(const SERVICE_STATUS_PROCESS* status) {
    Sleep(std::clamp(status->dwWaitHint / 10, shortest_pending_wait, longest_pending_wait));
}

// The record's first part has the layout that the control fills.
int send_stop(SC_HANDLE service, SERVICE_STATUS_PROCESS* status) {
    return ControlService(service, SERVICE_CONTROL_STOP, reinterpret_cast<SERVICE_STATUS*>(status)) != 0;
}

// 1 when the service left the pending state for another than stopped; 0 when the operation is over.
int wait_out_stop_pending(SC_HANDLE service, SERVICE_STATUS_PROCESS* status, DWORD start) {
    while (status->dwCurrentState == SERVICE_STOP_PENDING) {
        log_line(TEXT("Service stop pending...\n"));
        pending_wait(status);
        if (!query_or_print(service, status))
            return 0;
        if (status->dwCurrentState == SERVICE_STOPPED) {
            print_line("Service stopped successfully.\n", 0);
            return 0;
        }
        if (limit_exceeded(start)) {
            print_failure("Service stop timed out.\n", 0);
            return 0;
        }
    }
    return 1;
}

void wait_until_stopped(SC_HANDLE service, SERVICE_STATUS_PROCESS* status, DWORD start) {
    while (status->dwCurrentState != SERVICE_STOPPED) {
        Sleep(status->dwWaitHint);
        if (!query_or_print(service, status))
            return;
        if (status->dwCurrentState == SERVICE_STOPPED)
            break;
        if (limit_exceeded(start)) {
            print_failure("Wait timed out\n", 0);
            return;
        }
    }
    print_line("Service stopped successfully\n", 0);
}

void stop_service(SC_HANDLE service, SC_HANDLE manager, DWORD start) {
    SERVICE_STATUS_PROCESS status = {};
    if (!query_status(service, &status)) {
        log_failure(TEXT("QueryServiceStatusEx failed (%d)\n"), GetLastError());
        return;
    }
    if (status.dwCurrentState == SERVICE_STOPPED) {
        log_line(TEXT("Service is already stopped.\n"));
        return;
    }
    if (!wait_out_stop_pending(service, &status, start))
        return;
    StopDependentServices(service, manager);
    if (!send_stop(service, &status)) {
        print_failure("ControlService failed (%d)\n", GetLastError());
        return;
    }
    wait_until_stopped(service, &status, start);
}

void stop_in_manager(SC_HANDLE manager, const WCHAR* name, DWORD start) {
    SC_HANDLE service =
        OpenServiceW(manager, name, SERVICE_STOP | SERVICE_QUERY_STATUS | SERVICE_ENUMERATE_DEPENDENTS);
    if (service == nullptr) {
        log_failure(TEXT("OpenService failed (%d)\n"), GetLastError());
        return;
    }
    stop_service(service, manager, start);
    CloseServiceHandle(service);
}

int stop_dependent(SC_HANDLE service, DWORD start) {
    SERVICE_STATUS_PROCESS status = {};
    if (!send_stop(service, &status))
        return 0;
    while (status.dwCurrentState != SERVICE_STOPPED) {
        Sleep(status.dwWaitHint);
        if (!query_status(service, &status))
            return 0;
        if (status.dwCurrentState == SERVICE_STOPPED)
            break;
        if (limit_exceeded(start))
            return 0;
    }
    return 1;
}

// `list` has room for `size` bytes. The first failure ends the work.
int stop_listed(SC_HANDLE service, SC_HANDLE manager, ENUM_SERVICE_STATUSW* list, DWORD size, DWORD start) {
    DWORD needed = 0;
    DWORD count = 0;
    if (!EnumDependentServicesW(service, SERVICE_ACTIVE, list, size, &needed, &count))
        return 0;
    for (DWORD i = 0; i < count && i < size / sizeof *list; ++i) {
        log_line(TEXT("stop service...\n"));
        SC_HANDLE dependent =
            OpenServiceW(manager, list[i].lpServiceName, SERVICE_STOP | SERVICE_QUERY_STATUS);
        if (dependent == nullptr)
            return 0;
        const int stopped = stop_dependent(dependent, start);
        CloseServiceHandle(dependent);
        if (!stopped)
            return 0;
    }
    return 1;
}

Progress begin_progress(const SERVICE_STATUS_PROCESS* status) {
    return {GetTickCount(), status->dwCheckPoint};
}

// 0 when the checkpoint hasn't risen for longer than the wait hint that was read last.
int still_progressing(Progress* progress, const SERVICE_STATUS_PROCESS* status) {
    if (status->dwCheckPoint > progress->checkpoint) {
        *progress = begin_progress(status);
        return 1;
    }
    return GetTickCount() - progress->since <= status->dwWaitHint;
}

int wait_for_stop(SC_HANDLE service, SERVICE_STATUS_PROCESS* status) {
    Progress progress = begin_progress(status);
    while (status->dwCurrentState == SERVICE_STOP_PENDING) {
        pending_wait(status);
        if (!query_or_print(service, status))
            return 0;
        if (status->dwCurrentState == SERVICE_STOP_PENDING && !still_progressing(&progress, status)) {
            print_failure("Timeout waiting for service to stop\n", 0);
            return 0;
        }
    }
    return 1;
}

void wait_for_start(SC_HANDLE service, SERVICE_STATUS_PROCESS* status) {
    Progress progress = begin_progress(status);
    while (status->dwCurrentState == SERVICE_START_PENDING) {
        pending_wait(status);
        if (!query_or_print(service, status) || !still_progressing(&progress, status))
            break;
    }
}

void print_start_outcome(const SERVICE_STATUS_PROCESS* status) {
    if (status->dwCurrentState == SERVICE_RUNNING) {
        print_line("Service started successfully.\n", 0);
        return;
    }
    print_failure("Service not started. \n", 0);
    print_line("  Current State: %d\n", status->dwCurrentState);
    print_line("  Exit Code: %d\n", status->dwWin32ExitCode);
    print_line("  Check Point: %d\n", status->dwCheckPoint);
    print_line("  Wait Hint: %d\n", status->dwWaitHint);
}

void start_service(SC_HANDLE service) {
    SERVICE_STATUS_PROCESS status = {};
    if (!query_or_print(service, &status))
        return;
    if (status.dwCurrentState != SERVICE_STOPPED && status.dwCurrentState != SERVICE_STOP_PENDING) {
        print_line("Cannot start the service because it is already running\n", 0);
        return;
    }
    if (!wait_for_stop(service, &status))
        return;
    if (!StartServiceW(service, 0, nullptr)) {
        print_failure("StartService failed (%d)\n", GetLastError());
        return;
    }
    print_line("Service start pending...\n", 0);
    if (!query_or_print(service, &status))
        return;
    wait_for_start(service, &status);
    print_start_outcome(&status);
}

void start_in_manager(SC_HANDLE manager, const WCHAR* name) {
    SC_HANDLE service = OpenServiceW(manager, name, SERVICE_ALL_ACCESS);
    if (service == nullptr) {
        print_failure("OpenService failed (%d)\n", GetLastError());
        return;
    }
    start_service(service);
    CloseServiceHandle(service);
}

} // namespace

void DoStopSvc(const WCHAR* name) {
    const DWORD start = GetTickCount();
    log_line(TEXT("DoStopSvc [%s]\r\n"), name);
    SC_HANDLE manager = OpenSCManagerW(nullptr, nullptr, SC_MANAGER_ALL_ACCESS);
    if (manager == nullptr) {
        log_failure(TEXT("OpenSCManager failed (%d)\n"), GetLastError());
        return;
    }
    stop_in_manager(manager, name, start);
    CloseServiceHandle(manager);
}

void DoStartSvc(const WCHAR* name) {
    log_line(TEXT("DoStartSvc [%s]\r\n"), name);
    SC_HANDLE manager = OpenSCManagerW(nullptr, nullptr, SC_MANAGER_ALL_ACCESS);
    if (manager == nullptr) {
        print_failure("OpenSCManager failed (%d)\n", GetLastError());
        return;
    }
    start_in_manager(manager, name);
    CloseServiceHandle(manager);
}

int StopDependentServices(SC_HANDLE service, SC_HANDLE manager) {
    const DWORD start = GetTickCount();
    log_line(TEXT("StopDependentServices\n"));
    DWORD size = 0;
    DWORD count = 0;
    if (EnumDependentServicesW(service, SERVICE_ACTIVE, nullptr, 0, &size, &count)) {
        log_line(TEXT("No dep services\n"));
        return 1;
    }
    if (GetLastError() != ERROR_MORE_DATA)
        return 0;
    auto* list = static_cast<ENUM_SERVICE_STATUSW*>(allocate_bytes(size));
    if (list == nullptr)
        return 0;
    const int stopped = stop_listed(service, manager, list, size, start);
    release_bytes(list);
    return stopped;
}
