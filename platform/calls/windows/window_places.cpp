// Controls that are made beside those of a template, and the places of windows.
#include "calls/run/session.h"
#include "calls/windows/messages.h"
#include "machine/text.h"

#include <algorithm>

using namespace platform;

namespace {

// With the lock held. Null with the error set when there is no such dialog.
Window* find_dialog(HWND handle) {
    Window* const window = window_model().find(handle);
    if (window != nullptr && window->kind == WindowKind::dialog)
        return window;
    set_last_error(ERROR_INVALID_WINDOW_HANDLE);
    return nullptr;
}

} // namespace

HWND CreateWindowExW(DWORD extended_style, LPCWSTR class_name, LPCWSTR text, DWORD style, int x, int y,
                     int width, int height, HWND parent, HMENU id, HINSTANCE, LPVOID) {
    Call call("CreateWindowExW", shown(class_name));
    require_main_thread(call);
    if (to_utf8(class_name) != "LISTBOX" || text != nullptr || (style & WS_CHILD) == 0)
        call.refuse("only list boxes can be made beside those of a template");
    if (call.fails(ERROR_NOT_ENOUGH_MEMORY))
        return nullptr;
    const RunLock lock = run_threads().lock();
    if (find_dialog(parent) == nullptr)
        return nullptr;
    Window& list = add_list(call, parent, style, {x, y, x + width, y + height});
    list.extended_style = extended_style;
    list.id = static_cast<int>(reinterpret_cast<std::uintptr_t>(id));
    return list.handle;
}

BOOL SetWindowPos(HWND handle, HWND behind, int, int, int, int, UINT flags) {
    Call call("SetWindowPos");
    if (flags != (SWP_NOMOVE | SWP_NOSIZE | SWP_NOACTIVATE))
        call.refuse("only the order of controls is set");
    if (call.fails(ERROR_INVALID_WINDOW_HANDLE))
        return FALSE;
    const RunLock lock = run_threads().lock();
    const Window* window = window_model().find(handle);
    const Window* before = window_model().find(behind);
    if (window == nullptr || before == nullptr) {
        set_last_error(ERROR_INVALID_WINDOW_HANDLE);
        return FALSE;
    }
    if (window->parent == nullptr || before->parent != window->parent || window == before)
        call.refuse("only two controls of one dialog have an order");
    std::vector<HWND>& order = window_model().find(window->parent)->controls;
    std::erase(order, handle);
    order.insert(std::find(order.begin(), order.end(), behind) + 1, handle);
    return TRUE;
}

int MapWindowPoints(HWND from, HWND to, LPPOINT points, UINT count) {
    Call call("MapWindowPoints");
    if (from != nullptr)
        call.refuse("only places on the screen are mapped");
    if (call.fails(ERROR_INVALID_WINDOW_HANDLE))
        return 0;
    const RunLock lock = run_threads().lock();
    const Window* window = find_dialog(to);
    if (window == nullptr)
        return 0;
    const POINT origin = window_model().client_origin(*window);
    for (UINT index = 0; index < count; ++index) {
        points[index].x -= origin.x;
        points[index].y -= origin.y;
    }
    return MAKELONG(-origin.x, -origin.y);
}

BOOL MapDialogRect(HWND handle, LPRECT rectangle) {
    Call call("MapDialogRect");
    if (call.fails(ERROR_INVALID_WINDOW_HANDLE))
        return FALSE;
    const RunLock lock = run_threads().lock();
    if (find_dialog(handle) == nullptr)
        return FALSE;
    *rectangle = {across(rectangle->left), down(rectangle->top), across(rectangle->right),
                  down(rectangle->bottom)};
    return TRUE;
}
