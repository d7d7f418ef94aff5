// What the platform has and MinGW-w64's package doesn't declare. The import libraries do know the call, so
// that it links like any other. Layouts and values are checked in layout_checks.cpp.
#pragma once

#include <windows.h>
#include <winspool.h>

// Driver packages (winspool.h of the platform's own kit).
constexpr DWORD UPDP_SILENT_UPLOAD = 0x00000001;
constexpr DWORD UPDP_UPLOAD_ALWAYS = 0x00000002;
constexpr DWORD UPDP_CHECK_DRIVERSTORE = 0x00000004;

// Installs the named driver from a package that the driver store holds. The result is 0 (S_OK) or an error.
extern "C" HRESULT WINAPI InstallPrinterDriverFromPackageW(LPCWSTR server, LPCWSTR inf_path,
                                                           LPCWSTR driver_name, LPCWSTR environment,
                                                           DWORD flags);

// The Standard TCP/IP Port monitor's blocks (tcpxcv.h of the platform's driver kit). Lengths count the
// terminator.
constexpr DWORD MAX_PORTNAME_LEN = 64;
constexpr DWORD MAX_NETWORKNAME_LEN = 49;
constexpr DWORD MAX_SNMP_COMMUNITY_STR_LEN = 33;
constexpr DWORD MAX_QUEUENAME_LEN = 33;
constexpr DWORD MAX_IPADDR_STR_LEN = 16;
constexpr DWORD PROTOCOL_RAWTCP_TYPE = 1;
constexpr DWORD PROTOCOL_LPR_TYPE = 2;

// Input of "AddPort".
struct PORT_DATA_1 {
    WCHAR sztPortName[MAX_PORTNAME_LEN];
    DWORD dwVersion;
    DWORD dwProtocol;
    DWORD cbSize;
    DWORD dwReserved;
    WCHAR sztHostAddress[MAX_NETWORKNAME_LEN];
    WCHAR sztSNMPCommunity[MAX_SNMP_COMMUNITY_STR_LEN];
    DWORD dwDoubleSpool;
    WCHAR sztQueue[MAX_QUEUENAME_LEN];
    WCHAR sztIPAddress[MAX_IPADDR_STR_LEN];
    BYTE Reserved[540];
    DWORD dwPortNumber;
    DWORD dwSNMPEnabled;
    DWORD dwSNMPDevIndex;
};

// Input of "DeletePort".
struct DELETE_PORT_DATA_1 {
    WCHAR psztPortName[MAX_PORTNAME_LEN];
    BYTE Reserved[98];
    DWORD dwVersion;
    DWORD dwReserved;
};
