// What the dialogs share: one message of a nested loop, the end of a loop, the wait cursor.
#pragma once

#include <windows.h>

// Takes one message and hands it on, dialog keys of the main dialog included. 0 when the loop has to end: the
// queue is closed or can't be read.
int pump_message();

// To be called after the flag that a loop tests was set: a message that was sent doesn't return from
// GetMessageW, and the loop would look at its flag only after the next input.
void wake_loop(HWND dialog);

// WM_SETCURSOR: the wait cursor while the worker runs. 1 when it was set.
INT_PTR on_set_cursor(HWND dialog);
