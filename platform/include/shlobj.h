// The shell's folders, and with them its links.
#pragma once

#include "knownfolders.h"
#include "shobjidl.h"

// The folder's path goes to `path` and is released with CoTaskMemFree. A null token means the present user.
HRESULT WINAPI SHGetKnownFolderPath(REFKNOWNFOLDERID folder, DWORD flags, HANDLE token, PWSTR* path);
