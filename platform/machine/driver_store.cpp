#include "machine/driver_store.h"

#include "machine/inf_package.h"
#include "machine/little_endian.h"
#include "machine/text.h"

#include <algorithm>
#include <set>
#include <vector>

namespace platform {
namespace {

constexpr std::uint32_t file_not_found = result_of(spooler_error::file_not_found);
constexpr std::uint32_t access_denied = result_of(spooler_error::access_denied);

std::u16string_view folder_of(std::u16string_view path) {
    const std::size_t separator = path.rfind(u'\\');
    return separator == path.npos ? std::u16string_view() : path.substr(0, separator);
}

std::u16string_view name_of(std::u16string_view path) {
    return path.substr(path.rfind(u'\\') + 1);
}

// FNV-1a, 64 bits: the same package gives the same folder on every machine.
std::uint64_t mixed(std::uint64_t hash, std::string_view bytes) {
    for (const char byte : bytes)
        hash = (hash ^ static_cast<std::uint8_t>(byte)) * 0x100000001B3u;
    return hash;
}

std::u16string hexadecimal(std::uint64_t value) {
    std::u16string digits;
    for (int shift = 60; shift >= 0; shift -= 4)
        digits.push_back(u"0123456789abcdef"[(value >> shift) & 0xF]);
    return digits;
}

std::u16string processor_tag(std::u16string_view environment) {
    if (same_name(environment, u"Windows NT x86"))
        return u"_x86_";
    return same_name(environment, u"Windows ARM64") ? u"_arm64_" : u"_amd64_";
}

// UTF-16 and UTF-8 by their marks, all else in the ANSI code page.
std::u16string decoded(PackageFiles& files, std::string_view bytes) {
    if (bytes.starts_with("\xFF\xFE"))
        return utf16_text(bytes.substr(2));
    if (bytes.starts_with("\xEF\xBB\xBF"))
        return to_utf16(bytes.substr(3));
    return files.from_ansi(bytes);
}

struct StoredFile {
    std::u16string path; // below the package's folder
    std::string bytes;
};

// A path that leaves the package's folder counts as missing.
bool leaves_folder(std::u16string_view path) {
    return path.find(u"..") != path.npos || path.find(u':') != path.npos;
}

// A file of the package, or the compressed one or the cabinet that stands in for it. A cabinet is stored
// once.
std::uint32_t collect_file(PackageFiles& files, const std::u16string& folder, const PackageFile& file,
                           std::vector<StoredFile>& package, std::set<std::u16string>& stored) {
    std::vector<std::u16string> places = {file.path};
    places.insert(places.end(), file.stand_ins.begin(), file.stand_ins.end());
    for (const std::u16string& path : places) {
        if (leaves_folder(path))
            return file_not_found;
        if (stored.contains(upper_case(path)))
            return 0;
        if (const auto bytes = files.read(folder + u"\\" + path)) {
            stored.insert(upper_case(path));
            package.push_back({path, *bytes});
            return 0;
        }
    }
    return file.optional ? 0 : file_not_found;
}

// The INF in front, then the files that it names.
std::uint32_t collect(const SpoolerState& state, PackageFiles& files, const Upload& upload,
                      std::vector<StoredFile>& package) {
    const auto inf = files.read(std::u16string(upload.inf_path));
    if (!inf)
        return file_not_found;
    InfPackage facts;
    if (const std::uint32_t error =
            read_inf_package(decoded(files, *inf), upload.environment, facts, state.system);
        error != 0)
        return error;
    package.push_back({std::u16string(name_of(upload.inf_path)), *inf});
    std::set<std::u16string> stored;
    for (const PackageFile& file : facts.files) {
        const std::uint32_t error =
            collect_file(files, std::u16string(folder_of(upload.inf_path)), file, package, stored);
        if (error != 0)
            return error;
    }
    return 0;
}

std::u16string package_folder(const Upload& upload, const std::vector<StoredFile>& package) {
    std::uint64_t hash = 0xCBF29CE484222325u;
    for (const StoredFile& file : package)
        hash = mixed(mixed(hash, to_utf8(upper_case(file.path))), file.bytes);
    return std::u16string(upload.store) + u"\\" + package.front().path + processor_tag(upload.environment) +
           hexadecimal(hash);
}

template<class State>
auto find_package(State& state, std::u16string_view inf_path) {
    return std::find_if(state.packages.begin(), state.packages.end(),
                        [inf_path](const auto& package) { return same_name(package.inf_path, inf_path); });
}

bool in_use(const SpoolerState& state, const PrinterDriver& driver) {
    return std::any_of(state.queues.begin(), state.queues.end(),
                       [&](const auto& queue) { return same_name(queue.driver, driver.name); });
}

bool same_driver(const PrinterDriver& driver, std::u16string_view name, std::u16string_view environment) {
    return same_name(driver.name, name) && same_name(driver.environment, environment);
}

} // namespace

std::uint32_t upload_package(SpoolerState& state, PackageFiles& files, const Upload& upload,
                             std::u16string& stored_path) {
    if ((upload.flags & upload_always) != 0 && (upload.flags & check_driver_store) != 0)
        return result_of(spooler_error::invalid_parameter);
    if (!known_environment(upload.environment))
        return result_of(spooler_error::invalid_environment);
    std::vector<StoredFile> package;
    if (const std::uint32_t error = collect(state, files, upload, package); error != 0)
        return error;
    const std::u16string folder = package_folder(upload, package);
    stored_path = folder + u"\\" + package.front().path;
    if (upload.capacity < stored_path.size() + 1)
        return result_of(spooler_error::insufficient_buffer);
    const bool known = find_package(state, stored_path) != state.packages.end();
    if (!known && (upload.flags & check_driver_store) != 0)
        return file_not_found;
    if (known && (upload.flags & upload_always) == 0)
        return 0;
    for (const StoredFile& file : package) {
        if (!files.write(folder + u"\\" + file.path, file.bytes)) {
            if (!known)
                files.remove_folder(folder);
            return access_denied;
        }
    }
    if (!known)
        state.packages.push_back({stored_path});
    return 0;
}

std::uint32_t install_from_package(SpoolerState& state, PackageFiles& files, std::u16string_view stored_path,
                                   std::u16string_view driver_name, std::u16string_view environment) {
    if (!known_environment(environment))
        return result_of(spooler_error::invalid_environment);
    const auto stored = find_package(state, stored_path);
    const auto inf = stored == state.packages.end() ? std::nullopt : files.read(stored->inf_path);
    if (!inf)
        return file_not_found;
    InfPackage facts;
    if (const std::uint32_t error = read_inf_package(decoded(files, *inf), environment, facts, state.system);
        error != 0)
        return error;
    const auto model = std::find_if(facts.models.begin(), facts.models.end(), [&](const auto& entry) {
        return same_name(entry.driver_name, driver_name);
    });
    if (model == facts.models.end())
        return result_of(spooler_error::unknown_driver);
    const PrinterDriver driver{model->driver_name, std::u16string(environment), model->version,
                               stored->inf_path};
    const auto known = std::find_if(state.drivers.begin(), state.drivers.end(), [&](const auto& entry) {
        return same_driver(entry, driver_name, environment);
    });
    if (known == state.drivers.end())
        state.drivers.push_back(driver);
    else
        *known = driver;
    return 0;
}

std::uint32_t delete_package(SpoolerState& state, PackageFiles& files, std::u16string_view stored_path,
                             std::u16string_view environment) {
    if (!known_environment(environment))
        return result_of(spooler_error::invalid_environment);
    const auto stored = find_package(state, stored_path);
    if (stored == state.packages.end())
        return file_not_found;
    const auto from_package = [&](const auto& driver) { return same_name(driver.inf_path, stored_path); };
    const auto held = [&](const auto& driver) {
        return from_package(driver) && (state.drivers_hold_packages || in_use(state, driver));
    };
    if (stored->deny_delete || std::any_of(state.drivers.begin(), state.drivers.end(), held))
        return result_of(spooler_error::package_in_use);
    if (!files.remove_folder(std::u16string(folder_of(stored->inf_path))))
        return access_denied;
    for (PrinterDriver& driver : state.drivers) {
        if (from_package(driver))
            driver.inf_path.clear();
    }
    state.packages.erase(stored);
    return 0;
}

} // namespace platform
