// The list of printers and the table behind it: row i of list box 1003 shows record i.
#pragma once

#include <windows.h>

// To be called once, when dialog 105 has been made: gives its list a scroll bar that shows while printers are
// out of sight. Where that fails the list stays as it is.
void make_list_scroll(HWND dialog);

// Searches the network for printers of the model (8-bit text, as the INF spells it) and adds what is found.
// Gives find_slp's result.
int search_printers(const char* model);

// Adds a printer on the network, found or typed, unless its address is in the list already or the table is
// full. Address and name are 8-bit text.
void add_candidate(const char* address, const char* name);

// 1 when a record has exactly this address, else 0.
int candidate_known(const char* address);

// Adds a USB row without looking for duplicates; nothing is added to a full table. A port over 255 characters
// is refused, a name is cut at 99.
void add_usb_candidate(const WCHAR* port, const WCHAR* name);
