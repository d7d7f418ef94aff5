// What texts take in the dialogs' font, as a program asks it of a device context.
#include "calls/run/session.h"
#include "calls/windows/messages.h"

#include <utility>

using namespace platform;

namespace {

// Pixels: a letter of the dialogs' font and of a context's own; those of the Far East are twice as wide.
constexpr int letter_width = 6;
constexpr int own_letter_width = 8;
constexpr WCHAR first_wide_letter = 0x1100;

struct DeviceContext : Object {
    const char* kind() const override { return "device context"; }
    HGDIOBJ font = reinterpret_cast<HGDIOBJ>(std::uintptr_t{0xA0021}); // no window's
};

std::shared_ptr<DeviceContext> find_context(HDC handle) {
    std::shared_ptr<DeviceContext> context;
    if (handle != nullptr)
        context = session().handles.find<DeviceContext>(handle);
    if (context == nullptr)
        set_last_error(ERROR_INVALID_HANDLE);
    return context;
}

bool is_dialog_font(HGDIOBJ object) {
    const RunLock lock = run_threads().lock();
    for (const HWND dialog : window_model().dialogs)
        if (window_model().find(dialog)->font == object)
            return true;
    return false;
}

// Where a tab at this place leads to.
int tab_stop(const Call& call, int place, int count, const int* stops) {
    for (int index = 0; index < count; ++index)
        if (stops[index] > place)
            return stops[index];
    call.refuse("a tab behind the last stop isn't modelled");
}

} // namespace

HDC GetDC(HWND handle) {
    Call call("GetDC");
    if (call.fails(ERROR_NOT_ENOUGH_MEMORY))
        return nullptr;
    const RunLock lock = run_threads().lock();
    if (window_model().find(handle) == nullptr) {
        set_last_error(ERROR_INVALID_WINDOW_HANDLE);
        return nullptr;
    }
    return static_cast<HDC>(session().handles.open(std::make_shared<DeviceContext>()));
}

int ReleaseDC(HWND, HDC handle) {
    const Call call("ReleaseDC");
    return find_context(handle) != nullptr && session().handles.close(handle) ? 1 : 0;
}

HGDIOBJ SelectObject(HDC handle, HGDIOBJ object) {
    Call call("SelectObject");
    if (call.fails(ERROR_INVALID_HANDLE))
        return nullptr;
    const std::shared_ptr<DeviceContext> context = find_context(handle);
    return context == nullptr || object == nullptr ? nullptr : std::exchange(context->font, object);
}

DWORD GetTabbedTextExtentW(HDC handle, LPCWSTR text, int length, int stop_count, const int* stops) {
    Call call("GetTabbedTextExtentW", std::to_string(length));
    if (call.fails(ERROR_INVALID_HANDLE))
        return 0;
    const std::shared_ptr<DeviceContext> context = find_context(handle);
    if (context == nullptr)
        return 0;
    const int letter = is_dialog_font(context->font) ? letter_width : own_letter_width;
    int width = 0;
    for (int index = 0; index < length; ++index) {
        const WCHAR unit = text[index];
        width = unit == u'\t' ? tab_stop(call, width, stop_count, stops)
                              : width + (unit >= first_wide_letter ? 2 * letter : letter);
    }
    return static_cast<DWORD>(MAKELONG(width, down(8)));
}
