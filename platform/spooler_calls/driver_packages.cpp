// Driver packages. The results are HRESULTs.
#include "spooler_calls/spooler_call.h"

#include <cstring>

using platform::environment_or_own;
using platform::model_text;
using platform::shown_text;
using platform::SpoolerCall;

namespace {

HRESULT as_result(std::uint32_t code) {
    return static_cast<HRESULT>(code);
}

// The kept error as a result. A fault may name either kind; 1 is S_FALSE, a success that isn't the usual one
// and behind which nothing was done.
HRESULT kept_result(const SpoolerCall& call) {
    const bool is_result = call.error() == std::uint32_t{S_FALSE} || call.error() >= 0x10000;
    return as_result(is_result ? call.error() : platform::result_of(call.error()));
}

// Saves the machine behind a step that went well.
HRESULT end(SpoolerCall& call, std::uint32_t result) {
    return result != 0 || call.save() ? as_result(result) : kept_result(call);
}

} // namespace

HRESULT WINAPI UploadPrinterDriverPackageW(LPCWSTR server, LPCWSTR inf_path, LPCWSTR environment, DWORD flags,
                                           HWND, LPWSTR store_path, PULONG characters) {
    SpoolerCall call("UploadPrinterDriverPackageW", shown_text(inf_path));
    if (call.fails(ERROR_ACCESS_DENIED) || !call.local(server))
        return kept_result(call);
    if (inf_path == nullptr || store_path == nullptr || characters == nullptr || (flags & ~7u) != 0)
        return E_INVALIDARG;
    if (call.spooler_away())
        return kept_result(call);
    const std::u16string inf = model_text(inf_path);
    const std::u16string processor = environment_or_own(call.state(), environment);
    platform::SpoolerState& state = call.state();
    const std::u16string store = call.machine().folders.windows + u"\\System32\\DriverStore\\FileRepository";
    std::u16string stored;
    const std::uint32_t result = platform::upload_package(
        state, *platform::package_files(), {inf, processor, flags, store, *characters}, stored);
    if (result == 0)
        std::memcpy(store_path, stored.c_str(), (stored.size() + 1) * sizeof(WCHAR));
    if (!stored.empty())
        *characters = static_cast<ULONG>(stored.size() + 1);
    return end(call, result);
}

// The platform's headers declare this call nowhere; whoever uses it declares it as it is here.
extern "C" HRESULT WINAPI InstallPrinterDriverFromPackageW(LPCWSTR server, LPCWSTR inf_path,
                                                           LPCWSTR driver_name, LPCWSTR environment,
                                                           DWORD flags);

HRESULT WINAPI InstallPrinterDriverFromPackageW(LPCWSTR server, LPCWSTR inf_path, LPCWSTR driver_name,
                                                LPCWSTR environment, DWORD flags) {
    SpoolerCall call("InstallPrinterDriverFromPackageW", shown_text(driver_name));
    if (call.fails(ERROR_ACCESS_DENIED) || !call.local(server))
        return kept_result(call);
    if (driver_name == nullptr || (flags & ~1u) != 0)
        return E_INVALIDARG;
    if (inf_path == nullptr) {
        call.refuse("drivers from the system's own packages aren't modelled");
        return kept_result(call);
    }
    if (call.spooler_away())
        return kept_result(call);
    return end(call, platform::install_from_package(call.state(), *platform::package_files(),
                                                    model_text(inf_path), model_text(driver_name),
                                                    environment_or_own(call.state(), environment)));
}

HRESULT WINAPI DeletePrinterDriverPackageW(LPCWSTR server, LPCWSTR inf_path, LPCWSTR environment) {
    SpoolerCall call("DeletePrinterDriverPackageW", shown_text(inf_path));
    if (call.fails(ERROR_ACCESS_DENIED) || !call.local(server))
        return kept_result(call);
    if (inf_path == nullptr)
        return E_INVALIDARG;
    if (call.spooler_away())
        return kept_result(call);
    return end(call, platform::delete_package(call.state(), *platform::package_files(), model_text(inf_path),
                                              environment_or_own(call.state(), environment)));
}
