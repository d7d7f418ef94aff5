#include "calls/run/kernel_object.h"
#include "calls/run/session.h"

#include <windows.h>

DWORD GetLastError() {
    platform::Call call("GetLastError");
    return platform::last_error();
}

void SetLastError(DWORD code) {
    platform::Call call("SetLastError", std::to_string(code));
    platform::set_last_error(code);
}

// Closing can't be made to fail on demand: the handle would stay open, and nobody could close it after that.
BOOL CloseHandle(HANDLE handle) {
    platform::Session& session = platform::session();
    const auto object = session.handles.peek(handle);
    platform::Call call("CloseHandle", object ? object->kind() : "");
    if (object && std::dynamic_pointer_cast<platform::KernelObject>(object) == nullptr)
        session.gate.misuse(std::string("CloseHandle of a ") + object->kind());
    else if (session.handles.close(handle))
        return TRUE;
    platform::set_last_error(ERROR_INVALID_HANDLE);
    return FALSE;
}
