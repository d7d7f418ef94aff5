// What only the system's own libraries ask for: honest failures, each with a note.
#include "spooler_calls/spooler_call.h"

namespace {

BOOL refused(const char* name) {
    return platform::SpoolerCall(name).refuse("isn't modelled");
}

} // namespace

extern "C" {

BOOL WINAPI GetDefaultPrinterA(LPSTR, LPDWORD) {
    return refused("GetDefaultPrinterA");
}

int WINAPI DeviceCapabilitiesA(LPCSTR, LPCSTR, WORD, LPSTR, const DEVMODEA*) {
    return refused("DeviceCapabilitiesA") ? 0 : -1;
}

int WINAPI DeviceCapabilitiesW(LPCWSTR, LPCWSTR, WORD, LPWSTR, const DEVMODEW*) {
    return refused("DeviceCapabilitiesW") ? 0 : -1;
}

LONG WINAPI DocumentPropertiesA(HWND, HANDLE, LPSTR, PDEVMODEA, PDEVMODEA, DWORD) {
    return refused("DocumentPropertiesA") ? 0 : -1;
}

LONG WINAPI DocumentPropertiesW(HWND, HANDLE, LPWSTR, PDEVMODEW, PDEVMODEW, DWORD) {
    return refused("DocumentPropertiesW") ? 0 : -1;
}

BOOL WINAPI EnumPrintersA(DWORD, LPSTR, DWORD, LPBYTE, DWORD, LPDWORD, LPDWORD) {
    return refused("EnumPrintersA");
}

BOOL WINAPI GetPrinterA(HANDLE, DWORD, LPBYTE, DWORD, LPDWORD) {
    return refused("GetPrinterA");
}

BOOL WINAPI GetPrinterW(HANDLE, DWORD, LPBYTE, DWORD, LPDWORD) {
    return refused("GetPrinterW");
}

BOOL WINAPI GetPrinterDriverA(HANDLE, LPSTR, DWORD, LPBYTE, DWORD, LPDWORD) {
    return refused("GetPrinterDriverA");
}

BOOL WINAPI GetPrinterDriverW(HANDLE, LPWSTR, DWORD, LPBYTE, DWORD, LPDWORD) {
    return refused("GetPrinterDriverW");
}

BOOL WINAPI OpenPrinterA(LPSTR, LPHANDLE, LPPRINTER_DEFAULTSA) {
    return refused("OpenPrinterA");
}
}
