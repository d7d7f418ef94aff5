// Small helpers that load a string by its id and put it into a control, a list or a message box. Strings are
// loaded with a limit of 260 characters; below 1 character a string counts as missing.
#pragma once

#include <windows.h>

#include <cstddef>

// A pair of a text table; the first with a zero in either half ends the table.
struct TextPair {
    WORD string_id;
    WORD control_id;
};

// Message boxes without owner, under app.message_caption. All give 1. One that can't be shown leaves a line
// in the log.
int message_box_text(const WCHAR* text, UINT flags);                  // at most 513 characters
int message_box_string(HINSTANCE module, UINT string_id, UINT flags); // a missing string shows nothing
int message_box_last_error(UINT string_id); // the string is a format with one number; nothing when app.silent

// Texts of controls.
int status_set(HWND dialog, int control, const WCHAR* text); // SetWindowTextW's result
void status_set_ansi(HWND dialog, int control, const char* text);
// status_set's result, or LoadStringW's for a missing string, which leaves the control as it was.
int status_set_string(HINSTANCE module, HWND dialog, int control, UINT string_id, int line_end);
// Puts a line end and then the text behind what is there; without memory nothing changes.
void status_append(HWND dialog, int control, const WCHAR* text);
void status_append_ansi(HWND dialog, int control, const char* text);
void status_append_string(HINSTANCE module, HWND dialog, int control, UINT string_id, int line_end);
// Index 0 is string 411 and 1 is string 417, appended to control 1009 of the main dialog.
void status_append_stage(HINSTANCE module, int index);

// List boxes. The adding routines give LB_ADDSTRING's result.
void list_clear(HWND dialog, int control);
int list_add(HWND dialog, int control, const WCHAR* text);
void list_add_ansi(HWND dialog, int control, const char* text);
int list_add_string(HINSTANCE module, HWND dialog, int control, UINT string_id);

// Controls.
int show_control(HWND dialog, int control, int enable, int show);     // ShowWindow's result
int control_get_text(HWND dialog, int control, WCHAR* out, int size); // size in characters
// Size in bytes. No terminator is written, so the caller clears `out` first.
void control_get_ansi(HWND dialog, int control, char* out, int size);
void set_control_string(HINSTANCE module, HWND dialog, UINT string_id, int control);
void apply_dialog_texts(HINSTANCE module, HWND dialog, const TextPair* table);
int center_dialog(HWND dialog); // 1, or 0 when there is neither parent nor desktop window
