#include "acceptance/pilot/window_text.h"

#include <iterator>

namespace pilot {
namespace {

constexpr UINT answer_time_ms = 250;

LPARAM buffer_of(std::wstring& text) {
    return reinterpret_cast<LPARAM>(text.data());
}

} // namespace

std::string to_utf8(const std::wstring& text) {
    const int length = static_cast<int>(text.size());
    const int size = WideCharToMultiByte(CP_UTF8, 0, text.data(), length, nullptr, 0, nullptr, nullptr);
    std::string utf8(static_cast<std::size_t>(size), '\0');
    WideCharToMultiByte(CP_UTF8, 0, text.data(), length, utf8.data(), size, nullptr, nullptr);
    return utf8;
}

std::wstring to_wide(const std::string& utf8) {
    const int length = static_cast<int>(utf8.size());
    const int size = MultiByteToWideChar(CP_UTF8, 0, utf8.data(), length, nullptr, 0);
    std::wstring text(static_cast<std::size_t>(size), L'\0');
    MultiByteToWideChar(CP_UTF8, 0, utf8.data(), length, text.data(), size);
    return text;
}

std::optional<LRESULT> ask(HWND window, UINT message, WPARAM wparam, LPARAM lparam) {
    DWORD_PTR answer = 0;
    if (SendMessageTimeoutW(window, message, wparam, lparam, SMTO_ABORTIFHUNG, answer_time_ms, &answer) == 0)
        return {};
    return static_cast<LRESULT>(answer);
}

std::optional<std::string> text_of(HWND window) {
    const std::optional<LRESULT> length = ask(window, WM_GETTEXTLENGTH);
    if (!length || *length < 0)
        return {};
    std::wstring text(static_cast<std::size_t>(*length) + 1, L'\0');
    const std::optional<LRESULT> copied = ask(window, WM_GETTEXT, text.size(), buffer_of(text));
    if (!copied || *copied < 0)
        return {};
    text.resize(static_cast<std::size_t>(*copied));
    return to_utf8(text);
}

std::optional<std::string> row_of(HWND list, int row) {
    const WPARAM index = static_cast<WPARAM>(row);
    const std::optional<LRESULT> length = ask(list, LB_GETTEXTLEN, index);
    if (!length || *length < 0)
        return {};
    std::wstring text(static_cast<std::size_t>(*length) + 1, L'\0');
    const std::optional<LRESULT> copied = ask(list, LB_GETTEXT, index, buffer_of(text));
    if (!copied || *copied < 0)
        return {};
    text.resize(static_cast<std::size_t>(*copied));
    return to_utf8(text);
}

std::wstring class_of(HWND window) {
    wchar_t name[64] = {};
    GetClassNameW(window, name, static_cast<int>(std::size(name)));
    return name;
}

} // namespace pilot
