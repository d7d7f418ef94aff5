#include "calls/run/session.h"
#include "calls/text/filled_text.h"

#include <windows.h>

#include <algorithm>
#include <cstring>

namespace {

struct SystemText {
    DWORD code;
    const char16_t* text; // without the line end that every one has
};

// The system's published texts in English. A code that isn't here has no text.
constexpr SystemText texts[] = {
    {0, u"The operation completed successfully."},
    {1, u"Incorrect function."},
    {2, u"The system cannot find the file specified."},
    {3, u"The system cannot find the path specified."},
    {5, u"Access is denied."},
    {6, u"The handle is invalid."},
    {8, u"Not enough memory resources are available to process this command."},
    {13, u"The data is invalid."},
    {14, u"Not enough memory resources are available to complete this operation."},
    {18, u"There are no more files."},
    {19, u"The media is write protected."},
    {21, u"The device is not ready."},
    {31, u"A device attached to the system is not functioning."},
    {32, u"The process cannot access the file because it is being used by another process."},
    {50, u"The request is not supported."},
    {80, u"The file exists."},
    {87, u"The parameter is incorrect."},
    {112, u"There is not enough space on the disk."},
    {120, u"This function is not supported on this system."},
    {122, u"The data area passed to a system call is too small."},
    {123, u"The filename, directory name, or volume label syntax is incorrect."},
    {126, u"The specified module could not be found."},
    {127, u"The specified procedure could not be found."},
    {170, u"The requested resource is in use."},
    {183, u"Cannot create a file when that file already exists."},
    {193, u"%1 is not a valid Win32 application."},
    {206, u"The filename or extension is too long."},
    {234, u"More data is available."},
    {259, u"No more data is available."},
    {740, u"The requested operation requires elevation."},
    {1051, u"A stop control has been sent to a service that other running services are dependent on."},
    {1052, u"The requested control is not valid for this service."},
    {1053, u"The service did not respond to the start or control request in a timely fashion."},
    {1056, u"An instance of the service is already running."},
    {1060, u"The specified service does not exist as an installed service."},
    {1062, u"The service has not been started."},
    {1223, u"The operation was canceled by the user."},
    {1722, u"The RPC server is unavailable."},
    {1753, u"There are no more endpoints available from the endpoint mapper."},
    {1795, u"The specified printer driver is already installed."},
    {1796, u"The specified port is unknown."},
    {1797, u"The printer driver is unknown."},
    {1798, u"The print processor is unknown."},
    {1801, u"The printer name is invalid."},
    {1802, u"The printer already exists."},
    {1804, u"The specified datatype is invalid."},
    {1805, u"The environment specified is invalid."},
    {1906, u"The state of the printer is invalid."},
    {3001, u"The specified printer driver is currently in use."},
    {3006, u"The specified print monitor has already been installed."},
    {3007, u"The specified print monitor does not have the required functions."},
    {3008, u"The specified print monitor is currently in use."},
    {3009, u"The requested operation is not allowed when there are jobs queued to the printer."},
    {3015, u"The specified printer driver package is currently in use."},
    {3016, u"Unable to find a core driver package that is required by the printer driver package."},
    {0x80004001u, u"Not implemented"},
    {0x80004002u, u"No such interface supported"},
    {0x80004003u, u"Invalid pointer"},
    {0x80004005u, u"Unspecified error"},
    {0x80070057u, u"The parameter is incorrect."},
    {0x80040154u, u"Class not registered"},
    {0xE000022Fu, u"The third-party INF does not contain digital signature information."},
    {0xE0000247u, u"A problem was encountered while attempting to add the driver to the store."},
};

const char16_t* find_text(DWORD code) {
    for (const SystemText& text : texts)
        if (text.code == code)
            return text.text;
    // A result that only wraps an error code has that code's text.
    return (code & 0xffff0000u) == 0x80070000u ? find_text(code & 0xffffu) : nullptr;
}

// The system's languages are English and the user's own, which is taken to be English too.
bool has_language(DWORD language) {
    return language == 0 || language == 0x400 || language == 0x800 || language == 1033;
}

DWORD no_message(DWORD error) {
    platform::set_last_error(error);
    return 0;
}

DWORD give_allocated(std::u16string_view text, LPWSTR* out, DWORD least) {
    const std::size_t characters = std::max(text.size() + 1, std::size_t{least});
    void* block = platform::session().memory.allocate(characters * sizeof(WCHAR), "LocalAlloc", false);
    if (block == nullptr)
        return no_message(ERROR_NOT_ENOUGH_MEMORY);
    *out = static_cast<LPWSTR>(block);
    return platform::fill_text(text, *out, static_cast<DWORD>(characters));
}

} // namespace

DWORD FormatMessageW(DWORD flags, LPCVOID, DWORD code, DWORD language, LPWSTR text, DWORD size,
                     void* arguments) {
    platform::Call call("FormatMessageW", std::to_string(code) + " language " + std::to_string(language));
    if (call.fails(ERROR_MR_MID_NOT_FOUND))
        return 0;
    constexpr DWORD known =
        FORMAT_MESSAGE_ALLOCATE_BUFFER | FORMAT_MESSAGE_IGNORE_INSERTS | FORMAT_MESSAGE_FROM_SYSTEM;
    if ((flags & FORMAT_MESSAGE_FROM_SYSTEM) == 0 || (flags & ~known) != 0 || arguments != nullptr)
        call.refuse("flags " + std::to_string(flags) + ": only the system's own texts are there");
    if (text == nullptr)
        return no_message(ERROR_INVALID_PARAMETER);
    if (!has_language(language))
        return no_message(ERROR_RESOURCE_LANG_NOT_FOUND);
    const char16_t* found = find_text(code);
    if (found == nullptr)
        return no_message(ERROR_MR_MID_NOT_FOUND);
    const std::u16string message = std::u16string(found) + u"\r\n";
    if ((flags & FORMAT_MESSAGE_IGNORE_INSERTS) == 0 && message.find(u'%') != std::u16string::npos)
        return no_message(ERROR_INVALID_PARAMETER); // an insert that nobody gave
    if ((flags & FORMAT_MESSAGE_ALLOCATE_BUFFER) != 0)
        return give_allocated(message, reinterpret_cast<LPWSTR*>(text), size);
    if (size <= message.size()) {
        platform::poison_text(text, size);
        return no_message(ERROR_INSUFFICIENT_BUFFER);
    }
    return platform::fill_text(message, text, size);
}
