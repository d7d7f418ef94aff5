// A fresh machine and session for one test: a temporary folder holds drive C and the medium.
#pragma once

#include "calls/run/session.h"
#include "machine/text.h"
#include "state/app_state.h"

#include <filesystem>
#include <optional>
#include <string>

// Makes a folder of its own under the temporary folder and takes it away again.
class TemporaryFolder {
public:
    TemporaryFolder();
    ~TemporaryFolder();
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;
    const std::filesystem::path path;
};

// A user who does nothing and leaves.
class AbsentUser : public platform::User {
public:
    bool act() override { return false; }
    void box(const platform::BoxView& view) override { boxes.push_back(view); }
    std::vector<platform::BoxView> boxes;
};

// Prepares machine and files, then start() opens the session; everything the program owns is reset.
class TestSession {
public:
    TestSession();
    ~TestSession();

    TemporaryFolder folder;
    std::filesystem::path drive_c = folder.path / "c";
    std::filesystem::path medium = folder.path / "medium";
    platform::Machine machine = platform::default_machine();
    AbsentUser user;

    platform::Session& start(); // once; also opens a log, C:\Windows\Temp\trk_install.log, as app.log_handle
    void stop();                // closes the log and ends the session

    // Files below drive C or the medium, by their Linux path; folders are made as needed.
    static void write(const std::filesystem::path& file, const std::string& bytes);
    static std::string read(const std::filesystem::path& file);
    std::string log() const; // the log's bytes so far

private:
    std::optional<platform::Session> session_;
};
