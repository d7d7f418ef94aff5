#include "calls/files/disk.h"
#include "calls/files/paths.h"
#include "calls/spooler/spooler_handles.h"
#include "calls/text/ansi_text.h"
#include "machine/driver_store.h"
#include "machine/text.h"

#include <winspool.h>

#include <fstream>
#include <sstream>

namespace {

namespace fs = std::filesystem;

using platform::session;

constexpr std::size_t longest_store_path = 32767; // the store isn't bound to MAX_PATH

class MachineFiles : public platform::PackageFiles {
public:
    std::optional<std::string> read(const std::u16string& path) override {
        const platform::RealPath place = platform::real_path(path.c_str(), longest_store_path);
        if (place.error != 0 || !place.exists || place.folder)
            return std::nullopt;
        std::ifstream file(place.real, std::ios::binary);
        std::ostringstream bytes;
        bytes << file.rdbuf();
        return file ? std::optional(bytes.str()) : std::nullopt;
    }

    bool write(const std::u16string& path, const std::string& bytes) override {
        return make_folders(path) &&
               platform::write_file(platform::real_path(path.c_str(), longest_store_path), bytes) == 0;
    }

    bool remove_folder(const std::u16string& path) override {
        const platform::RealPath place = platform::real_path(path.c_str(), longest_store_path);
        if (place.error != 0 || place.read_only || place.root)
            return false;
        std::error_code error;
        fs::remove_all(place.real, error);
        return !error;
    }

    std::u16string from_ansi(std::string_view bytes) override { return platform::from_ansi(bytes); }

private:
    // Every folder above the last name, one by one, since names are matched without regard to case.
    static bool make_folders(const std::u16string& path) {
        for (std::size_t end = path.find(u'\\', 3); end != path.npos; end = path.find(u'\\', end + 1)) {
            const platform::RealPath folder =
                platform::real_path(path.substr(0, end).c_str(), longest_store_path);
            if (folder.error != 0 || (!folder.exists && platform::make_folder(folder) != 0))
                return false;
        }
        return true;
    }
};

HRESULT as_result(std::uint32_t code) {
    return static_cast<HRESULT>(code);
}

// A fault may name a plain error code; the calls of this area answer with an HRESULT.
HRESULT fault_result(const platform::Call& call) {
    return as_result(call.error() < 0x10000 ? platform::result_of(call.error()) : call.error());
}

std::u16string_view environment_or_own(const char16_t* environment) {
    return environment == nullptr ? platform::own_environment : environment;
}

std::u16string store_folder() {
    return session().machine.folders.windows + u"\\System32\\DriverStore\\FileRepository";
}

} // namespace

HRESULT UploadPrinterDriverPackageW(LPCWSTR server, LPCWSTR inf_path, LPCWSTR environment, DWORD flags, HWND,
                                    LPWSTR store_path, PULONG characters) {
    platform::Call call("UploadPrinterDriverPackageW", platform::shown(inf_path));
    if (call.fails(ERROR_ACCESS_DENIED))
        return fault_result(call);
    platform::refuse_servers(call, server);
    if (inf_path == nullptr || store_path == nullptr || characters == nullptr || (flags & ~7u) != 0)
        return E_INVALIDARG;
    if (platform::spooler_away())
        return HRESULT_FROM_WIN32(RPC_S_SERVER_UNAVAILABLE);
    const std::lock_guard lock(platform::spooler_lock());
    MachineFiles files;
    const std::u16string store = store_folder();
    std::u16string stored;
    const std::uint32_t result = platform::upload_package(
        session().machine.spooler, files,
        {inf_path, environment_or_own(environment), flags, store, *characters}, stored);
    if (result == 0)
        std::copy_n(stored.c_str(), stored.size() + 1, store_path);
    if (!stored.empty())
        *characters = static_cast<ULONG>(stored.size() + 1);
    return as_result(result);
}

// The package's headers for Windows declare this call nowhere; whoever uses it declares it as it is here.
extern "C" HRESULT InstallPrinterDriverFromPackageW(LPCWSTR server, LPCWSTR inf_path, LPCWSTR driver_name,
                                                    LPCWSTR environment, DWORD flags);

HRESULT InstallPrinterDriverFromPackageW(LPCWSTR server, LPCWSTR inf_path, LPCWSTR driver_name,
                                         LPCWSTR environment, DWORD flags) {
    platform::Call call("InstallPrinterDriverFromPackageW", platform::shown(driver_name));
    if (call.fails(ERROR_ACCESS_DENIED))
        return fault_result(call);
    platform::refuse_servers(call, server);
    if (driver_name == nullptr || (flags & ~1u) != 0)
        return E_INVALIDARG;
    if (inf_path == nullptr)
        call.refuse("drivers from the system's own packages aren't modelled");
    if (platform::spooler_away())
        return HRESULT_FROM_WIN32(RPC_S_SERVER_UNAVAILABLE);
    const std::lock_guard lock(platform::spooler_lock());
    MachineFiles files;
    return as_result(platform::install_from_package(session().machine.spooler, files, inf_path, driver_name,
                                                    environment_or_own(environment)));
}

HRESULT DeletePrinterDriverPackageW(LPCWSTR server, LPCWSTR inf_path, LPCWSTR environment) {
    platform::Call call("DeletePrinterDriverPackageW", platform::shown(inf_path));
    if (call.fails(ERROR_ACCESS_DENIED))
        return fault_result(call);
    platform::refuse_servers(call, server);
    if (inf_path == nullptr)
        return E_INVALIDARG;
    if (platform::spooler_away())
        return HRESULT_FROM_WIN32(RPC_S_SERVER_UNAVAILABLE);
    const std::lock_guard lock(platform::spooler_lock());
    MachineFiles files;
    return as_result(platform::delete_package(session().machine.spooler, files, inf_path,
                                              environment_or_own(environment)));
}
