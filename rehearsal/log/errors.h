// The system's error codes that an install log can hold: Win32 and socket codes, and results (HRESULT), with
// their names and values as the platform's headers publish them.
#pragma once

#include <cstdint>
#include <span>
#include <string>

namespace rehearsal::logs {

struct ErrorCode {
    std::uint32_t code;
    const char* name;
    const char* meaning; // one sentence
    const char* remedy;  // what to do about it in this program's setting; empty where only the step knows
};

// All that are known, in the order of their codes.
std::span<const ErrorCode> error_codes();

// What a code in a line means. A result that wraps a Win32 code, or a set-up code in its other form, is found
// by the code that it wraps.
struct NamedError {
    std::uint32_t code = 0;
    bool is_result = false; // an HRESULT or set-up code, which people write in hexadecimal
    std::string name;       // empty for a code that isn't known
    std::string meaning;
    std::string remedy;
};

NamedError name_error(std::uint32_t code);

// "ERROR_ACCESS_DENIED (5)", "E_FAIL (0x80004005)", "error 4711" for one without a name.
std::string shown_error(const NamedError& error);

// All codes as a Markdown table.
std::string errors_as_markdown();

} // namespace rehearsal::logs
