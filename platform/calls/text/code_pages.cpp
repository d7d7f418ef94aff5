#include "calls/run/session.h"
#include "calls/text/code_page_table.h"
#include "machine/text.h"

#include <windows.h>

#include <algorithm>
#include <cstring>
#include <string>

namespace {

using platform::CodePageTable;
using platform::session;

UINT resolved(UINT code_page) {
    return code_page == CP_ACP ? session().machine.code_page : code_page;
}

const CodePageTable& table_of(const platform::Call& call, UINT code_page) {
    const CodePageTable* table = platform::code_page_table(code_page);
    if (table == nullptr)
        call.refuse("code page " + std::to_string(code_page));
    return *table;
}

// A text of one width on its way into the other, and whether all of it had a counterpart.
struct Widened {
    std::u16string text;
    bool good = true;
};

struct Narrowed {
    std::string text;
    bool good = true;
};

// A byte without a character of its own is read as one of these.
bool stands_for_nothing(char16_t character) {
    return character >= 0xF8F0 && character <= 0xF8FF;
}

Widened widen_by_table(const CodePageTable& table, std::string_view bytes) {
    Widened result;
    for (std::size_t place = 0; place < bytes.size(); ++place) {
        const auto byte = static_cast<std::uint8_t>(bytes[place]);
        if (!table.lead[byte]) {
            result.good = result.good && !stands_for_nothing(table.single[byte]);
            result.text += table.single[byte];
            continue;
        }
        const auto trail =
            place + 1 < bytes.size() ? static_cast<std::uint8_t>(bytes[place + 1]) : std::uint8_t{0};
        const char16_t character = table.pairs[byte * 256u + trail];
        result.good = result.good && character != 0;
        result.text += character != 0 ? character : table.unknown;
        if (trail != 0)
            ++place; // a terminator is never taken as the second half of a character
    }
    return result;
}

// `map` is one of the table's two from characters to bytes.
Narrowed narrow_by_map(const std::vector<std::uint16_t>& map, std::u16string_view text,
                       std::string_view default_character) {
    Narrowed result;
    for (const char16_t character : text) {
        const std::uint16_t bytes = map[character];
        if (bytes == 0 && character != 0) {
            result.good = false;
            result.text += default_character; // each half of a surrogate pair gets one
        } else {
            if (bytes > 0xFF)
                result.text += static_cast<char>(bytes >> 8);
            result.text += static_cast<char>(bytes & 0xFF);
        }
    }
    return result;
}

Widened widen_utf8(std::string_view bytes) {
    Widened result{platform::to_utf16(bytes)};
    // Bad bytes come out as U+FFFD, and then the way back doesn't give them again.
    result.good = platform::to_utf8(result.text) == bytes;
    return result;
}

Narrowed narrow_utf8(std::u16string_view text) {
    Narrowed result{platform::to_utf8(text)};
    result.good = platform::to_utf16(result.text) == text;
    return result;
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
    const Widened out = page == CP_UTF8 ? widen_utf8(in) : widen_by_table(table_of(call, page), in);
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
    if (page == CP_UTF8) {
        if (default_character != nullptr || used_default != nullptr)
            return platform::failed(ERROR_INVALID_PARAMETER);
        const Narrowed out = narrow_utf8(in);
        if (!out.good && (flags & WC_ERR_INVALID_CHARS) != 0)
            return platform::failed(ERROR_NO_UNICODE_TRANSLATION);
        return deliver(out.text, bytes, size);
    }
    const CodePageTable& table = table_of(call, page);
    const Narrowed out = narrow_by_map((flags & WC_NO_BEST_FIT_CHARS) != 0 ? table.bytes : table.nearest, in,
                                       default_character == nullptr ? "?" : default_character);
    if (used_default != nullptr)
        *used_default = out.good ? FALSE : TRUE;
    return deliver(out.text, bytes, size);
}

BOOL IsDBCSLeadByteEx(UINT code_page, BYTE byte) {
    platform::Call call("IsDBCSLeadByteEx");
    const UINT page = resolved(code_page);
    return page != CP_UTF8 && table_of(call, page).lead[byte] ? TRUE : FALSE;
}

BOOL IsDBCSLeadByte(BYTE byte) {
    platform::Call call("IsDBCSLeadByte");
    const UINT page = session().machine.code_page;
    return page != CP_UTF8 && table_of(call, page).lead[byte] ? TRUE : FALSE;
}

UINT GetACP() {
    platform::Call call("GetACP");
    return session().machine.code_page;
}
