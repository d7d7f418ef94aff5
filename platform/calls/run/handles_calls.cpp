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

DWORD WaitForSingleObject(HANDLE handle, DWORD milliseconds) {
    platform::HandleTable& handles = platform::session().handles;
    const auto object = handles.peek(handle);
    platform::Call call("WaitForSingleObject", object ? object->kind() : "no object");
    if (call.fails(ERROR_INVALID_HANDLE))
        return WAIT_FAILED;
    if (!object) {
        handles.find<platform::Object>(handle); // which notes it
        platform::set_last_error(ERROR_INVALID_HANDLE);
        return WAIT_FAILED;
    }
    const auto waited_for = std::dynamic_pointer_cast<platform::KernelObject>(object);
    if (const auto result = waited_for ? waited_for->wait(milliseconds) : std::nullopt)
        return *result;
    call.refuse("waits are modelled for mutexes, threads and processes only");
}
