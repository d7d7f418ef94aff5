#include "calls/windows/window_model.h"

#include "calls/run/session.h"
#include "calls/windows/resources.h"

#include <algorithm>

namespace platform {
namespace {

// The frame of a dialog: three pixels on each side, and the caption.
constexpr int frame_size = 3;
constexpr int caption_height = 23;

} // namespace

WindowModel& window_model() {
    return session().area<WindowModel>();
}

WindowModel::WindowModel() {
    Window& window = add(WindowKind::desktop);
    window.style = WS_VISIBLE;
    window.width = screen_width;
    window.height = screen_height;
    desktop = window.handle;
    cursor = static_cast<HCURSOR>(system_cursor(32512));
}

Window* WindowModel::find(HWND handle) {
    const auto found = windows_.find(handle);
    return found == windows_.end() ? nullptr : found->second.get();
}

Window& WindowModel::add(WindowKind kind) {
    auto window = std::make_unique<Window>();
    window->handle = reinterpret_cast<HWND>(next_);
    window->kind = kind;
    next_ += 2;
    Window& result = *window;
    windows_[result.handle] = std::move(window);
    if (kind == WindowKind::dialog)
        dialogs.push_back(result.handle);
    return result;
}

void WindowModel::remove(HWND handle) {
    Window* window = find(handle);
    if (window == nullptr)
        return;
    const std::vector<HWND> controls = window->controls;
    for (const HWND control : controls)
        remove(control);
    if (Window* parent = find(window->parent)) {
        std::erase(parent->controls, handle);
        if (parent->focus == handle)
            parent->focus = nullptr;
    }
    std::erase(dialogs, handle);
    std::erase_if(posted, [handle](const PostedMessage& entry) { return entry.message.hwnd == handle; });
    windows_.erase(handle);
}

void WindowModel::raise(HWND dialog) {
    const auto found = std::find(dialogs.begin(), dialogs.end(), dialog);
    if (found != dialogs.end())
        std::rotate(found, found + 1, dialogs.end());
}

void WindowModel::show(Window& window, bool shown) {
    window.set_style(WS_VISIBLE, shown);
    changed = true;
    if (!shown || window.kind != WindowKind::dialog)
        return;
    raise(window.handle);
    if (window.focus == nullptr)
        window.focus = next_tab_stop(window, nullptr);
}

bool WindowModel::visible(const Window& window) {
    const Window* parent = find(window.parent);
    return window.shown() && (parent == nullptr || visible(*parent));
}

bool WindowModel::usable(const Window& window) {
    const Window* parent = find(window.parent);
    return window.shown() && !window.disabled() && (parent == nullptr || usable(*parent));
}

POINT WindowModel::client_origin(const Window& dialog) {
    return {dialog.left + frame_size, dialog.top + frame_size + caption_height};
}

RECT WindowModel::rectangle(const Window& window) {
    int left = window.left;
    int top = window.top;
    if (const Window* parent = find(window.parent)) {
        const POINT origin = client_origin(*parent);
        left += origin.x;
        top += origin.y;
    }
    return {left, top, left + window.width, top + window.height};
}

Window* WindowModel::control(const Window& dialog, int id) {
    for (const HWND handle : dialog.controls)
        if (Window* window = find(handle); window->id == id)
            return window;
    return nullptr;
}

HWND WindowModel::next_tab_stop(const Window& dialog, HWND behind) {
    const std::size_t count = dialog.controls.size();
    const std::vector<HWND>& order = dialog.controls;
    const auto found = std::find(order.begin(), order.end(), behind);
    const auto start = found == order.end() ? 0 : static_cast<std::size_t>(found - order.begin()) + 1;
    for (std::size_t step = 0; step < count; ++step) {
        const Window& window = *find(order[(start + step) % count]);
        if ((window.style & WS_TABSTOP) != 0 && window.shown() && !window.disabled())
            return window.handle;
    }
    return nullptr;
}

} // namespace platform
