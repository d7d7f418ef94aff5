// The service control manager's interface, as far as this program uses it.
#pragma once

#include "windef.h"

#define SERVICE_ACTIVE 0x00000001
#define SERVICE_INACTIVE 0x00000002
#define SERVICE_STATE_ALL 0x00000003

#define SERVICE_CONTROL_STOP 0x00000001

#define SERVICE_STOPPED 0x00000001
#define SERVICE_START_PENDING 0x00000002
#define SERVICE_STOP_PENDING 0x00000003
#define SERVICE_RUNNING 0x00000004

#define SERVICE_ACCEPT_STOP 0x00000001
#define SERVICE_WIN32_OWN_PROCESS 0x00000010

#define SC_MANAGER_CONNECT 0x0001
#define SC_MANAGER_ALL_ACCESS 0x000F003F

#define SERVICE_QUERY_STATUS 0x0004
#define SERVICE_ENUMERATE_DEPENDENTS 0x0008
#define SERVICE_START 0x0010
#define SERVICE_STOP 0x0020
#define SERVICE_ALL_ACCESS 0x000F01FF

struct SERVICE_STATUS {
    DWORD dwServiceType;
    DWORD dwCurrentState;
    DWORD dwControlsAccepted;
    DWORD dwWin32ExitCode;
    DWORD dwServiceSpecificExitCode;
    DWORD dwCheckPoint;
    DWORD dwWaitHint;
};
using LPSERVICE_STATUS = SERVICE_STATUS*;

struct SERVICE_STATUS_PROCESS {
    DWORD dwServiceType;
    DWORD dwCurrentState;
    DWORD dwControlsAccepted;
    DWORD dwWin32ExitCode;
    DWORD dwServiceSpecificExitCode;
    DWORD dwCheckPoint;
    DWORD dwWaitHint;
    DWORD dwProcessId;
    DWORD dwServiceFlags;
};

struct ENUM_SERVICE_STATUSW {
    LPWSTR lpServiceName;
    LPWSTR lpDisplayName;
    SERVICE_STATUS ServiceStatus;
};
using LPENUM_SERVICE_STATUSW = ENUM_SERVICE_STATUSW*;

enum SC_STATUS_TYPE { SC_STATUS_PROCESS_INFO = 0 };

SC_HANDLE WINAPI OpenSCManagerW(LPCWSTR computer, LPCWSTR database, DWORD access);
SC_HANDLE WINAPI OpenServiceW(SC_HANDLE manager, LPCWSTR name, DWORD access);
BOOL WINAPI CloseServiceHandle(SC_HANDLE handle);
BOOL WINAPI QueryServiceStatusEx(SC_HANDLE service, SC_STATUS_TYPE level, LPBYTE record, DWORD size,
                                 LPDWORD needed);
BOOL WINAPI ControlService(SC_HANDLE service, DWORD control, LPSERVICE_STATUS status);
// A buffer that is too small fails with ERROR_MORE_DATA; no dependents at all is a success with size 0.
BOOL WINAPI EnumDependentServicesW(SC_HANDLE service, DWORD state, LPENUM_SERVICE_STATUSW records, DWORD size,
                                   LPDWORD needed, LPDWORD returned);
BOOL WINAPI StartServiceW(SC_HANDLE service, DWORD count, LPCWSTR* arguments);
