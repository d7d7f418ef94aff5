// COM as the present thread sees it.
#pragma once

#include <objbase.h>

#include <string>

namespace platform {

bool com_ready(); // this thread has called CoInitialize

// A new object with one reference, asked for the interface. E_NOINTERFACE makes none.
HRESULT make_shell_link(REFIID interface_id, void** object);

bool same_id(const GUID& a, const GUID& b);
std::string shown_id(const GUID& id);

} // namespace platform
