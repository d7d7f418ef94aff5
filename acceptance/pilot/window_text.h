// Texts of another process's windows, and conversions between 16-bit text and UTF-8.
#pragma once

#include <windows.h>

#include <optional>
#include <string>

namespace pilot {

std::string to_utf8(const std::wstring& text);
std::wstring to_wide(const std::string& utf8);

// Sends the message and waits a short while for its answer; nothing when the window's thread is at work or
// the window is gone.
std::optional<LRESULT> ask(HWND window, UINT message, WPARAM wparam = 0, LPARAM lparam = 0);

// What the window itself says its text is. A window of another process keeps its controls' texts from
// GetWindowText.
std::optional<std::string> text_of(HWND window);

// The rows of a list box.
std::optional<std::string> row_of(HWND list, int row);

std::wstring class_of(HWND window);

} // namespace pilot
