// The adapter list of the IP helper library.
#pragma once

#include "iptypes.h"

// 0, or ERROR_BUFFER_OVERFLOW with the needed bytes in *size, or ERROR_NO_DATA when there is no adapter.
DWORD GetAdaptersInfo(PIP_ADAPTER_INFO info, PULONG size);
