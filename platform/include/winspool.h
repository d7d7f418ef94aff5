// The print spooler's interface, as far as this program uses it.
#pragma once

#include "windef.h"

struct DEVMODEW;
using LPDEVMODEW = DEVMODEW*;
using PSECURITY_DESCRIPTOR = void*;

#define SERVER_ACCESS_ADMINISTER 0x00000001
#define PRINTER_ACCESS_ADMINISTER 0x00000004
#define PRINTER_ACCESS_USE 0x00000008
#define PRINTER_ALL_ACCESS 0x000F000C

#define PRINTER_ENUM_LOCAL 0x00000002

#define PRINTER_ATTRIBUTE_LOCAL 0x00000040
#define PRINTER_ATTRIBUTE_RAW_ONLY 0x00001000

struct PRINTER_DEFAULTSW {
    LPWSTR pDatatype;
    LPDEVMODEW pDevMode;
    ACCESS_MASK DesiredAccess;
};
using LPPRINTER_DEFAULTSW = PRINTER_DEFAULTSW*;

struct PRINTER_INFO_1W {
    DWORD Flags;
    LPWSTR pDescription;
    LPWSTR pName;
    LPWSTR pComment;
};

struct PRINTER_INFO_2W {
    LPWSTR pServerName;
    LPWSTR pPrinterName;
    LPWSTR pShareName;
    LPWSTR pPortName;
    LPWSTR pDriverName;
    LPWSTR pComment;
    LPWSTR pLocation;
    LPDEVMODEW pDevMode;
    LPWSTR pSepFile;
    LPWSTR pPrintProcessor;
    LPWSTR pDatatype;
    LPWSTR pParameters;
    PSECURITY_DESCRIPTOR pSecurityDescriptor;
    DWORD Attributes;
    DWORD Priority;
    DWORD DefaultPriority;
    DWORD StartTime;
    DWORD UntilTime;
    DWORD Status;
    DWORD cJobs;
    DWORD AveragePPM;
};

struct DRIVER_INFO_1W {
    LPWSTR pName;
};

struct DRIVER_INFO_2W {
    DWORD cVersion;
    LPWSTR pName;
    LPWSTR pEnvironment;
    LPWSTR pDriverPath;
    LPWSTR pDataFile;
    LPWSTR pConfigFile;
};

struct DRIVER_INFO_6W {
    DWORD cVersion;
    LPWSTR pName;
    LPWSTR pEnvironment;
    LPWSTR pDriverPath;
    LPWSTR pDataFile;
    LPWSTR pConfigFile;
    LPWSTR pHelpFile;
    LPWSTR pDependentFiles;
    LPWSTR pMonitorName;
    LPWSTR pDefaultDataType;
    LPWSTR pszzPreviousNames;
    FILETIME ftDriverDate;
    DWORDLONG dwlDriverVersion;
    LPWSTR pszMfgName;
    LPWSTR pszOEMUrl;
    LPWSTR pszHardwareID;
    LPWSTR pszProvider;
};

struct PORT_INFO_1W {
    LPWSTR pName;
};

struct PORT_INFO_2W {
    LPWSTR pPortName;
    LPWSTR pMonitorName;
    LPWSTR pDescription;
    DWORD fPortType;
    DWORD Reserved;
};

struct MONITOR_INFO_1W {
    LPWSTR pName;
};

struct MONITOR_INFO_2W {
    LPWSTR pName;
    LPWSTR pEnvironment;
    LPWSTR pDLLName;
};

struct PRINTPROCESSOR_INFO_1W {
    LPWSTR pName;
};

// Enumerations: the records stand at the buffer's begin, their texts behind them. A call with too small a
// buffer stores the size in bytes and a count of 0, and fails with ERROR_INSUFFICIENT_BUFFER.
BOOL WINAPI EnumPrintersW(DWORD flags, LPWSTR name, DWORD level, LPBYTE records, DWORD size, LPDWORD needed,
                          LPDWORD returned);
BOOL WINAPI EnumPrinterDriversW(LPWSTR server, LPWSTR environment, DWORD level, LPBYTE records, DWORD size,
                                LPDWORD needed, LPDWORD returned);
BOOL WINAPI EnumPortsW(LPWSTR server, DWORD level, LPBYTE records, DWORD size, LPDWORD needed,
                       LPDWORD returned);
BOOL WINAPI EnumMonitorsW(LPWSTR server, DWORD level, LPBYTE records, DWORD size, LPDWORD needed,
                          LPDWORD returned);
BOOL WINAPI EnumPrintProcessorsW(LPWSTR server, LPWSTR environment, DWORD level, LPBYTE records, DWORD size,
                                 LPDWORD needed, LPDWORD returned);

BOOL WINAPI OpenPrinterW(LPWSTR name, LPHANDLE printer, LPPRINTER_DEFAULTSW defaults);
BOOL WINAPI ClosePrinter(HANDLE printer);
HANDLE WINAPI AddPrinterW(LPWSTR server, DWORD level, LPBYTE printer);
BOOL WINAPI DeletePrinter(HANDLE printer);
BOOL WINAPI SetDefaultPrinterW(LPCWSTR name);
BOOL WINAPI GetDefaultPrinterW(LPWSTR name, LPDWORD characters);

// These three give the error code itself.
DWORD WINAPI EnumPrinterKeyW(HANDLE printer, LPCWSTR key, LPWSTR subkeys, DWORD size, LPDWORD needed);
DWORD WINAPI SetPrinterDataExA(HANDLE printer, LPCSTR key, LPCSTR value, DWORD type, LPBYTE data, DWORD size);
DWORD WINAPI GetPrinterDataExW(HANDLE printer, LPCWSTR key, LPCWSTR value, LPDWORD type, LPBYTE data,
                               DWORD size, LPDWORD needed);

BOOL WINAPI AddMonitorW(LPWSTR server, DWORD level, LPBYTE monitor);
BOOL WINAPI XcvDataW(HANDLE monitor, PCWSTR command, PBYTE input, DWORD input_size, PBYTE output,
                     DWORD output_size, PDWORD needed, PDWORD status);

HRESULT WINAPI UploadPrinterDriverPackageW(LPCWSTR server, LPCWSTR inf_path, LPCWSTR environment, DWORD flags,
                                           HWND window, LPWSTR store_path, PULONG characters);
HRESULT WINAPI DeletePrinterDriverPackageW(LPCWSTR server, LPCWSTR inf_path, LPCWSTR environment);
