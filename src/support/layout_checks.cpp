// The sizes, offsets and values that this program's blocks and calls stand on. One table for both platforms:
// what it holds can't differ between them. Nothing here is code.

// Sockets come before windows.h, which would bring the older ones.
#include <winsock2.h>

#include "support/platform_gaps.h"

#include <cfgmgr32.h>
#include <iphlpapi.h>
#include <setupapi.h>
#include <shellapi.h>
#include <windows.h>
#include <winspool.h>

#include <cstddef>

namespace {

// Records with pointers in them have their published sizes in 32-bit programs only.
constexpr bool narrow = sizeof(void*) == 4;

static_assert(sizeof(WCHAR) == 2 && sizeof(DWORD) == 4 && sizeof(ULONG) == 4 && sizeof(DWORDLONG) == 8);
static_assert(sizeof(TEXT("a")) == 4);

static_assert(sizeof(PORT_DATA_1) == 964);
static_assert(offsetof(PORT_DATA_1, dwVersion) == 128);
static_assert(offsetof(PORT_DATA_1, dwProtocol) == 132);
static_assert(offsetof(PORT_DATA_1, cbSize) == 136);
static_assert(offsetof(PORT_DATA_1, dwReserved) == 140);
static_assert(offsetof(PORT_DATA_1, sztHostAddress) == 144);
static_assert(offsetof(PORT_DATA_1, sztSNMPCommunity) == 242);
static_assert(offsetof(PORT_DATA_1, dwDoubleSpool) == 308);
static_assert(offsetof(PORT_DATA_1, sztQueue) == 312);
static_assert(offsetof(PORT_DATA_1, sztIPAddress) == 378);
static_assert(offsetof(PORT_DATA_1, Reserved) == 410);
static_assert(offsetof(PORT_DATA_1, dwPortNumber) == 952);
static_assert(offsetof(PORT_DATA_1, dwSNMPEnabled) == 956);
static_assert(offsetof(PORT_DATA_1, dwSNMPDevIndex) == 960);

static_assert(sizeof(DELETE_PORT_DATA_1) == 236);
static_assert(offsetof(DELETE_PORT_DATA_1, Reserved) == 128);
static_assert(offsetof(DELETE_PORT_DATA_1, dwVersion) == 228);
static_assert(offsetof(DELETE_PORT_DATA_1, dwReserved) == 232);

static_assert(PRINTER_ENUM_LOCAL == 2);
static_assert(SERVER_ACCESS_ADMINISTER == 1 && PRINTER_ALL_ACCESS == 0xF000C);
static_assert((PRINTER_ATTRIBUTE_LOCAL | PRINTER_ATTRIBUTE_RAW_ONLY) == 0x1040);
static_assert(UPDP_UPLOAD_ALWAYS == 2);
static_assert(sizeof(DRIVER_INFO_6W) == (narrow ? 80 : 136));
static_assert(offsetof(DRIVER_INFO_6W, dwlDriverVersion) == (narrow ? 56 : 96));
static_assert(sizeof(PRINTER_INFO_1W) == (narrow ? 16 : 32));
static_assert(sizeof(PRINTER_INFO_2W) == (narrow ? 84 : 136));
static_assert(sizeof(PORT_INFO_2W) == (narrow ? 20 : 32));
static_assert(sizeof(MONITOR_INFO_2W) == (narrow ? 12 : 24));
static_assert(sizeof(PRINTER_DEFAULTSW) == (narrow ? 12 : 24));

static_assert(sizeof(SERVICE_STATUS_PROCESS) == 36 && sizeof(SERVICE_STATUS) == 28);
static_assert(sizeof(ENUM_SERVICE_STATUSW) == (narrow ? 36 : 48));
static_assert(SC_STATUS_PROCESS_INFO == 0 && SERVICE_CONTROL_STOP == 1 && SERVICE_ACTIVE == 1);
static_assert(SERVICE_STOPPED == 1 && SERVICE_START_PENDING == 2 && SERVICE_STOP_PENDING == 3 &&
              SERVICE_RUNNING == 4);
static_assert(SC_MANAGER_ALL_ACCESS == 0xF003F && SERVICE_ALL_ACCESS == 0xF01FF);
static_assert((SERVICE_STOP | SERVICE_QUERY_STATUS | SERVICE_ENUMERATE_DEPENDENTS) == 0x2C);
static_assert((SERVICE_STOP | SERVICE_QUERY_STATUS) == 0x24);

static_assert((DIGCF_PRESENT | DIGCF_DEVICEINTERFACE) == 18 && SPDIT_COMPATDRIVER == 2);
static_assert(sizeof(SP_DEVINFO_DATA) == (narrow ? 28 : 32));
static_assert(sizeof(SP_DEVICE_INTERFACE_DATA) == (narrow ? 28 : 32));
static_assert(sizeof(SP_DEVICE_INTERFACE_DETAIL_DATA_W) == (narrow ? 6 : 8));
static_assert(offsetof(SP_DEVICE_INTERFACE_DETAIL_DATA_W, DevicePath) == 4);
static_assert(sizeof(SP_DRVINFO_DATA_W) == (narrow ? 1564 : 1568));
static_assert(offsetof(SP_DRVINFO_DATA_W, Description) == (narrow ? 12 : 16));
static_assert(CR_SUCCESS == 0);

// Files, processes, version and registry.
static_assert(sizeof(STARTUPINFOW) == (narrow ? 68 : 104));
static_assert(sizeof(PROCESS_INFORMATION) == (narrow ? 16 : 24));
static_assert(sizeof(OSVERSIONINFOEXW) == 284 && offsetof(OSVERSIONINFOEXW, szCSDVersion) == 20);
static_assert(sizeof(WIN32_FIND_DATAW) == 592 && offsetof(WIN32_FIND_DATAW, cFileName) == 44);
static_assert(GENERIC_READ == 0x80000000u && FILE_APPEND_DATA == 4 && FILE_ATTRIBUTE_NORMAL == 0x80);
static_assert((FILE_SHARE_READ | FILE_SHARE_WRITE) == 3 && OPEN_EXISTING == 3 && OPEN_ALWAYS == 4);
static_assert(KEY_READ == 0x20019);
static_assert((FORMAT_MESSAGE_ALLOCATE_BUFFER | FORMAT_MESSAGE_FROM_SYSTEM) == 0x1100);
static_assert(HEAP_ZERO_MEMORY == 8 && LOCALE_SYSTEM_DEFAULT == 0x800 && CP_ACP == 0);

// The shell's flags for copying (0x1494) and deleting (0x414).
static_assert(FO_COPY == 2 && FO_DELETE == 3);
static_assert((FOF_SILENT | FOF_NOCONFIRMATION | FOF_NOERRORUI) == 0x414);
static_assert((FOF_SILENT | FOF_NOCONFIRMATION | FOF_FILESONLY | FOF_NOERRORUI | FOF_NORECURSION) == 0x1494);
static_assert(sizeof(SHFILEOPSTRUCTW) == (narrow ? 30 : 56));

// Windows and messages.
static_assert(BM_GETCHECK == 240 && EM_FMTLINES == 200 && WM_USER == 1024);
static_assert(LB_ADDSTRING == 0x180 && LB_DELETESTRING == 0x182 && LB_GETCURSEL == 0x188 &&
              LB_SETTABSTOPS == 402);
static_assert(MB_TOPMOST == 0x40000 && (MB_TOPMOST | MB_ICONEXCLAMATION) == 0x40030);
static_assert(SW_SHOW == 5);

// Sockets and adapters.
static_assert(sizeof(sockaddr_in) == 16 && offsetof(sockaddr_in, sin_addr) == 4);
static_assert(sizeof(IP_ADDR_STRING) == (narrow ? 40 : 48) &&
              sizeof(IP_ADAPTER_INFO) == (narrow ? 640 : 704));
static_assert(offsetof(IP_ADAPTER_INFO, Description) == (narrow ? 268 : 272));
static_assert(offsetof(IP_ADAPTER_INFO, IpAddressList) == (narrow ? 428 : 440));

} // namespace
