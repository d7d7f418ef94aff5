// What the user tries while the worker installs, and what others have done to the log beforehand.
#include "calls/windows/user_input.h"
#include "scenarios/scenario.h"
#include "state/app_state.h"
#include "support/install_log.h"

#include <gtest/gtest.h>

#include <atomic>

namespace {

using rehearsal::Outcome;

// Acts once, on the worker's thread, before its first file is copied.
class InMidInstall {
public:
    explicit InMidInstall(std::function<void(InMidInstall&)> act) : act_(std::move(act)) {}

    void operator()(const platform::JournalEntry& entry) {
        if (entry.call == "MessageBoxW" && entry.thread == 0)
            ended_ = true;
        if (entry.call == "GetMessageW")
            ++taken_;
        if (entry.call == "GetMessageW" || ended_) {
            ++steps_;
            steps_.notify_all();
        } else if (entry.call == "CopyFileW" && entry.nth == 1) {
            act_(*this);
        }
    }

    // Until the main thread has taken everything that was posted, `posted` messages, and is back for more, or
    // has ended the run. One more is posted so that it comes back wherever it is now.
    void wait_until_taken(unsigned posted, unsigned taken_before) {
        PostMessageW(app.main_dialog, WM_NULL, 0, 0);
        for (unsigned now = steps_; taken_ < taken_before + posted + 1 && !ended_; now = steps_)
            steps_.wait(now);
    }

    unsigned taken() const { return taken_; }

private:
    std::function<void(InMidInstall&)> act_;
    std::atomic<unsigned> taken_ = 0;
    std::atomic<bool> ended_ = false; // the end's box is shown
    std::atomic<unsigned> steps_ = 0; // changes with either
};

TEST(WorkerAtWork, NothingEndsOrDisturbsTheInstall) {
    Scenario scenario;
    scenario.actions = network_install;
    std::vector<std::string> answers;
    InMidInstall middle([&](InMidInstall& run) {
        for (const int button : {2, 1015, 1016, 1017})
            answers.push_back(platform::press(button));
        const unsigned taken = run.taken();
        answers.push_back(platform::close_dialog());
        answers.push_back(platform::press_key(27));
        answers.push_back(platform::press_key(13));
        answers.push_back(platform::select_row(1));
        answers.push_back(platform::untick(1007));
        run.wait_until_taken(1 + 2 + 2 + 2 + 2, taken);
        // What no hand can do, but a program can.
        for (const WPARAM command : {2u, 1u, 1016u, 1017u})
            SendMessageW(app.main_dialog, WM_COMMAND, command, 0);
        SendMessageW(app.main_dialog, setup_message, terms_page_closed, 0);
    });
    scenario.on_call = std::ref(middle);
    const Outcome outcome = scenario.run();
    expect_clean(outcome);
    EXPECT_EQ(answers, (std::vector<std::string>{"control 2 is greyed", "control 1015 is greyed",
                                                 "control 1016 is greyed", "control 1017 is greyed", "", "",
                                                 "", "", ""}));
    EXPECT_EQ(boxes_of(outcome), success);
    for (const platform::DialogView& dialog : outcome.dialogs)
        EXPECT_EQ(dialog.visible, dialog.id == 105) << dialog.id;
    EXPECT_EQ(calls_of(outcome, "_beginthread"), 1u);
    EXPECT_EQ(calls_of(outcome, "CreateDialogParamW"), 2u);
    EXPECT_EQ(outcome.log.find("Search for model"), outcome.log.rfind("Search for model"));
    EXPECT_EQ(shown_controls(outcome), "list default install- refresh- address- cancel");
    ASSERT_NE(queue_of(outcome, u"Label 100 Series"), nullptr);
    EXPECT_EQ(queue_of(outcome, u"Label 100 Series")->port, u"TRK_10.0.0.7") << "the row at the start counts";
    EXPECT_EQ(outcome.after.spooler.default_printer, u"Print to File") << "the box's last state counts";
}

TEST(WorkerAtWork, UsbRoadKeepsTheListsButtonsHidden) {
    Scenario scenario;
    scenario.actions = usb_install;
    std::vector<std::string> answers;
    InMidInstall middle([&](InMidInstall&) {
        for (const int button : {2, 1013, 1014, 1016, 1017})
            answers.push_back(platform::press(button));
    });
    scenario.on_call = std::ref(middle);
    const Outcome outcome = scenario.run();
    expect_clean(outcome);
    EXPECT_EQ(answers, (std::vector<std::string>{"control 2 is greyed", "control 1013 is greyed",
                                                 "control 1014 is greyed", "control 1016 is hidden",
                                                 "control 1017 is hidden"}));
}

// The loop may break down while the worker writes: its handle's value is then nobody's, or another file's.
TEST(WorkerAtWork, WritesNothingToALogThatWasClosed) {
    TestSession test;
    platform::Session& session = test.start();
    const HANDLE log = app.log_handle;
    log_write(log, TEXT("before\r\n"));
    close_log();
    log_write(log, TEXT("behind\r\n"));
    log_line(TEXT("behind\r\n"));
    EXPECT_EQ(test.log(), "before\r\n");
    EXPECT_EQ(session.gate.misuses(), std::vector<std::string>{});
    WCHAR path[256];
    app.log_handle = open_log(TEXT("trk_install"), TEXT(".log"), path, static_cast<DWORD>(std::size(path)));
    log_line(TEXT("anew\r\n"));
    EXPECT_EQ(test.log(), "before\r\nanew\r\n");
}

// The log's name was taken in the temp folder that everybody may write to.
TEST(PlantedLog, IsNeverWrittenTo) {
    for (const char* const kind : {"symbolic link", "hard link", "folder"}) {
        SCOPED_TRACE(kind);
        Scenario scenario;
        scenario.actions = network_install;
        const std::filesystem::path victim = scenario.drive_c() / "Windows/victim.ini";
        const std::filesystem::path log = scenario.drive_c() / "Windows/Temp/trk_install.log";
        std::filesystem::create_directories(log.parent_path());
        TestSession::write(victim, "precious");
        if (kind == std::string("symbolic link"))
            std::filesystem::create_symlink(victim, log);
        else if (kind == std::string("hard link"))
            std::filesystem::create_hard_link(victim, log);
        else
            std::filesystem::create_directory(log);
        const Outcome outcome = scenario.run();
        expect_clean(outcome);
        EXPECT_EQ(TestSession::read(victim), "precious");
        EXPECT_EQ(outcome.log, "");
        EXPECT_EQ(boxes_of(outcome), success) << "the run goes on without a log";
    }
}

} // namespace
