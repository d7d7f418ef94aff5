// The user of a run: actions, what they do to the dialogs, and how a run ends that nobody answers.
#include "harness/test_session.h"

#include "calls/windows/user_input.h"

#include <gtest/gtest.h>

#include <windows.h>

#include <algorithm>
#include <functional>

namespace {

std::vector<std::string> events; // what the dialog procedure saw, in order
HWND dialog = nullptr;

INT_PTR CALLBACK noting_procedure(HWND window, UINT message, WPARAM wparam, LPARAM) {
    if (message == WM_SETCURSOR)
        events.emplace_back("cursor");
    if (message != WM_COMMAND)
        return FALSE;
    events.push_back(std::to_string(LOWORD(wparam)) + ":" + std::to_string(HIWORD(wparam)));
    if (LOWORD(wparam) == IDCANCEL)
        EndDialog(window, 0);
    return TRUE;
}

INT_PTR CALLBACK stubborn_procedure(HWND, UINT, WPARAM, LPARAM) {
    return FALSE;
}

// Acts by a list of steps, then leaves.
class SteppingUser : public platform::User {
public:
    bool act() override {
        if (next_ == steps.size())
            return false;
        steps[next_++]();
        return true;
    }
    void changed() override { ++changes; }
    void box(const platform::BoxView& view) override { boxes.push_back(view); }

    std::vector<std::function<void()>> steps;
    std::vector<platform::BoxView> boxes;
    int changes = 0;

private:
    std::size_t next_ = 0;
};

class UserInput : public testing::Test {
protected:
    UserInput() {
        events.clear();
        platform::SessionOptions options;
        options.drive_c = test.drive_c;
        options.resources = TRK_RESOURCE_FILE;
        session.emplace(test.machine, options, user);
    }

    static HWND open(int id, DLGPROC procedure = noting_procedure) {
        dialog = CreateDialogParamW(nullptr, MAKEINTRESOURCEW(id), nullptr, procedure, 0);
        ShowWindow(dialog, SW_SHOW);
        events.clear();
        return dialog;
    }

    // The usual loop, until the dialog is out of sight.
    static void pump() {
        MSG message;
        while (IsWindowVisible(dialog) && GetMessageW(&message, nullptr, 0, 0) > 0) {
            if (IsDialogMessageW(dialog, &message))
                continue;
            TranslateMessage(&message);
            DispatchMessageW(&message);
        }
    }

    TestSession test;
    SteppingUser user;
    std::optional<platform::Session> session;
};

using Events = std::vector<std::string>;

TEST_F(UserInput, APressAsksForTheCursorAndBecomesACommand) {
    open(101);
    user.steps = {[] { EXPECT_EQ(platform::press(1011), ""); },
                  [] { EXPECT_EQ(platform::tick(1011), "") << "it is ticked already"; },
                  [] { EXPECT_EQ(platform::press(2), ""); }};
    pump();
    EXPECT_EQ(events, (Events{"cursor", "cursor", "1011:0", "cursor", "cursor", "2:0"}));
    EXPECT_EQ(SendDlgItemMessageW(dialog, 1011, BM_GETCHECK, 0, 0), BST_CHECKED);
    EXPECT_GT(user.changes, 0);
}

TEST_F(UserInput, WhatAPersonCouldNotUseIsRefusedWithTheReason) {
    EXPECT_EQ(platform::press(2), "no dialog shows control 2");
    EXPECT_EQ(platform::close_dialog(), "no dialog is open");
    const HWND main = open(105);
    const HWND terms = open(101);
    EnableWindow(main, FALSE);
    EnableWindow(GetDlgItem(terms, IDOK), FALSE);
    const struct {
        const char* name;
        std::string result, expected;
    } cases[] = {{"hidden", platform::press(1013), "dialog 105 is disabled"},
                 {"greyed", platform::press(1), "control 1 is greyed"},
                 {"no button", platform::press(1010), "control 1010 is no button"},
                 {"no check box", platform::tick(2), "control 2 is no check box"},
                 {"no such control", platform::press(4711), "no dialog shows control 4711"},
                 {"list in a disabled dialog", platform::select_row(0), "dialog 105 is disabled"}};
    for (const auto& [name, result, expected] : cases)
        EXPECT_EQ(result, expected) << name;
    EnableWindow(main, TRUE);
    EXPECT_EQ(platform::press(1013), "control 1013 is hidden");
    ShowWindow(GetDlgItem(main, 1003), SW_SHOW);
    EXPECT_EQ(platform::select_row(0), "the list has 0 rows, and no row 0");
    MSG message;
    EXPECT_FALSE(PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) << "nothing was posted";
}

TEST_F(UserInput, InputToAControlThatWentGreyIsLost) {
    open(101);
    EXPECT_EQ(platform::press(1), "");
    EnableWindow(GetDlgItem(dialog, IDOK), FALSE);
    pump();
    EXPECT_EQ(events, (Events{"2:0"})) << "only the close at the end";
}

TEST_F(UserInput, ARowIsSelectedByAClick) {
    open(105);
    const HWND list = GetDlgItem(dialog, 1003);
    ShowWindow(list, SW_SHOW);
    for (int row = 0; row < 9; ++row)
        SendMessageW(list, LB_ADDSTRING, 0, reinterpret_cast<LPARAM>(TEXT("row")));
    for (const int row : {0, 3, 8}) {
        user.steps.emplace_back([row] { EXPECT_EQ(platform::select_row(row), ""); });
        user.steps.emplace_back([row, list] { EXPECT_EQ(SendMessageW(list, LB_GETCURSEL, 0, 0), row); });
    }
    pump();
    EXPECT_EQ(std::count(events.begin(), events.end(), "1003:1"), 3);
}

TEST_F(UserInput, TypingReplacesTheText) {
    open(104);
    const HWND edit = GetDlgItem(dialog, 1000);
    SetWindowTextW(edit, TEXT("old"));
    user.steps = {[] { EXPECT_EQ(platform::type_text(1000, "10.0.0.7"), ""); },
                  [edit] {
                      WCHAR text[32];
                      GetWindowTextW(edit, text, 32);
                      EXPECT_EQ(std::u16string(text), u"10.0.0.7");
                      EXPECT_EQ(platform::type_text(1000, ""), "");
                  },
                  [edit] { EXPECT_EQ(GetWindowTextLengthW(edit), 0); },
                  [] {
                      events.clear();
                      EXPECT_EQ(platform::press_key(VK_RETURN), "");
                  },
                  [] { EXPECT_EQ(platform::press_key(VK_ESCAPE), ""); }};
    pump();
    EXPECT_EQ(events, (Events{"1:0", "2:0"})) << "the default button, then Cancel";
}

TEST_F(UserInput, TheViewShowsDialogsInTheirOrder) {
    const HWND main = open(105);
    open(104);
    SetForegroundWindow(main);
    SendDlgItemMessageW(main, 1003, LB_ADDSTRING, 0, reinterpret_cast<LPARAM>(TEXT("a\t10.0.0.7")));
    SendDlgItemMessageW(main, 1007, BM_SETCHECK, BST_CHECKED, 0);
    const std::vector<platform::DialogView> views = platform::dialogs();
    ASSERT_EQ(views.size(), 2u);
    EXPECT_EQ(views[0].id, 104);
    const platform::DialogView& view = views[1];
    EXPECT_EQ(view.id, 105);
    EXPECT_TRUE(view.visible && view.enabled);
    const std::vector<std::pair<int, std::string>> kinds = {{1009, "static"},         {2, "button"},
                                                            {1015, "default button"}, {1003, "list"},
                                                            {104, "picture"},         {1007, "check box"}};
    for (const auto& [id, kind] : kinds) {
        const auto control = std::find_if(view.controls.begin(), view.controls.end(),
                                          [wanted = id](const auto& entry) { return entry.id == wanted; });
        ASSERT_NE(control, view.controls.end()) << id;
        EXPECT_EQ(control->kind, kind) << id;
        EXPECT_EQ(control->rows.size(), id == 1003 ? 1u : 0u) << id;
        EXPECT_EQ(control->visible && control->enabled, id == 1009 || id == 2 || id == 104) << id;
        EXPECT_EQ(control->checked, id == 1007);
    }
    const platform::ControlView& status = view.controls.front();
    EXPECT_EQ(status.left, 9);
    EXPECT_EQ(status.top, 76);
    EXPECT_EQ(status.width, 279);
    EXPECT_EQ(status.height, 70);
}

TEST_F(UserInput, PixelsComeFromDialogUnits) {
    open(104);
    MoveWindow(dialog, 100, 50, 281, 156, TRUE);
    RECT edit;
    ASSERT_TRUE(GetWindowRect(GetDlgItem(dialog, 1000), &edit)); // 81, 16, 91 by 13 units
    EXPECT_EQ(edit.right - edit.left, 137);
    EXPECT_EQ(edit.bottom - edit.top, 21);
    EXPECT_EQ(edit.left - 100, 122 + 3);
    EXPECT_EQ(edit.top - 50, 26 + 26);
}

TEST_F(UserInput, BoxesAreShownAndAnsweredByOk) {
    EXPECT_EQ(MessageBoxW(nullptr, TEXT("100 % \u00e4"), TEXT("Title"), MB_TOPMOST | MB_ICONEXCLAMATION),
              IDOK);
    ASSERT_EQ(user.boxes.size(), 1u);
    EXPECT_EQ(user.boxes[0].text, platform::to_utf8(u"100 % \u00e4"));
    EXPECT_EQ(user.boxes[0].caption, "Title");
    EXPECT_EQ(user.boxes[0].flags, 0x40030u);
}

TEST_F(UserInput, ADialogThatNeverClosesStopsTheRun) {
    open(104, stubborn_procedure);
    EXPECT_THROW(pump(), platform::RunStopped);
    EXPECT_NE(session->gate.stop_reason().find("dialog 104 doesn't close"), std::string::npos);
}

TEST_F(UserInput, AWaitThatNothingCanEndStopsTheRun) {
    MSG message;
    EXPECT_THROW(GetMessageW(&message, nullptr, 0, 0), platform::RunStopped);
    EXPECT_NE(session->gate.stop_reason().find("waits for input for ever"), std::string::npos);
}

TEST_F(UserInput, AUserWithoutEffectStopsTheRun) {
    open(104);
    for (int step = 0; step < 1100; ++step)
        user.steps.emplace_back([] {});
    EXPECT_THROW(pump(), platform::RunStopped);
    EXPECT_NE(session->gate.stop_reason().find("without any effect"), std::string::npos);
}

} // namespace
