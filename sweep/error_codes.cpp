// Sources: the page of each call in the platform's reference where it names codes ("page"), else the list of
// system error codes by what the call does. Of the sockets, the configuration manager, COM and the shell's
// file operations each has a list of its own.
#include "sweep/error_codes.h"

#include <algorithm>
#include <iterator>

namespace sweep {
namespace {

struct Row {
    std::string_view call;
    ErrorCodes codes;
};

// Not found 2 (path 3), access denied 5, invalid handle 6, no memory 8, bad data 13, read fault 30, general
// failure 31, in use 32, not supported 50, invalid parameter 87, disk full 112, buffer too small 122.
constexpr ErrorCodes usual = {5, 8, 87};
// Invalid window handle 1400, besides the usual ones.
constexpr ErrorCodes of_windows = {1400, 5, 8};
// RPC server unavailable 1722: the spooler is asked by remote calls, whose errors are its own.
constexpr ErrorCodes of_spooler = {1722, 5, 8};
// E_OUTOFMEMORY, E_INVALIDARG, E_FAIL: what the pages of IShellLinkW's methods leave open.
constexpr ErrorCodes of_com = {0x8007000E, 0x80070057, 0x80004005};
// CR_INVALID_DEVNODE, CR_NO_SUCH_DEVNODE, CR_FAILURE.
constexpr ErrorCodes of_devices = {0x05, 0x0D, 0x13};

// Sorted by name.
constexpr Row rows[] = {
    {"AddMonitorW", {5, 3006, 126}},                            // page: already installed; its DLL
    {"AddPrinterW", {5, 1796, 1797}},                           // unknown port, unknown driver
    {"CM_Get_Device_IDW", of_devices},                          // page
    {"CM_Get_Device_ID_Size", of_devices},                      // page
    {"CM_Get_Parent", of_devices},                              // page
    {"CoCreateInstance", {0x80040154, 0x80040110, 0x80004002}}, // page: class, aggregation, interface
    {"CoInitialize", {0x8007000E, 0x80010106, 0x8000FFFF}},     // page: memory, changed mode, unexpected
    {"ControlService", {1051, 1053, 1061}},  // page: dependents run, time-out, can't accept
    {"CopyFileW", {5, 32, 112}},             // page: 5
    {"CreateDialogParamW", {8, 1407, 1814}}, // no such class, no such resource
    {"CreateDirectoryW", {5, 3, 183}},       // page: path, exists
    {"CreateFileW", {5, 2, 32}},             // page: 2, 32
    {"CreateMutexW", {5, 8, 6}},             // page: 5, 6
    {"CreateProcessW", {2, 5, 193}},         // no program
    {"CreateWindowExW", {8, 1407, 1158}},    // no such class, no more handles
    {"DeleteFileW", {2, 5, 32}},             // page: 2, 5
    {"DeletePrinter", of_spooler},
    {"DeletePrinterDriverPackageW", {0x80070BC7, 5, 2}}, // page: package in use
    {"EnumDependentServicesW", {5, 6, 87}},              // page
    {"EnumMonitorsW", of_spooler},
    {"EnumPortsW", of_spooler},
    {"EnumPrintProcessorsW", of_spooler},
    {"EnumPrinterDriversW", of_spooler},
    {"EnumPrintersW", of_spooler},
    {"ExpandEnvironmentStringsW", usual},
    {"FindFirstFileW", {2, 3, 5}}, // page: 2
    {"FindNextFileW", {5, 30, 31}},
    {"FlushFileBuffers", {31, 112, 6}}, // page: 6
    {"FormatMessageW", {317, 1815, 8}}, // page: no such language; no such message
    {"GetAdaptersInfo", {13, 50, 232}}, // page: bad data, not supported, none
    {"GetCurrentDirectoryW", {5, 3, 8}},
    {"GetDlgItem", {1421, 1400, 8}},           // no such control
    {"GetEnvironmentVariableW", {203, 8, 87}}, // page: no such variable
    {"GetExitCodeProcess", {5, 6, 87}},
    {"GetFileAttributesW", {2, 3, 5}},
    {"GetFileInformationByHandle", {6, 31, 50}}, // page: not supported
    {"GetFileSize", {6, 31, 87}},
    {"GetFileType", {6, 31, 87}},
    {"GetFinalPathNameByHandleW", {3, 8, 87}}, // page
    {"GetLocaleInfoW", {122, 1004, 87}},       // page: buffer, flags, parameter
    {"GetMessageW", {1400, 87, 8}},            // page: window handle
    {"GetModuleFileNameW", {122, 126, 8}},     // page: 122
    {"GetModuleHandleW", {126, 87, 8}},
    {"GetProcAddress", {127, 126, 182}},
    {"GetVersionExW", {122, 50, 87}},
    {"HeapAlloc", {8, 14, 1455}},                                 // memory, storage, commitment limit
    {"IPersistFile::Load", {0x80070005, 0x80070002, 0x80004005}}, // page: denied, not found, other
    {"IPersistFile::Save", {0x80070005, 0x80070070, 0x80004005}}, // denied, disk full, other
    {"IShellLinkW::GetDescription", of_com},
    {"IShellLinkW::GetPath", of_com},
    {"IShellLinkW::GetWorkingDirectory", of_com},
    {"IShellLinkW::SetDescription", of_com},
    {"IShellLinkW::SetPath", of_com},
    {"IShellLinkW::SetWorkingDirectory", of_com},
    {"IUnknown::QueryInterface", {0x80004002, 0x80004003, 0x8007000E}}, // page: interface, pointer
    {"InstallPrinterDriverFromPackageW", {5, 2, 0x80070705}},           // unknown driver
    {"IsDBCSLeadByteEx", {87, 1113, 8}},
    {"IsWow64Process", {5, 6, 87}},
    {"LoadLibraryW", {126, 193, 1114}},        // not found, no library, its start failed
    {"LoadStringW", {1812, 1814, 1815}},       // no resources, no such name, no such language
    {"MessageBoxW", {8, 1158, 1400}},          // page: memory
    {"MultiByteToWideChar", {1113, 87, 122}},  // page
    {"OpenPrinterW", {1801, 5, 1722}},         // page: no such printer
    {"OpenSCManagerW", {5, 1065, 1722}},       // page: 5, no database
    {"OpenServiceW", {5, 6, 1060}},            // page: no such service
    {"PostMessageW", {1816, 5, 1400}},         // page: quota, 5
    {"QueryServiceStatusEx", {5, 6, 1115}},    // page: shutdown
    {"ReadFile", {23, 31, 8}},                 // page: 8; checksum
    {"RegOpenKeyExW", {2, 5, 1018}},           // deleted key
    {"RegQueryValueExW", {2, 5, 234}},         // page: 2, more data
    {"RemoveDirectoryW", {5, 32, 145}},        // not empty
    {"SHFileOperationW", {0x78, 0x7C, 0x402}}, // page: source denied, path, unknown
    {"SHGetKnownFolderPath", {0x80004005, 0x80070057, 0x80070002}}, // page: fail, argument
    {"SendDlgItemMessageW", {1421, 1400, 5}},
    {"SetDefaultDllDirectories", {87, 5, 50}},
    {"SetDefaultPrinterW", {1801, 2, 1722}},
    {"SetFileAttributesW", {2, 5, 87}},
    {"SetFilePointer", {131, 6, 87}}, // page: negative
    {"SetPrinterDataExA", {5, 6, 1722}},
    {"SetupDiEnumDeviceInterfaces", {6, 13, 87}},
    {"SetupDiEnumDriverInfoW", {6, 13, 87}},
    {"SetupDiGetClassDevsW", {5, 13, 87}},
    {"SetupDiGetDeviceInterfaceDetailW", {13, 1784, 87}},         // page: parameter; buffer
    {"StartServiceW", {1053, 1058, 1069}},                        // page: time-out, disabled, logon
    {"UploadPrinterDriverPackageW", {5, 0x800B0100, 0x80070002}}, // no signature, not found
    {"WSACleanup", {10093, 10050, 10036}},                        // page
    {"WSAStartup", {10091, 10092, 10067}},                        // page
    {"WaitForSingleObject", {6, 5, 87}},
    {"WideCharToMultiByte", {1113, 87, 122}}, // page
    {"WriteFile", {112, 31, 1816}},           // page: quota
    {"XcvDataW", {5, 50, 1722}},
    {"_beginthread", {8, 12, 11}}, // page: by errno
    {"_beginthreadex", {8, 12, 11}},
    {"bind", {10048, 10049, 10055}},        // page
    {"closesocket", {10036, 10038, 10050}}, // page
    {"getsockname", {10014, 10022, 10050}}, // page
    {"recvfrom", {10060, 10054, 10040}},    // page: silence, reset, too long
    {"sendto", {10051, 10065, 10055}},      // page: no network, no host, no buffer
    {"setsockopt", {10042, 10022, 10050}},  // page
    {"socket", {10024, 10050, 10055}},      // page
};

// Calls of one kind that have no row: windows and their controls.
bool is_of_windows(std::string_view call) {
    for (const std::string_view word : {"Window", "Dlg", "Dialog", "Message", "Rect", "DC", "Extent"})
        if (call.find(word) != call.npos)
            return true;
    return false;
}

} // namespace

ErrorCodes error_codes(std::string_view call) {
    const Row* const row =
        std::find_if(std::begin(rows), std::end(rows), [call](const Row& one) { return one.call == call; });
    if (row != std::end(rows))
        return row->codes;
    return is_of_windows(call) ? of_windows : usual;
}

} // namespace sweep
