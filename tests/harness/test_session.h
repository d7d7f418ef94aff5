// A fresh machine and session for one test: a temporary folder holds drive C and the medium. At its end no
// handle may be open, no block allocated and nothing misused that the test didn't announce.
#pragma once

#include "calls/run/session.h"
#include "machine/text.h"
#include "state/app_state.h"

#include <filesystem>
#include <optional>
#include <string>

// A call that succeeds may leave any last error behind. As a session's on_call this makes every call do so,
// to the harm of who asks too late for the error of an earlier one.
void spoil_last_error(const platform::JournalEntry& entry);

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
    bool looks_at_leftovers = true; // off for tests that leave something behind, or that look themselves

    platform::Session& start(); // once; also opens a log, C:\Windows\Temp\trk_install.log, as app.log_handle
    void stop();                // closes the log and ends the session, in which nothing else may be left

    // Files below drive C or the medium, by their Linux path; folders are made as needed.
    static void write(const std::filesystem::path& file, const std::string& bytes);
    static std::string read(const std::filesystem::path& file);
    std::string log() const; // the log's bytes so far

private:
    void expect_no_leftovers() const;

    std::optional<platform::Session> session_;
};
