#include "rehearsal/check/program_view.h"

#include "calls/run/session.h"
#include "rehearsal/embedded_resources.h"
#include "state/app_state.h"
#include "support/install_log.h"

#include <windows.h>

#include <fstream>
#include <memory>
#include <sstream>
#include <stdexcept>

namespace fs = std::filesystem;

namespace rehearsal::check {
namespace {

// Drive C for the time of a reading.
class ScratchDrive {
public:
    ScratchDrive() {
        std::string name = (fs::temp_directory_path() / "trk-check-XXXXXX").string();
        if (mkdtemp(name.data()) == nullptr)
            throw std::runtime_error("no temporary folder can be made");
        path = name;
        fs::create_directories(path / "Windows" / "Temp");
    }
    ~ScratchDrive() {
        std::error_code ignored;
        fs::remove_all(path, ignored);
    }
    ScratchDrive(const ScratchDrive&) = delete;
    ScratchDrive& operator=(const ScratchDrive&) = delete;
    fs::path path;
};

void renew_program() {
    std::destroy_at(&app);
    std::construct_at(&app);
}

std::string read_all(const fs::path& file) {
    std::ostringstream bytes;
    bytes << std::ifstream(file, std::ios::binary).rdbuf();
    return bytes.str();
}

class NobodyThere : public platform::User {
public:
    bool act() override { return false; }
};

} // namespace

std::string with_program(const Medium& medium, const std::function<void()>& read, platform::Machine machine) {
    const ScratchDrive drive;
    platform::SessionOptions options;
    options.drive_c = drive.path;
    options.medium = fs::absolute(medium.folder());
    options.resources = embedded_resources();
    NobodyThere user;
    renew_program();
    {
        platform::Session session(machine, options, user);
        app.log_handle = CreateFileW(TEXT("C:\\Windows\\Temp\\check.log"), FILE_APPEND_DATA, FILE_SHARE_READ,
                                     nullptr, OPEN_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
        read();
        CloseHandle(app.log_handle);
    }
    renew_program();
    return read_all(drive.path / "Windows" / "Temp" / "check.log");
}

} // namespace rehearsal::check
