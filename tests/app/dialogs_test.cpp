// Dialog procedures and start-up steps by themselves, over the templates of the program.
#include "app/driver_analysis.h"
#include "app/install_sequence.h"
#include "app/ip_dialog.h"
#include "app/main_dialog.h"
#include "app/terms_page.h"
#include "calls/windows/user_input.h"
#include "harness/test_session.h"
#include "resources/resource_ids.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace {

class AppDialogs : public testing::Test {
protected:
    void start() {
        test.start();
        app.main_dialog =
            CreateDialogParamW(nullptr, MAKEINTRESOURCEW(IDD_MAIN), nullptr, main_dialog_proc, 0);
    }
    bool cancel_works() const { return IsWindowEnabled(GetDlgItem(app.main_dialog, IDCANCEL)) != FALSE; }

    TestSession test;
};

// A dialog 104 holds the run open behind the install, and may lie where nobody sees it.
TEST_F(AppDialogs, CancelWorksAgainBehindTheInstall) {
    start();
    app.install_started = 1;
    EnableWindow(GetDlgItem(app.main_dialog, IDCANCEL), FALSE);
    SendMessageW(app.main_dialog, WM_COMMAND, IDCANCEL, 0);
    EXPECT_EQ(app.exit_requested, 0u) << "the worker lives";
    SendMessageW(app.main_dialog, setup_message, worker_finished, 0);
    EXPECT_TRUE(cancel_works());
    PostMessageW(app.main_dialog, WM_COMMAND, IDCANCEL, 0);
    ask_printer_address(); // doesn't return while its loop goes on
    for (const platform::DialogView& dialog : platform::dialogs())
        EXPECT_FALSE(dialog.visible) << dialog.id;
    EXPECT_EQ(test.log(), "CreateDialog IP\r\n");
}

// A message that another thread sends is served without GetMessageW's return.
TEST_F(AppDialogs, ASentEndWakesTheLoop) {
    start();
    const struct {
        int dialog;
        DLGPROC procedure;
        UINT message;
        WPARAM parameter;
    } table[] = {{IDD_ADDRESS, ip_dialog_proc, WM_COMMAND, IDCANCEL},
                 {IDD_TERMS, terms_dialog_proc, WM_COMMAND, IDCANCEL},
                 {IDD_TERMS, terms_dialog_proc, WM_COMMAND, IDOK},
                 {IDD_MAIN, main_dialog_proc, setup_message, worker_finished},
                 {IDD_MAIN, main_dialog_proc, WM_COMMAND, IDCANCEL}};
    for (const auto& row : table) {
        const HWND dialog =
            CreateDialogParamW(nullptr, MAKEINTRESOURCEW(row.dialog), nullptr, row.procedure, 0);
        MSG message = {};
        while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) {
        }
        SendMessageW(dialog, row.message, row.parameter, 0);
        EXPECT_TRUE(PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) << row.dialog << " " << row.message;
        EXPECT_EQ(message.message, UINT{WM_NULL});
    }
}

TEST_F(AppDialogs, CursorShowsTheWorkersTime) {
    start();
    const HWND address =
        CreateDialogParamW(nullptr, MAKEINTRESOURCEW(IDD_ADDRESS), nullptr, ip_dialog_proc, 0);
    const HWND terms =
        CreateDialogParamW(nullptr, MAKEINTRESOURCEW(IDD_TERMS), nullptr, terms_dialog_proc, 0);
    unsigned set = 0;
    for (const HWND dialog : {app.main_dialog, address, terms})
        for (const DWORD busy : {0u, 1u}) {
            app.worker_busy = busy;
            SendMessageW(dialog, WM_SETCURSOR, 0, 0);
            EXPECT_EQ(GetWindowLongPtrW(dialog, DWLP_MSGRESULT), busy ? TRUE : FALSE);
            set += busy;
            EXPECT_EQ(platform::session().gate.count("SetCursor"), set);
        }
}

DWORD busy_at_report = 2;

INT_PTR CALLBACK deaf_proc(HWND, UINT message, WPARAM wParam, LPARAM) {
    if (message == setup_message && wParam == worker_finished)
        busy_at_report = app.worker_busy;
    return 0;
}

// The main thread may end the run as soon as it hears, and must hear in any case.
TEST_F(AppDialogs, TheWorkersReportIsItsLastWord) {
    start();
    for (const bool heard : {true, false}) {
        if (!heard)
            app.main_dialog = CreateDialogParamW(nullptr, MAKEINTRESOURCEW(IDD_MAIN), nullptr, deaf_proc, 0);
        app.exit_requested = 0;
        const unsigned posted = platform::session().gate.count("PostMessageW");
        install_worker(nullptr);
        EXPECT_EQ(platform::session().gate.count("PostMessageW") - posted, 1u);
        const std::string last = platform::session().gate.journal().back().argument;
        EXPECT_TRUE(last.starts_with(heard ? "0x0000 to" : "0x0400 to") || heard) << last;
        EXPECT_EQ(app.exit_requested, heard ? 1u : 0u);
        EXPECT_EQ(app.install_failed, 1u) << "there was no row to install";
    }
    EXPECT_EQ(busy_at_report, 0u);
}

TEST_F(AppDialogs, ASecondOpeningBeginsAnew) {
    start();
    app.ip_dialog_closed = 1;
    platform::Session& session = platform::session();
    session.gate.on_call = [](const platform::JournalEntry& entry) {
        if (entry.call == "GetMessageW" && entry.nth == 1) {
            EXPECT_EQ(platform::press(2), "");
        }
    };
    ask_printer_address();
    for (const platform::DialogView& dialog : platform::dialogs())
        EXPECT_TRUE(dialog.id != IDD_ADDRESS || !dialog.visible);
    EXPECT_EQ(app.exit_requested, 0u);
}

// The message behind the page decides at once, and the worker may run before the page's routine returns.
TEST_F(AppDialogs, NothingOfAnEarlierPageCounts) {
    test.machine.faults = {{"CreateDialogParamW", 1, true, 8, "101"}};
    start();
    app.terms_accepted = 1;
    DWORD usb = 0;
    platform::session().gate.on_call = [&usb](const platform::JournalEntry& entry) {
        if (entry.call == "CreateDialogParamW")
            usb = app.usb_chosen;
    };
    SendMessageW(app.main_dialog, WM_COMMAND, IDC_USB, 0);
    EXPECT_EQ(usb, 1u);
    EXPECT_EQ(app.terms_accepted, 0u);
    EXPECT_EQ(app.install_started, 0u);
    EXPECT_TRUE(IsWindowEnabled(app.main_dialog));
}

// Without an install the dialog has to be closed by itself, as ever.
TEST_F(AppDialogs, CancelLeavesTheAddressDialogAlone) {
    start();
    SendMessageW(app.main_dialog, WM_COMMAND, IDCANCEL, 0);
    EXPECT_EQ(app.exit_requested, 1u);
    EXPECT_EQ(app.ip_dialog_closed, 0u);
}

// In code page 932 the second byte of a letter may be an underscore's.
TEST_F(AppDialogs, DisplayNameKeepsDoubleByteLetters) {
    test.machine.code_page = 932;
    start();
    app.driver = {};
    app.driver.hasUSB = 1;
    const char model[] = "\x83\x5f_A_\x83\x5f";
    std::copy(std::begin(model), std::end(model), app.driver.mdlName);
    analyse_driver();
    EXPECT_STREQ(app.model_display_name, "\x83\x5f A \x83\x5f");
}

} // namespace
