// Dialog 104: a printer's address, typed.
#pragma once

#include <windows.h>

// Shows the dialog and returns when it was closed. A valid address becomes a row of the list under the name
// "Test", in its normal form; anything else ends in a warning box.
void ask_printer_address();

INT_PTR CALLBACK ip_dialog_proc(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam);

// Shows the same template as a modal dialog. On OK up to 255 characters of what was typed go to `out` of
// `size` bytes, unchecked and as 8-bit text, and the result is 1; on Cancel it is 0 and `out` is untouched.
int ask_address_text(char* out, DWORD size);
