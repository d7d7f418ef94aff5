#include "support/current_folder.h"

int get_current_folder(WCHAR* out, DWORD size) {
    // Without room the call gives the size it needs and leaves the buffer in an unknown state.
    const DWORD length = GetCurrentDirectoryW(size, out);
    if (length != 0 && length < size)
        return 1;
    if (size != 0)
        out[0] = 0;
    return 0;
}
