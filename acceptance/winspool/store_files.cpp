// The driver store in real files.
#include "machine/whole_file.h"
#include "spooler_calls/spooler_call.h"

#include <filesystem>
#include <fstream>

namespace platform {
namespace {

namespace fs = std::filesystem;

class StoreFiles : public PackageFiles {
public:
    std::optional<std::string> read(const std::u16string& path) override {
        return read_whole_file(fs::path(path));
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

    std::u16string from_ansi(std::string_view bytes) override { return platform::from_ansi(bytes); }
};

} // namespace

std::unique_ptr<PackageFiles> package_files() {
    return std::make_unique<StoreFiles>();
}

} // namespace platform
