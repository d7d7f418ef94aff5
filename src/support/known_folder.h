// Folders that the system knows under an id.
#pragma once

#include <windows.h>

#include <knownfolders.h>

// The folder's path, which the caller releases with CoTaskMemFree. On failure writes "Get <name> failed
// <code>" to the log and gives null.
WCHAR* find_known_folder(const GUID& id, const WCHAR* name);
