#include "harness/test_session.h"

#include "machine/whole_file.h"

#include <windows.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <fstream>

namespace fs = std::filesystem;

namespace {

fs::path make_temporary_folder() {
    std::string name = (fs::temp_directory_path() / "trk-test-XXXXXX").string();
    if (mkdtemp(name.data()) == nullptr)
        std::abort();
    return name;
}

} // namespace

void spoil_last_error(const platform::JournalEntry& entry) {
    constexpr std::string_view keeping[] = {"GetLastError", "SetLastError", "WSAGetLastError", "XcvDataW"};
    if (std::ranges::find(keeping, entry.call) == std::end(keeping))
        platform::set_last_error(0xbad);
}

TemporaryFolder::TemporaryFolder() : path(make_temporary_folder()) {}

TemporaryFolder::~TemporaryFolder() {
    std::error_code ignored;
    fs::remove_all(path, ignored);
}

TestSession::TestSession() {
    fs::create_directories(drive_c / "Windows" / "Temp");
    fs::create_directories(drive_c / "Program Files");
    fs::create_directories(drive_c / "ProgramData" / "Microsoft" / "Windows" / "Start Menu" / "Programs");
    fs::create_directories(medium);
}

TestSession::~TestSession() {
    stop();
}

platform::Session& TestSession::start() {
    std::destroy_at(&app);
    std::construct_at(&app);
    platform::SessionOptions options;
    options.drive_c = drive_c;
    options.medium = medium;
    options.resources = TRK_RESOURCE_FILE;
    session_.emplace(machine, options, user);
    session_->gate.on_call = spoil_last_error;
    app.log_handle =
        CreateFileW(TEXT("C:\\Windows\\Temp\\trk_install.log"), FILE_APPEND_DATA,
                    FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, OPEN_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
    return *session_;
}

void TestSession::stop() {
    if (!session_)
        return;
    // A run that was stopped makes no call any more; its handles end with the session.
    if (app.log_handle != INVALID_HANDLE_VALUE && !session_->gate.stopped())
        CloseHandle(app.log_handle);
    app.log_handle = INVALID_HANDLE_VALUE;
    if (looks_at_leftovers)
        expect_no_leftovers();
    session_.reset();
}

// The log's mutex stays for as long as the process; a run that was stopped had no chance to tidy up.
void TestSession::expect_no_leftovers() const {
    std::vector<std::string> open = session_->handles.open_kinds();
    std::erase(open, "mutex");
    if (!session_->gate.stopped()) {
        EXPECT_EQ(open, std::vector<std::string>());
        EXPECT_EQ(session_->memory.live(), std::vector<std::string>());
    }
    EXPECT_EQ(session_->gate.misuses(), std::vector<std::string>());
}

void TestSession::write(const fs::path& file, const std::string& bytes) {
    fs::create_directories(file.parent_path());
    std::ofstream(file, std::ios::binary) << bytes;
}

std::string TestSession::read(const fs::path& file) {
    return platform::read_whole_file(file).value_or("");
}

std::string TestSession::log() const {
    return read(drive_c / "Windows" / "Temp" / "trk_install.log");
}
