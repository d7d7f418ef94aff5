#include "spooler/driver_package.h"

#include <winspool.h>

#include "state/app_state.h"
#include "support/install_log.h"
#include "support/platform_gaps.h"
#include "support/system_text.h"
#include "support/text.h"

#include <iterator>

namespace {

constexpr size_t line_capacity = 256;
constexpr HRESULT name_too_long =
    static_cast<HRESULT>(0x8007006F); // ERROR_BUFFER_OVERFLOW as a spooler's result

// The system's text comes with its own line end, which a cut would lose, so it is taken off and put back.
void log_refusal(const WCHAR* call, HRESULT code) {
    WCHAR* text = system_text(static_cast<DWORD>(code));
    size_t length = text_length(text);
    while (length > 0 && (text[length - 1] == '\r' || text[length - 1] == '\n'))
        text[--length] = 0;
    log_failure_within(line_capacity, TEXT("%s error %x %s\r\n"), call, code, text);
    LocalFree(text);
}

HRESULT upload_package(const WCHAR* inf_path, WCHAR* store_path, DWORD characters) {
    store_path[0] = 0;
    return UploadPrinterDriverPackageW(nullptr, inf_path, nullptr, UPDP_UPLOAD_ALWAYS, nullptr, store_path,
                                       &characters);
}

} // namespace

int install_driver_package(const char* driver_name, const WCHAR* inf_path) {
    log_text(inf_path);
    WCHAR name[256];
    if (!widen(name, std::size(name), driver_name)) {
        log_refusal(TEXT("InstallPrinterDriverFromPackage"), name_too_long);
        return 0;
    }
    WCHAR store_path[260];
    HRESULT result = upload_package(inf_path, store_path, static_cast<DWORD>(std::size(store_path)));
    if (result != 0) {
        log_refusal(TEXT("UploadPrinterDriverPackage"), result);
        return 0;
    }
    log_line(TEXT("Package uploaded:\r\n%s\r\n"), store_path);
    result = InstallPrinterDriverFromPackageW(nullptr, store_path, name, nullptr, 0);
    if (result != 0) {
        log_refusal(TEXT("InstallPrinterDriverFromPackage"), result);
        return 0;
    }
    log_line(TEXT("Printer Driver Installed\r\n"));
    return 1;
}
