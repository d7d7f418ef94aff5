#include "acceptance/pictures/picture.h"
#include "acceptance/pilot/window_text.h"

namespace pictures {
namespace {

using pilot::Control;
using pilot::Dialog;

// What a control needs beside its text, in pixels: a button's edges, a check box's square and its gap.
constexpr int button_edges = 8;
constexpr int check_square = 18;
// The name's column of the list of printers, in dialog units; the program's own tab stop.
constexpr int name_column = 64;

// The dialogs' font, as the program's own dialogs have it.
class Ruler {
public:
    Ruler() : screen_(GetDC(nullptr)) {
        const int height = -MulDiv(8, GetDeviceCaps(screen_, LOGPIXELSY), 72);
        font_ = CreateFontW(height, 0, 0, 0, FW_NORMAL, FALSE, FALSE, FALSE, DEFAULT_CHARSET, 0, 0, 0, 0,
                            L"MS Shell Dlg");
        before_ = SelectObject(screen_, font_);
    }
    ~Ruler() {
        SelectObject(screen_, before_);
        DeleteObject(font_);
        ReleaseDC(nullptr, screen_);
    }
    Ruler(const Ruler&) = delete;
    Ruler& operator=(const Ruler&) = delete;

    // What the text takes, wrapped where a width is given.
    SIZE measure(const std::string& text, int width) const {
        std::wstring wide = pilot::to_wide(text);
        RECT place = {0, 0, width, 0};
        const UINT wrapping = width > 0 ? DT_WORDBREAK : DT_SINGLELINE;
        DrawTextW(screen_, wide.data(), static_cast<int>(wide.size()), &place, DT_CALCRECT | wrapping);
        return {place.right, place.bottom};
    }

    // A row's text stands behind the tab of the name's column.
    int row_width(const std::string& row) const {
        const std::wstring wide = pilot::to_wide(row);
        // A dialog unit is a quarter of the font's mean letter; the list box reckons alike.
        SIZE letters = {};
        GetTextExtentPoint32W(screen_, L"ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz", 52, &letters);
        int stop = MulDiv((letters.cx / 26 + 1) / 2, name_column, 4);
        return LOWORD(GetTabbedTextExtentW(screen_, wide.c_str(), static_cast<int>(wide.size()), 1, &stop));
    }

private:
    HDC screen_;
    HFONT font_ = nullptr;
    HGDIOBJ before_ = nullptr;
};

RECT place_of(HWND window) {
    RECT place = {};
    GetWindowRect(window, &place);
    return place;
}

std::string name_of(const Control& control) {
    return "control " + std::to_string(control.id) + " \"" + control.text + "\"";
}

std::string needs(const std::string& name, int needed, int has) {
    return name + " needs " + std::to_string(needed) + " pixels and has " + std::to_string(has);
}

void judge_rows(const Ruler& ruler, const Control& list, std::vector<std::string>& faults) {
    RECT first = {};
    if (list.rows.empty() || !pilot::ask(list.window, LB_GETITEMRECT, 0, reinterpret_cast<LPARAM>(&first)))
        return;
    for (const std::string& row : list.rows)
        if (const int width = ruler.row_width(row); width > first.right - first.left)
            faults.push_back(needs("row \"" + row + "\"", width, first.right - first.left));
}

void judge_text(const Ruler& ruler, const Control& control, std::vector<std::string>& faults) {
    RECT inside = {};
    GetClientRect(control.window, &inside);
    if (control.kind == "static") {
        const SIZE size = ruler.measure(control.text, inside.right);
        if (size.cy > inside.bottom)
            faults.push_back(needs(name_of(control) + " downwards", size.cy, inside.bottom));
        if (size.cx > inside.right)
            faults.push_back(needs(name_of(control), size.cx, inside.right));
    } else if (control.kind.find("button") != std::string::npos || control.kind == "check box") {
        const int room = inside.right - (control.kind == "check box" ? check_square : button_edges);
        if (const SIZE size = ruler.measure(control.text, 0); size.cx > room)
            faults.push_back(needs(name_of(control), size.cx, room));
    }
}

void judge_place(const Dialog& dialog, const Control& control, std::vector<std::string>& faults) {
    const RECT own = place_of(control.window);
    const RECT around = place_of(dialog.window);
    RECT shared = {};
    if (!IntersectRect(&shared, &own, &around) || !EqualRect(&shared, &own))
        faults.push_back(name_of(control) + " leaves its dialog");
    for (const Control& other : dialog.controls) {
        const RECT place = place_of(other.window);
        if (&other < &control && other.visible && IntersectRect(&shared, &own, &place))
            faults.push_back(name_of(control) + " overlaps " + name_of(other));
    }
}

} // namespace

std::vector<std::string> faults_of(const Dialog& dialog) {
    const Ruler ruler;
    std::vector<std::string> faults;
    for (const Control& control : dialog.controls) {
        if (!control.visible)
            continue;
        judge_place(dialog, control, faults);
        if (control.kind == "list")
            judge_rows(ruler, control, faults);
        else
            judge_text(ruler, control, faults);
    }
    return faults;
}

} // namespace pictures
