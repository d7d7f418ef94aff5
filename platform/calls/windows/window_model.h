// The windows of a run: dialogs and their controls as plain records. All of it stands under the lock of
// run_threads(); the main thread owns every window, and its window procedures alone change them.
#pragma once

#include "calls/run/gate.h"
#include "calls/run/threads.h"
#include "calls/windows/resource_file.h"

#include <windows.h>

#include <deque>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace platform {

enum class WindowKind { desktop, dialog, button, edit, text, picture, list };

constexpr DWORD button_type_bits = 0xF; // of a button's style

// In dialog units, as the template has it.
struct UnitRectangle {
    int left = 0, top = 0, width = 0, height = 0;
};

struct Window {
    HWND handle = nullptr;
    WindowKind kind = WindowKind::dialog;
    HWND parent = nullptr; // of a control: its dialog
    HWND owner = nullptr;  // of a dialog: the window that it was created for
    int id = 0;            // of a control; of a dialog the template's number
    DWORD style = 0;       // WS_VISIBLE and WS_DISABLED are the state
    DWORD extended_style = 0;
    std::u16string text;
    HFONT font = nullptr;
    UnitRectangle units;
    // Pixels; a control's place counts from its dialog's client area, a dialog's from the screen.
    int left = 0, top = 0, width = 0, height = 0;
    LONG_PTR user_data = 0;
    std::vector<HWND> controls; // of a dialog, in the template's order

    bool checked = false; // check boxes
    bool pressed = false; // buttons and lists, between mouse down and up

    std::size_t selection_start = 0, selection_end = 0; // edit controls
    std::size_t typing_limit = 30000;

    std::vector<std::u16string> rows; // list boxes
    int selected = LB_ERR;
    int column_width = 0;
    int left_column = 0; // the first that is in sight
    // Made with WS_HSCROLL; the style's bit tells whether the bar is to be seen, as not all columns are in
    // sight.
    bool scroll_bar = false;

    DLGPROC procedure = nullptr; // dialogs
    LONG_PTR message_result = 0;
    LONG_PTR dialog_user = 0;
    int default_id = 0; // 0: no default push button
    HWND focus = nullptr;
    bool modal = false;
    bool ended = false;
    INT_PTR end_result = 0;

    bool shown() const { return (style & WS_VISIBLE) != 0; }
    bool disabled() const { return (style & WS_DISABLED) != 0; }
    void set_style(DWORD bit, bool on) { style = on ? style | bit : style & ~bit; }
};

struct PostedMessage {
    MSG message = {};
    bool input = false; // comes from the user's hand, not from PostMessageW
};

struct SentMessage {
    HWND window = nullptr;
    UINT message = 0;
    WPARAM wparam = 0;
    LPARAM lparam = 0;
    LRESULT result = 0;
    bool done = false;
};

constexpr int screen_width = 1024;
constexpr int screen_height = 768;

struct WindowModel {
    WindowModel();

    Window* find(HWND handle);
    Window& add(WindowKind kind);
    void remove(HWND handle); // with its controls and what was posted to them
    void raise(HWND dialog);
    void show(Window& window, bool shown);     // a dialog comes to the top, and has a focus from then on
    bool visible(const Window& window);        // with all that it lies in
    bool usable(const Window& window);         // visible, and neither it nor what it lies in is disabled
    RECT rectangle(const Window& window);      // on the screen
    POINT client_origin(const Window& dialog); // of its controls' places, on the screen
    Window* control(const Window& dialog, int id);
    // The next control behind `behind` that the Tab key reaches, or null; null starts at the first.
    HWND next_tab_stop(const Window& dialog, HWND behind);

    HWND desktop = nullptr;
    std::vector<HWND> dialogs; // every one that exists, the topmost last
    std::deque<PostedMessage> posted;
    std::deque<std::shared_ptr<SentMessage>> sent;
    bool quit = false;
    int exit_code = 0;
    HCURSOR cursor = nullptr;
    bool changed = false;        // since the user last looked
    unsigned fruitless_acts = 0; // of the user, since a message came
    unsigned closings = 0;       // by the layer, since the user left

private:
    std::map<HWND, std::unique_ptr<Window>> windows_;
    std::uintptr_t next_ = 0x10010;
};

WindowModel& window_model();

// Makes the dialog and its controls, all as the template has them. Stops the run for what isn't modelled.
HWND build_dialog(const Call& call, const DialogTemplate& layout);

// Adds an empty list box to the dialog, behind its other controls, at a place in pixels of the client area.
Window& add_list(const Call& call, HWND dialog, DWORD style, const RECT& place);

// Dialog units to pixels, rounded to the nearest.
int across(int units);
int down(int units);

} // namespace platform
