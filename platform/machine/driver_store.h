// Driver packages: uploaded into the driver store, installed from it, deleted from it. The files are the
// caller's business; results are HRESULTs, 0 for success.
#pragma once

#include "machine/spooler_model.h"

#include <optional>
#include <string>
#include <string_view>

namespace platform {

// The files of whoever keeps the store; paths are the machine's, absolute.
class PackageFiles {
public:
    virtual ~PackageFiles() = default;
    virtual std::optional<std::string> read(const std::u16string& path) = 0;
    // Makes the folders above as needed and replaces what is there.
    virtual bool write(const std::u16string& path, const std::string& bytes) = 0;
    virtual bool remove_folder(const std::u16string& path) = 0; // with all that is in it
    virtual std::u16string from_ansi(std::string_view bytes) = 0;
};

// HRESULT_FROM_WIN32.
constexpr std::uint32_t result_of(std::uint32_t error) {
    return error == 0 ? 0 : 0x80070000u | (error & 0xFFFFu);
}

constexpr std::uint32_t upload_always = 2;      // UPDP_UPLOAD_ALWAYS
constexpr std::uint32_t check_driver_store = 4; // UPDP_CHECK_DRIVERSTORE: only look, upload nothing

struct Upload {
    std::u16string_view inf_path;
    std::u16string_view environment;
    std::uint32_t flags = 0;
    std::u16string_view store;  // "C:\Windows\System32\DriverStore\FileRepository"
    std::uint32_t capacity = 0; // room for the path, in characters with the terminator
};

// The INF and the files that it names are copied into a folder of the store that is named after the INF and
// what is in it. `stored_path` gets the INF's path there; with too little room for it nothing is uploaded.
std::uint32_t upload_package(SpoolerState& state, PackageFiles& files, const Upload& upload,
                             std::u16string& stored_path);

// Registers the driver, or moves one of that name to this package, with the DriverVer of its install
// section, else of the package.
std::uint32_t install_from_package(SpoolerState& state, PackageFiles& files, std::u16string_view stored_path,
                                   std::u16string_view driver_name, std::u16string_view environment);

// Refused while a queue prints with a driver of the package, or, where drivers hold their packages, while one
// is registered at all. Otherwise the folder goes; drivers that came from it stay registered.
std::uint32_t delete_package(SpoolerState& state, PackageFiles& files, std::u16string_view stored_path,
                             std::u16string_view environment);

} // namespace platform
