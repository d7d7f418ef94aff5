#include "calls/run/session.h"
#include "calls/text/code_page_text.h"

#include <windows.h>

#include <algorithm>
#include <cstring>
#include <string>

namespace {

using platform::session;

UINT resolved(UINT code_page) {
    return code_page == CP_ACP ? session().machine.code_page : code_page;
}

// Null for UTF-8.
const platform::CodePageTable* table_of(const platform::Call& call, UINT code_page) {
    const platform::CodePageTable* const table = platform::code_page_table(code_page);
    if (table == nullptr && code_page != CP_UTF8)
        call.refuse("code page " + std::to_string(code_page));
    return table;
}

bool leads(const platform::CodePageTable* table, BYTE byte) {
    return table != nullptr && table->lead[byte];
}

// Puts the text into the caller's buffer and gives its length; a size of 0 asks for it.
template<class Character>
int deliver(const std::basic_string<Character>& text, Character* out, int size) {
    const auto capacity = static_cast<std::size_t>(size);
    if (size == 0)
        return static_cast<int>(text.size());
    if (capacity < text.size()) {
        std::memset(out, 0xCD, capacity * sizeof(Character));
        return platform::failed(ERROR_INSUFFICIENT_BUFFER);
    }
    text.copy(out, text.size());
    return static_cast<int>(text.size());
}

bool good_arguments(const void* in, int length, const void* out, int size) {
    return in != nullptr && length != 0 && length >= -1 && size >= 0 && (out != nullptr || size == 0) &&
           in != out;
}

} // namespace

int MultiByteToWideChar(UINT code_page, DWORD flags, LPCSTR bytes, int byte_count, LPWSTR text, int size) {
    platform::Call call("MultiByteToWideChar");
    if (call.fails(ERROR_NO_UNICODE_TRANSLATION))
        return 0;
    if (!good_arguments(bytes, byte_count, text, size))
        return platform::failed(ERROR_INVALID_PARAMETER);
    const UINT page = resolved(code_page);
    const DWORD allowed = page == CP_UTF8 ? MB_ERR_INVALID_CHARS : (MB_ERR_INVALID_CHARS | MB_PRECOMPOSED);
    if ((flags & ~allowed) != 0)
        return platform::failed(ERROR_INVALID_FLAGS);
    const std::string_view in(bytes,
                              byte_count < 0 ? std::strlen(bytes) + 1 : static_cast<std::size_t>(byte_count));
    thread_local platform::WideText out;
    platform::widen(table_of(call, page), in, out);
    if (!out.good && (flags & MB_ERR_INVALID_CHARS) != 0)
        return platform::failed(ERROR_NO_UNICODE_TRANSLATION);
    return deliver(out.text, text, size);
}

int WideCharToMultiByte(UINT code_page, DWORD flags, LPCWSTR text, int length, LPSTR bytes, int size,
                        LPCSTR default_character, LPBOOL used_default) {
    platform::Call call("WideCharToMultiByte");
    if (call.fails(ERROR_INVALID_PARAMETER))
        return 0;
    if (!good_arguments(text, length, bytes, size))
        return platform::failed(ERROR_INVALID_PARAMETER);
    const std::u16string_view in(text, length < 0 ? std::char_traits<WCHAR>::length(text) + 1
                                                  : static_cast<std::size_t>(length));
    const UINT page = resolved(code_page);
    const DWORD allowed = page == CP_UTF8 ? WC_ERR_INVALID_CHARS : WC_NO_BEST_FIT_CHARS;
    if ((flags & ~allowed) != 0)
        return platform::failed(ERROR_INVALID_FLAGS);
    if (page == CP_UTF8 && (default_character != nullptr || used_default != nullptr))
        return platform::failed(ERROR_INVALID_PARAMETER);
    const platform::Fit fit =
        (flags & WC_NO_BEST_FIT_CHARS) != 0 ? platform::Fit::exact : platform::Fit::nearest;
    thread_local platform::NarrowText out;
    platform::narrow(table_of(call, page), in, fit, default_character == nullptr ? "?" : default_character,
                     out);
    if (!out.good && page == CP_UTF8 && (flags & WC_ERR_INVALID_CHARS) != 0)
        return platform::failed(ERROR_NO_UNICODE_TRANSLATION);
    if (used_default != nullptr)
        *used_default = out.good ? FALSE : TRUE;
    return deliver(out.text, bytes, size);
}

BOOL IsDBCSLeadByteEx(UINT code_page, BYTE byte) {
    platform::Call call("IsDBCSLeadByteEx");
    const UINT page = resolved(code_page);
    return leads(table_of(call, page), byte) ? TRUE : FALSE;
}

BOOL IsDBCSLeadByte(BYTE byte) {
    platform::Call call("IsDBCSLeadByte");
    const UINT page = session().machine.code_page;
    return leads(table_of(call, page), byte) ? TRUE : FALSE;
}

UINT GetACP() {
    platform::Call call("GetACP");
    return session().machine.code_page;
}
