#include "support/system_text.h"

WCHAR* system_text(DWORD code) {
    constexpr DWORD users_default_language = 0x400;
    WCHAR* text = nullptr;
    // With FORMAT_MESSAGE_ALLOCATE_BUFFER the buffer argument is the place of a pointer.
    if (FormatMessageW(FORMAT_MESSAGE_ALLOCATE_BUFFER | FORMAT_MESSAGE_FROM_SYSTEM, nullptr, code,
                       users_default_language, reinterpret_cast<LPWSTR>(&text), 0, nullptr) == 0)
        return nullptr;
    return text;
}
