#include "calls/run/session.h"
#include "calls/windows/window_model.h"

#include <string_view>

namespace platform {
namespace {

// MS Shell Dlg of 8 points: a dialog unit is a quarter of 6 pixels wide and an eighth of 13 pixels high.
constexpr int base_width = 6;
constexpr int base_height = 13;
constexpr int frame_width = 6;
constexpr int frame_height = 29; // with the caption

constexpr DWORD type_bits = 0xF; // of a button's style
constexpr DWORD static_type_bits = 0x1F;

int scaled(int number, int factor, int divisor) {
    const int half = number < 0 ? -divisor / 2 : divisor / 2;
    return (number * factor + half) / divisor;
}

HFONT dialog_font() {
    return reinterpret_cast<HFONT>(
        std::uintptr_t{0xA0011}); // no handle of the table: those are multiples of four
}

void place(Window& window, int left, int top, int width, int height) {
    window.units = {left, top, width, height};
    window.left = across(left);
    window.top = down(top);
    window.width = across(width);
    window.height = down(height);
}

bool is_class(const ControlTemplate& control, std::uint16_t number, std::u16string_view name) {
    return control.window_class.id == number || control.window_class.text == name;
}

WindowKind kind_of(const Call& call, const ControlTemplate& control) {
    if (is_class(control, 0x80, u"BUTTON")) {
        const DWORD type = control.style & type_bits;
        if (type == BS_PUSHBUTTON || type == BS_DEFPUSHBUTTON || type == BS_AUTOCHECKBOX)
            return WindowKind::button;
        call.refuse("button style " + std::to_string(type) + " isn't modelled");
    }
    if (is_class(control, 0x81, u"EDIT"))
        return WindowKind::edit;
    if (is_class(control, 0x82, u"STATIC")) {
        const DWORD type = control.style & static_type_bits;
        return type == SS_BITMAP || type == SS_ICON ? WindowKind::picture : WindowKind::text;
    }
    if (is_class(control, 0x83, u"LISTBOX"))
        return WindowKind::list;
    call.refuse("a control of a class that isn't modelled");
}

void set_list_style(const Call& call, Window& window) {
    if ((window.style & LBS_SORT) != 0)
        call.refuse("sorted list boxes aren't modelled");
    window.scroll_bar = (window.style & WS_HSCROLL) != 0;
    window.set_style(WS_HSCROLL, false);
}

void add_control(const Call& call, HWND dialog, const ControlTemplate& layout) {
    WindowModel& model = window_model();
    Window& window = model.add(kind_of(call, layout));
    window.parent = dialog;
    window.id = static_cast<int>(layout.id);
    window.style = layout.style | WS_CHILD;
    window.extended_style = layout.extended_style;
    window.text = layout.text;
    window.font = dialog_font();
    if (window.kind == WindowKind::list)
        set_list_style(call, window);
    place(window, layout.left, layout.top, layout.width, layout.height);
    Window& parent = *model.find(dialog);
    parent.controls.push_back(window.handle);
    const bool is_default =
        window.kind == WindowKind::button && (window.style & type_bits) == BS_DEFPUSHBUTTON;
    if (is_default && parent.default_id == 0)
        parent.default_id = window.id;
}

} // namespace

int across(int units) {
    return scaled(units, base_width, 4);
}

int down(int units) {
    return scaled(units, base_height, 8);
}

Window& add_list(const Call& call, HWND dialog, DWORD style, const RECT& place) {
    Window& window = window_model().add(WindowKind::list);
    window.parent = dialog;
    window.style = style;
    set_list_style(call, window);
    window.left = place.left;
    window.top = place.top;
    window.width = place.right - place.left;
    window.height = place.bottom - place.top;
    window.units = {scaled(window.left, 4, base_width), scaled(window.top, 8, base_height),
                    scaled(window.width, 4, base_width), scaled(window.height, 8, base_height)};
    window_model().find(dialog)->controls.push_back(window.handle);
    return window;
}

HWND build_dialog(const Call& call, const DialogTemplate& layout) {
    if (layout.font_points != 8 || !layout.font.starts_with(u"MS Shell Dlg"))
        call.refuse("only dialogs in MS Shell Dlg of 8 points are modelled");
    if (layout.has_menu || layout.has_class)
        call.refuse("dialogs with a menu or a class of their own aren't modelled");
    Window& window = window_model().add(WindowKind::dialog);
    const HWND dialog = window.handle;
    window.style = layout.style & ~WS_VISIBLE; // shown when it is ready
    window.extended_style = layout.extended_style;
    window.text = layout.caption;
    window.font = dialog_font();
    place(window, layout.left, layout.top, layout.width, layout.height);
    window.width += frame_width;
    window.height += frame_height;
    for (const ControlTemplate& control : layout.controls)
        add_control(call, dialog, control);
    return dialog;
}

} // namespace platform
