// Dialog 105, the whole face of the program.
#pragma once

#include "support/dialog_text.h"

#include <windows.h>

// Which string each control of the dialog gets.
extern const TextPair main_dialog_texts[];

// Gives 1 for what it handled, else 0. The dialog goes out of sight on Cancel, which is refused while an
// install is under way; it isn't destroyed.
INT_PTR CALLBACK main_dialog_proc(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam);

// Turns the choice of a connection into the list of network printers. Returns after a whole network search.
void enter_network_mode();

// Empties the list and the table behind it; the records' texts stay until they are overwritten.
void clear_candidates();
