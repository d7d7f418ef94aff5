// Driver packages, with the driver store in real files. The results are HRESULTs.
#include "machine/driver_store.h"

#include "stand_in.h"

#include <filesystem>
#include <fstream>
#include <sstream>

using stand_in::Call;
using stand_in::model_text;
using stand_in::shown;

namespace {

namespace fs = std::filesystem;

class StoreFiles : public platform::PackageFiles {
public:
    std::optional<std::string> read(const std::u16string& path) override {
        std::ifstream file(fs::path(path), std::ios::binary);
        std::ostringstream bytes;
        bytes << file.rdbuf();
        return file ? std::optional(bytes.str()) : std::nullopt;
    }

    bool write(const std::u16string& path, const std::string& bytes) override {
        const fs::path place(path);
        std::error_code error;
        fs::create_directories(place.parent_path(), error);
        std::ofstream file(place, std::ios::binary);
        file.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
        file.close();
        return static_cast<bool>(file);
    }

    bool remove_folder(const std::u16string& path) override {
        std::error_code error;
        fs::remove_all(fs::path(path), error);
        return !error;
    }

    std::u16string from_ansi(std::string_view bytes) override { return stand_in::ansi_text(bytes); }
};

HRESULT as_result(std::uint32_t code) {
    return static_cast<HRESULT>(code);
}

// The kept error as a result; a fault may name either kind.
HRESULT kept_result(const Call& call) {
    return as_result(call.error() < 0x10000 ? platform::result_of(call.error()) : call.error());
}

// Saves the machine behind a step that went well.
HRESULT end(Call& call, std::uint32_t result) {
    return result != 0 || call.save() ? as_result(result) : kept_result(call);
}

std::u16string environment_or_own(const wchar_t* environment) {
    return environment == nullptr ? std::u16string(platform::own_environment) : model_text(environment);
}

} // namespace

extern "C" HRESULT WINAPI UploadPrinterDriverPackageW(LPCWSTR server, LPCWSTR inf_path, LPCWSTR environment,
                                                      DWORD flags, HWND, LPWSTR store_path,
                                                      PULONG characters) {
    Call call("UploadPrinterDriverPackageW", shown(inf_path));
    if (call.fails(ERROR_ACCESS_DENIED) || !call.local(server))
        return kept_result(call);
    if (inf_path == nullptr || store_path == nullptr || characters == nullptr || (flags & ~7u) != 0)
        return E_INVALIDARG;
    if (call.spooler_away())
        return kept_result(call);
    StoreFiles files;
    const std::u16string inf = model_text(inf_path);
    const std::u16string processor = environment_or_own(environment);
    const std::u16string store = call.machine().folders.windows + u"\\System32\\DriverStore\\FileRepository";
    std::u16string stored;
    const std::uint32_t result =
        platform::upload_package(call.state(), files, {inf, processor, flags, store, *characters}, stored);
    if (result == 0)
        std::memcpy(store_path, stored.c_str(), (stored.size() + 1) * sizeof(wchar_t));
    if (!stored.empty())
        *characters = static_cast<ULONG>(stored.size() + 1);
    return end(call, result);
}

// The compiler's headers declare this call nowhere.
extern "C" HRESULT WINAPI InstallPrinterDriverFromPackageW(LPCWSTR server, LPCWSTR inf_path,
                                                           LPCWSTR driver_name, LPCWSTR environment,
                                                           DWORD flags);

extern "C" HRESULT WINAPI InstallPrinterDriverFromPackageW(LPCWSTR server, LPCWSTR inf_path,
                                                           LPCWSTR driver_name, LPCWSTR environment,
                                                           DWORD flags) {
    Call call("InstallPrinterDriverFromPackageW", shown(driver_name));
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
    StoreFiles files;
    return end(call,
               platform::install_from_package(call.state(), files, model_text(inf_path),
                                              model_text(driver_name), environment_or_own(environment)));
}

extern "C" HRESULT WINAPI DeletePrinterDriverPackageW(LPCWSTR server, LPCWSTR inf_path, LPCWSTR environment) {
    Call call("DeletePrinterDriverPackageW", shown(inf_path));
    if (call.fails(ERROR_ACCESS_DENIED) || !call.local(server))
        return kept_result(call);
    if (inf_path == nullptr)
        return E_INVALIDARG;
    if (call.spooler_away())
        return kept_result(call);
    StoreFiles files;
    return end(call, platform::delete_package(call.state(), files, model_text(inf_path),
                                              environment_or_own(environment)));
}
