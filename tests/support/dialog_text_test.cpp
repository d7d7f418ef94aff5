#include "harness/test_session.h"
#include "resources/resource_ids.h"
#include "support/dialog_text.h"
#include "support/memory.h"

#include <gtest/gtest.h>

namespace {

INT_PTR CALLBACK quiet_dialog(HWND, UINT, WPARAM, LPARAM) {
    return 0;
}

// The main dialog as its template makes it, with no program behind it.
struct MainDialog : TestSession {
    HWND open() {
        start();
        app.app_instance = GetModuleHandleW(nullptr);
        app.main_dialog =
            CreateDialogParamW(app.app_instance, MAKEINTRESOURCEW(IDD_MAIN), nullptr, quiet_dialog, 0);
        return app.main_dialog;
    }
};

std::string text_of(int control) {
    WCHAR text[1024] = {};
    control_get_text(app.main_dialog, control, text, static_cast<int>(std::size(text)));
    return platform::to_utf8(text);
}

std::vector<std::string> rows_of(HWND dialog) {
    std::vector<std::string> rows;
    const HWND list = GetDlgItem(dialog, IDC_PRINTER_LIST);
    const LRESULT count = SendMessageW(list, LB_GETCOUNT, 0, 0);
    for (LRESULT i = 0; i < count; ++i) {
        WCHAR row[300] = {};
        SendMessageW(list, LB_GETTEXT, static_cast<WPARAM>(i), reinterpret_cast<LPARAM>(row));
        rows.push_back(platform::to_utf8(row));
    }
    return rows;
}

constexpr UINT missing = 9999;

TEST(Memory, RoomThatCantBeCountedIsNone) {
    TestSession test;
    test.start();
    for (const std::size_t count : {std::size_t{0}, SIZE_MAX / 2 + 1, SIZE_MAX})
        EXPECT_EQ(allocate_characters(count), nullptr) << count;
}

} // namespace

TEST(DialogText, SetsAndAppendsStatusTexts) {
    MainDialog session;
    const HWND dialog = session.open();
    ASSERT_NE(dialog, nullptr);
    const HINSTANCE module = app.app_instance;
    status_append(dialog, IDC_STATUS, u"first");
    EXPECT_EQ(text_of(IDC_STATUS), "\r\nfirst");
    EXPECT_NE(status_set(dialog, IDC_STATUS, u"set"), 0);
    status_append_string(module, dialog, IDC_STATUS, IDS_NETWORK, 1);
    status_append_ansi(dialog, IDC_STATUS, "caf\xe9");
    EXPECT_EQ(text_of(IDC_STATUS), "set\r\nNetwork\r\n\r\ncafé");
    status_append_string(module, dialog, IDC_STATUS, missing, 1);
    EXPECT_LT(status_set_string(module, dialog, IDC_STATUS, missing, 1), 1);
    EXPECT_EQ(text_of(IDC_STATUS), "set\r\nNetwork\r\n\r\ncafé");
    EXPECT_NE(status_set_string(module, dialog, IDC_STATUS, IDS_USB, 1), 0);
    EXPECT_EQ(text_of(IDC_STATUS), "USB\r\n");
    status_set_ansi(dialog, IDC_STATUS, "100 %d");
    for (const int index : {0, 1, 2, -1})
        status_append_stage(module, index);
    EXPECT_EQ(text_of(IDC_STATUS), "100 %d\r\nInstaller\r\nInstalling monitor ....");
}

TEST(DialogText, KeepsAControlWhenMemoryIsShort) {
    MainDialog session;
    session.machine.faults = {{.call = "HeapAlloc", .from_then_on = true}};
    const HWND dialog = session.open();
    status_set(dialog, IDC_STATUS, u"kept");
    status_append(dialog, IDC_STATUS, u"more");
    status_append_ansi(dialog, IDC_STATUS, "more");
    status_set_ansi(dialog, IDC_STATUS, "other");
    char bytes[8] = {};
    control_get_ansi(dialog, IDC_STATUS, bytes, sizeof(bytes));
    EXPECT_EQ(text_of(IDC_STATUS), "kept");
    EXPECT_STREQ(bytes, "");
}

TEST(DialogText, FillsAndClearsLists) {
    MainDialog session;
    const HWND dialog = session.open();
    list_clear(dialog, IDC_PRINTER_LIST);
    EXPECT_EQ(list_add(dialog, IDC_PRINTER_LIST, u"one"), 0);
    list_add_ansi(dialog, IDC_PRINTER_LIST, "tw\xf6");
    EXPECT_EQ(list_add_string(app.app_instance, dialog, IDC_PRINTER_LIST, IDS_USB), 2);
    EXPECT_LT(list_add_string(app.app_instance, dialog, IDC_PRINTER_LIST, missing), 1);
    EXPECT_EQ(rows_of(dialog), (std::vector<std::string>{"one", "twö", "USB"}));
    list_clear(dialog, IDC_PRINTER_LIST);
    EXPECT_EQ(rows_of(dialog), std::vector<std::string>{});
}

TEST(DialogText, ReadsEightBitTextWithoutTerminator) {
    MainDialog session;
    session.machine.code_page = 932;
    const HWND dialog = session.open();
    status_set(dialog, IDC_STATUS, u"aテb");
    const struct {
        int size;
        const char* expected;
    } cases[] = {{8, "a\x83\x65"
                     "b~~~~"},
                 {4, "a\x83\x65"
                     "b~~~~"},
                 {3, "a\x83\x65~~~~~"},
                 {2, "a~~~~~~~"},
                 {0, "~~~~~~~~"}};
    for (const auto& item : cases) {
        std::string out(8, '~');
        control_get_ansi(dialog, IDC_STATUS, out.data(), item.size);
        EXPECT_EQ(out, item.expected) << item.size;
    }
}

TEST(DialogText, AppliesATableUpToItsEnd) {
    MainDialog session;
    const HWND dialog = session.open();
    status_set(dialog, IDC_HEADLINE, u"old");
    const TextPair empty[] = {{0, IDC_USB}, {IDS_CONNECTION_TYPE, IDC_HEADLINE}, {0, 0}};
    apply_dialog_texts(app.app_instance, dialog, empty);
    EXPECT_EQ(text_of(IDC_HEADLINE), "old");
    const TextPair table[] = {{missing, IDC_HEADLINE}, {IDS_CONNECTION_TYPE, IDC_STATUS}, {IDS_USB, 0}};
    apply_dialog_texts(app.app_instance, dialog, table);
    EXPECT_EQ(text_of(IDC_HEADLINE), "old");
    EXPECT_EQ(text_of(IDC_STATUS), "Connection Type:");
    EXPECT_EQ(session.log(), "LoadString fail 9999\r\n");
}

TEST(DialogText, ShowsAndEnablesControls) {
    MainDialog session;
    const HWND dialog = session.open();
    const HWND button = GetDlgItem(dialog, IDC_INSTALL);
    EXPECT_EQ(show_control(dialog, IDC_INSTALL, 1, 1), 0); // ShowWindow's result: it was hidden
    EXPECT_TRUE(IsWindowEnabled(button));
    EXPECT_NE(show_control(dialog, IDC_INSTALL, 0, 0), 0);
    EXPECT_FALSE(IsWindowEnabled(button));
}

TEST(DialogText, ShowsBoxes) {
    MainDialog session;
    session.open();
    const std::u16string long_text(600, u'x');
    EXPECT_EQ(message_box_text(u"100 %s", MB_TOPMOST), 1);
    EXPECT_EQ(message_box_text(long_text.c_str(), MB_TOPMOST), 1);
    EXPECT_EQ(message_box_string(app.app_instance, IDS_CHECK_PERMISSIONS, MB_TOPMOST | MB_ICONEXCLAMATION),
              1);
    EXPECT_EQ(message_box_string(app.app_instance, missing, MB_TOPMOST), 1);
    ASSERT_EQ(session.user.boxes.size(), 3u);
    EXPECT_EQ(session.user.boxes[0].text, "100 %s");
    EXPECT_EQ(session.user.boxes[1].text, std::string(513, 'x'));
    EXPECT_EQ(session.user.boxes[2].text, "Check permissions!");
    EXPECT_EQ(session.user.boxes[2].flags, 0x40030u);
}

TEST(DialogText, ShowsTheLastError) {
    MainDialog session;
    session.open();
    const auto shown = [&session](DWORD error, UINT id) {
        session.user.boxes.clear();
        SetLastError(error);
        EXPECT_EQ(message_box_last_error(id), 1);
        return session.user.boxes.empty() ? std::string("none") : session.user.boxes.back().text;
    };
    EXPECT_EQ(shown(0, IDS_ADD_MONITOR_FAILED), "AddMonitor() failed. Error = 0. ");
    const std::string text = shown(ERROR_ACCESS_DENIED, IDS_ADD_MONITOR_FAILED);
    EXPECT_EQ(text.substr(0, 33), "AddMonitor() failed. Error = 5. \n");
    EXPECT_GT(text.size(), 33u);
    EXPECT_EQ(shown(0xE0000001, IDS_ADD_MONITOR_FAILED), "AddMonitor() failed. Error = -536870911. ");
    EXPECT_EQ(shown(5, missing), "none");
    app.silent = 1;
    EXPECT_EQ(shown(5, IDS_ADD_MONITOR_FAILED), "none");
}

TEST(DialogText, CentersOnTheScreen) {
    MainDialog session;
    const HWND dialog = session.open();
    RECT desktop = {};
    GetWindowRect(GetDesktopWindow(), &desktop);
    const auto placed = [dialog](int width, int height) {
        MoveWindow(dialog, 0, 0, width, height, FALSE);
        EXPECT_EQ(center_dialog(dialog), 1);
        RECT place = {};
        GetWindowRect(dialog, &place);
        return std::pair(place.left, place.top);
    };
    EXPECT_EQ(placed(201, 100), std::pair((desktop.right - 201) / 2, (desktop.bottom - 100) / 2));
    // One that is larger than the screen ends with its far edge in sight.
    EXPECT_EQ(placed(desktop.right + 11, 100), std::pair(-11, (desktop.bottom - 100) / 2));
    // One over a dialog at the screen's edge stays in sight.
    const HWND child =
        CreateDialogParamW(app.app_instance, MAKEINTRESOURCEW(IDD_TERMS), dialog, quiet_dialog, 0);
    for (const auto& [left, top, x, y] :
         {std::tuple(-300, -300, 0, 0),
          std::tuple(desktop.right - 10, desktop.bottom - 10, desktop.right - 60, desktop.bottom - 40)}) {
        MoveWindow(dialog, left, top, 300, 300, FALSE);
        MoveWindow(child, 0, 0, 60, 40, FALSE);
        EXPECT_EQ(center_dialog(child), 1);
        RECT place = {};
        GetWindowRect(child, &place);
        EXPECT_EQ(std::pair(place.left, place.top), std::pair(LONG{x}, LONG{y}));
    }
}
