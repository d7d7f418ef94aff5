#include "support/dialog_text.h"

#include "resources/resource_ids.h"
#include "state/app_state.h"
#include "support/install_log.h"
#include "support/memory.h"
#include "support/system_text.h"
#include "support/text.h"

#include <failed_step.h>

#include <iterator>

namespace {

constexpr int string_capacity = 260;
constexpr size_t box_capacity = 513 + 1;
constexpr size_t error_box_capacity = 257 + 1;
constexpr int error_format_capacity = 255;

// A loaded string, with room for a line end behind it.
struct LoadedString {
    WCHAR text[string_capacity + 2];
};

// LoadStringW's result; below 1 the string is missing.
int load_string(HINSTANCE module, UINT string_id, int line_end, LoadedString* string) {
    const int length = LoadStringW(module, string_id, string->text, string_capacity);
    if (length >= 1 && line_end)
        append_text(string->text, std::size(string->text), TEXT("\r\n"));
    return length;
}

// The text in 16-bit characters, to be released with release_bytes, or null when memory gives nothing. A byte
// never yields more than one character.
WCHAR* allocate_widened(const char* text) {
    const size_t capacity = ansi_length(text) + 1;
    WCHAR* const wide = allocate_characters(capacity);
    if (wide != nullptr)
        widen(wide, capacity, text);
    return wide;
}

// The control's present text with room for `extra` characters behind it, or null when memory gives nothing.
WCHAR* allocate_control_text(HWND item, size_t extra, size_t* capacity) {
    const int length = GetWindowTextLengthW(item);
    *capacity = static_cast<size_t>(length > 0 ? length : 0) + 1 + extra;
    WCHAR* const text = allocate_characters(*capacity);
    if (text != nullptr)
        GetWindowTextW(item, text, static_cast<int>(*capacity - extra));
    return text;
}

void append_system_text(WCHAR* message, size_t capacity, DWORD error) {
    WCHAR* const text = system_text(error);
    if (text == nullptr)
        return;
    append_text(message, capacity, TEXT("\n"));
    append_text(message, capacity, text);
    LocalFree(text);
}

// Where no box comes up the log alone can tell.
void show_box(const WCHAR* text, UINT flags) {
    if (MessageBoxW(nullptr, text, app.message_caption, flags) == 0)
        log_failure(TEXT("MessageBox failed %d\r\n"), GetLastError());
}

int clamp_to_screen(int position, int extent, int screen) {
    if (position < 0)
        position = 0;
    return position + extent > screen ? screen - extent : position;
}

} // namespace

int message_box_text(const WCHAR* text, UINT flags) {
    WCHAR shown[box_capacity];
    copy_text(shown, std::size(shown), text);
    show_box(shown, flags);
    return 1;
}

int message_box_string(HINSTANCE module, UINT string_id, UINT flags) {
    LoadedString string;
    if (load_string(module, string_id, 0, &string) >= 1)
        message_box_text(string.text, flags);
    else
        step_failed(TEXT("loading a message's text"));
    return 1;
}

int message_box_last_error(UINT string_id) {
    if (app.silent)
        return 1;
    const DWORD error = GetLastError();
    WCHAR format[error_format_capacity] = {};
    if (LoadStringW(app.app_instance, string_id, format, error_format_capacity) < 1)
        return 1;
    WCHAR message[error_box_capacity];
    format_text(message, std::size(message), format, error);
    if (error != 0)
        append_system_text(message, std::size(message), error);
    show_box(message, MB_TOPMOST);
    return 1;
}

int status_set(HWND dialog, int control, const WCHAR* text) {
    return SetWindowTextW(GetDlgItem(dialog, control), text);
}

void status_set_ansi(HWND dialog, int control, const char* text) {
    WCHAR* wide = allocate_widened(text);
    if (wide != nullptr)
        status_set(dialog, control, wide);
    release_bytes(wide);
}

int status_set_string(HINSTANCE module, HWND dialog, int control, UINT string_id, int line_end) {
    LoadedString string;
    const int length = load_string(module, string_id, line_end, &string);
    return length < 1 ? length : status_set(dialog, control, string.text);
}

void status_append(HWND dialog, int control, const WCHAR* text) {
    const WCHAR* line_end = TEXT("\r\n");
    const HWND item = GetDlgItem(dialog, control);
    size_t capacity = 0;
    WCHAR* whole = allocate_control_text(item, text_length(line_end) + text_length(text), &capacity);
    if (whole != nullptr) {
        append_text(whole, capacity, line_end);
        append_text(whole, capacity, text);
        SetWindowTextW(item, whole);
    }
    release_bytes(whole);
}

void status_append_ansi(HWND dialog, int control, const char* text) {
    WCHAR* wide = allocate_widened(text);
    if (wide != nullptr)
        status_append(dialog, control, wide);
    release_bytes(wide);
}

void status_append_string(HINSTANCE module, HWND dialog, int control, UINT string_id, int line_end) {
    LoadedString string;
    if (load_string(module, string_id, line_end, &string) >= 1)
        status_append(dialog, control, string.text);
}

void status_append_stage(HINSTANCE module, int index) {
    constexpr UINT stages[] = {IDS_INSTALLER, IDS_INSTALLING_MONITOR};
    if (index < 0 || static_cast<size_t>(index) >= std::size(stages))
        return;
    status_append_string(module, app.main_dialog, IDC_STATUS, stages[index], 0);
}

void list_clear(HWND dialog, int control) {
    const HWND item = GetDlgItem(dialog, control);
    while (SendMessageW(item, LB_DELETESTRING, 0, 0) > 0) {
    }
}

int list_add(HWND dialog, int control, const WCHAR* text) {
    return static_cast<int>(
        SendMessageW(GetDlgItem(dialog, control), LB_ADDSTRING, 0, reinterpret_cast<LPARAM>(text)));
}

void list_add_ansi(HWND dialog, int control, const char* text) {
    WCHAR* wide = allocate_widened(text);
    if (wide != nullptr)
        list_add(dialog, control, wide);
    release_bytes(wide);
}

int list_add_string(HINSTANCE module, HWND dialog, int control, UINT string_id) {
    LoadedString string;
    const int length = load_string(module, string_id, 0, &string);
    return length < 1 ? length : list_add(dialog, control, string.text);
}

int show_control(HWND dialog, int control, int enable, int show) {
    const HWND item = GetDlgItem(dialog, control);
    EnableWindow(item, enable);
    return ShowWindow(item, show);
}

int control_get_text(HWND dialog, int control, WCHAR* out, int size) {
    return GetWindowTextW(GetDlgItem(dialog, control), out, size);
}

void control_get_ansi(HWND dialog, int control, char* out, int size) {
    if (size <= 0)
        return;
    size_t capacity = 0;
    WCHAR* text = allocate_control_text(GetDlgItem(dialog, control), 0, &capacity);
    const size_t bytes = static_cast<size_t>(size);
    char* narrowed = static_cast<char*>(allocate_bytes(bytes + 1));
    if (text != nullptr && narrowed != nullptr) {
        narrow(narrowed, bytes + 1, text);
        for (size_t i = 0; narrowed[i] != 0; ++i)
            out[i] = narrowed[i];
    }
    release_bytes(narrowed);
    release_bytes(text);
}

void set_control_string(HINSTANCE module, HWND dialog, UINT string_id, int control) {
    LoadedString string;
    if (load_string(module, string_id, 0, &string) < 1)
        log_failure(TEXT("LoadString fail %d\r\n"), string_id);
    else
        SetDlgItemTextW(dialog, control, string.text);
}

void apply_dialog_texts(HINSTANCE module, HWND dialog, const TextPair* table) {
    for (; table->string_id != 0 && table->control_id != 0; ++table)
        set_control_string(module, dialog, table->string_id, table->control_id);
}

int center_dialog(HWND dialog) {
    HWND reference = GetParent(dialog);
    if (reference == nullptr)
        reference = GetDesktopWindow();
    if (reference == nullptr)
        return 0;
    RECT own = {};
    RECT around = {};
    GetWindowRect(dialog, &own);
    GetWindowRect(reference, &around);
    const int width = own.right - own.left;
    const int height = own.bottom - own.top;
    const int x = (around.right - around.left - width) / 2 + around.left;
    const int y = (around.bottom - around.top - height) / 2 + around.top;
    const int screen_width = GetSystemMetrics(SM_CXSCREEN);
    const int screen_height = GetSystemMetrics(SM_CYSCREEN);
    MoveWindow(dialog, clamp_to_screen(x, width, screen_width), clamp_to_screen(y, height, screen_height),
               width, height, TRUE);
    return 1;
}
