// The sizes, offsets and values that this program's blocks and calls stand on. One table for both platforms:
// what it holds can't differ between them. Nothing here is code.
#include "support/platform_gaps.h"

#include <cfgmgr32.h>
#include <setupapi.h>
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

} // namespace
