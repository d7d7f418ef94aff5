// Dialog procedures and start-up steps by themselves, over the templates of the program.
#include "app/driver_analysis.h"
#include "app/ip_dialog.h"
#include "app/main_dialog.h"
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
