// Messages to windows, whoever sends them. None of these may be called with the run's lock held.
#pragma once

#include "calls/windows/window_model.h"

namespace platform {

// Through the window's procedure. From another thread than the main one the message waits until the main
// thread asks for messages; 0 when it never will. 0 and ERROR_INVALID_WINDOW_HANDLE for a window that doesn't
// exist.
LRESULT send_message(HWND window, UINT message, WPARAM wparam, LPARAM lparam);

// False when the window doesn't exist. Null posts to the main thread itself.
bool post_message(HWND window, UINT message, WPARAM wparam, LPARAM lparam, bool input);

// Takes the next message, serving sent ones; waits for the other threads and asks the user when there is
// none. False for WM_QUIT.
bool take_message(const Call& call, MSG& message);
// The same without a wait or the user; false when there is none.
bool take_waiting_message(MSG& message, bool remove);

void translate(const MSG& message);
LRESULT dispatch(const MSG& message);

// What IsDialogMessageW does: false, and nothing done, when the message isn't for the dialog or its controls.
bool handle_dialog_message(HWND dialog, const MSG& message);

// Ends the call for any thread but the main one, which owns the windows and their messages.
void require_main_thread(const Call& call);

// The procedures of the window kinds, on the main thread.
LRESULT dialog_procedure(HWND dialog, UINT message, WPARAM wparam, LPARAM lparam);
LRESULT button_procedure(HWND button, UINT message, WPARAM wparam, LPARAM lparam);
LRESULT edit_procedure(HWND edit, UINT message, WPARAM wparam, LPARAM lparam);
LRESULT list_procedure(HWND list, UINT message, WPARAM wparam, LPARAM lparam);
LRESULT default_procedure(HWND window, UINT message, WPARAM wparam, LPARAM lparam);

// WM_COMMAND from a control to its dialog.
void notify_dialog(HWND control, WORD notification);

// The leftmost column with which a row of a list is in sight: the present one where that does.
int column_showing(const Window& list, int row);
// Where a row of a list then lies in its client area; what a click there hits.
POINT row_place(const Window& list, int row, int left_column);

} // namespace platform
