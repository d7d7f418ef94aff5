#include "spooler_calls/spooler_call.h"

namespace platform {

BOOL SpoolerCall::end(std::uint32_t error) {
    if (error != 0)
        return fail(error);
    return save() ? TRUE : FALSE;
}

PrintQueue* SpoolerCall::queue(HANDLE handle, std::uint32_t access) {
    const auto opened = find(handle, false);
    if (!opened)
        return nullptr;
    PrintQueue* const found = find_queue(state(), opened->name);
    if (found == nullptr)
        fail(ERROR_PRINTER_DELETED);
    else if ((opened->access & access) != access)
        fail(ERROR_ACCESS_DENIED);
    return error_ == 0 ? found : nullptr;
}

bool SpoolerCall::local(const WCHAR* server) {
    if (!given(server))
        return true;
    refuse("only the local spooler is there");
    return false;
}

bool SpoolerCall::good_enumeration(const BYTE* buffer, DWORD size, const DWORD* needed,
                                   const DWORD* returned) {
    if (needed == nullptr || returned == nullptr)
        fail(RPC_X_NULL_REF_POINTER);
    else if (buffer == nullptr && size != 0)
        fail(ERROR_INVALID_USER_BUFFER);
    return error_ == 0;
}

std::u16string model_text(const WCHAR* text) {
    if (text == nullptr)
        return {};
    const std::basic_string_view<WCHAR> whole = text;
    return {whole.begin(), whole.end()};
}

std::u16string environment_or_own(const SpoolerState& state, const WCHAR* environment) {
    return environment == nullptr ? state.environment : model_text(environment);
}

std::string shown_text(const WCHAR* text) {
    return text == nullptr ? "(null)" : to_utf8(model_text(text));
}

bool given(const WCHAR* text) {
    return text != nullptr && *text != 0;
}

} // namespace platform
