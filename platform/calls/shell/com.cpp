#include "calls/shell/com.h"

#include "calls/run/session.h"

#include <shlobj.h>
#include <windows.h>

#include <cstdio>
#include <cstring>
#include <map>
#include <mutex>

namespace {

// How often each thread has initialised COM and not given it up.
struct ComState {
    std::mutex mutex;
    std::map<unsigned, unsigned> threads;
};

} // namespace

namespace platform {

bool com_ready() {
    ComState& state = session().area<ComState>();
    const std::lock_guard lock(state.mutex);
    return state.threads[current_thread_number()] > 0;
}

bool same_id(const GUID& a, const GUID& b) {
    return std::memcmp(&a, &b, sizeof a) == 0;
}

std::string shown_id(const GUID& id) {
    char text[16];
    std::snprintf(text, sizeof text, "%08x", id.Data1);
    return text;
}

} // namespace platform

HRESULT CoInitialize(LPVOID reserved) {
    platform::Call call("CoInitialize");
    if (call.fails(static_cast<std::uint32_t>(E_OUTOFMEMORY)))
        return static_cast<HRESULT>(call.error());
    if (reserved != nullptr)
        return E_INVALIDARG;
    ComState& state = platform::session().area<ComState>();
    const std::lock_guard lock(state.mutex);
    return state.threads[platform::current_thread_number()]++ == 0 ? S_OK : S_FALSE;
}

void CoUninitialize() {
    platform::Call call("CoUninitialize");
    ComState& state = platform::session().area<ComState>();
    const std::lock_guard lock(state.mutex);
    unsigned& count = state.threads[platform::current_thread_number()];
    if (count == 0)
        platform::session().gate.misuse("CoUninitialize without CoInitialize");
    else
        --count;
}

HRESULT CoCreateInstance(REFCLSID class_id, LPUNKNOWN outer, DWORD context, REFIID interface_id,
                         LPVOID* object) {
    platform::Call call("CoCreateInstance", platform::shown_id(class_id));
    if (object == nullptr)
        return E_POINTER;
    *object = nullptr;
    if (call.fails(static_cast<std::uint32_t>(REGDB_E_CLASSNOTREG)))
        return static_cast<HRESULT>(call.error());
    if (!platform::com_ready())
        return CO_E_NOTINITIALIZED;
    if (!platform::same_id(class_id, CLSID_ShellLink) || (context & CLSCTX_INPROC_SERVER) == 0)
        return REGDB_E_CLASSNOTREG;
    if (outer != nullptr)
        return CLASS_E_NOAGGREGATION;
    return platform::make_shell_link(interface_id, object);
}

void CoTaskMemFree(LPVOID block) {
    platform::Call call("CoTaskMemFree");
    platform::session().memory.release(block, "CoTaskMemAlloc");
}
