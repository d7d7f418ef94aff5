#include "rehearsal/check/program_view.h"

#include "calls/run/session.h"
#include "machine/whole_file.h"
#include "rehearsal/embedded_resources.h"
#include "rehearsal/temporary_folder.h"
#include "state/app_state.h"
#include "support/install_log.h"

#include <windows.h>

#include <memory>
#include <stdexcept>

namespace fs = std::filesystem;

namespace rehearsal::check {
namespace {

void renew_program() {
    std::destroy_at(&app);
    std::construct_at(&app);
}

class NobodyThere : public platform::User {
public:
    bool act() override { return false; }
};

} // namespace

std::string with_program(const Medium& medium, const std::function<void()>& read, platform::Machine machine) {
    const TemporaryFolder drive("trk-check");
    fs::create_directories(drive.path() / "Windows" / "Temp");
    platform::SessionOptions options;
    options.drive_c = drive.path();
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
    return platform::read_whole_file(drive.path() / "Windows" / "Temp" / "check.log").value_or("");
}

} // namespace rehearsal::check
