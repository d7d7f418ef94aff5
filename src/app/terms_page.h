// Dialog 101: the agreement text and its acceptance.
#pragma once

#include <windows.h>

// What is read of an agreement file, its two-byte mark included, in bytes.
constexpr DWORD longest_terms = 32764;

// Shows the page in the run's language with the main dialog disabled, returns when it was closed, and tells
// the main dialog by message 100. Acceptance is left in app.terms_accepted.
void show_terms_page();

INT_PTR CALLBACK terms_dialog_proc(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam);
