#include "harness/calls_fixture.h"

#include <windows.h>

#include <vector>

namespace {

// The program's own dialogs, which every build of the tests carries.
constexpr int terms_dialog = 101;
constexpr int address_dialog = 104;
constexpr int main_dialog = 105;
constexpr int accept_box = 1011;

struct Seen {
    UINT message;
    WPARAM wparam;
    LPARAM lparam;
};

std::vector<Seen> seen;      // by the recording procedure
UINT handled_message = 0;    // for which it gives TRUE
LONG_PTR handled_result = 0; // its DWLP_MSGRESULT
INT_PTR modal_result = 0;    // what OK ends a modal dialog with

INT_PTR CALLBACK recording_procedure(HWND dialog, UINT message, WPARAM wparam, LPARAM lparam) {
    seen.push_back({message, wparam, lparam});
    if (message == WM_INITDIALOG)
        return TRUE;
    if (message == handled_message) {
        if (handled_result != 0)
            SetWindowLongPtrW(dialog, DWLP_MSGRESULT, handled_result);
        return TRUE;
    }
    return FALSE;
}

INT_PTR CALLBACK modal_procedure(HWND dialog, UINT message, WPARAM wparam, LPARAM lparam) {
    seen.push_back({message, wparam, lparam});
    if (message == WM_INITDIALOG)
        PostMessageW(dialog, WM_COMMAND, MAKEWPARAM(lparam, BN_CLICKED), 0);
    if (message == WM_COMMAND)
        EndDialog(dialog, LOWORD(wparam) == IDOK ? modal_result : 0);
    return message == WM_COMMAND ? TRUE : FALSE;
}

// The commands that the dialog got, in the form of their wParam.
std::vector<WPARAM> commands() {
    std::vector<WPARAM> found;
    for (const Seen& entry : seen)
        if (entry.message == WM_COMMAND)
            found.push_back(entry.wparam);
    return found;
}

std::vector<WPARAM> just(WPARAM command) {
    return {command};
}

class Windows : public CallsTest {
protected:
    Windows() {
        seen.clear();
        handled_message = 0;
        handled_result = 0;
    }

    static HWND create(int id, LPARAM parameter = 0) {
        return CreateDialogParamW(GetModuleHandleW(nullptr), MAKEINTRESOURCEW(id), nullptr,
                                  recording_procedure, parameter);
    }

    // A dialog on the screen, with nothing recorded yet.
    static HWND open(int id) {
        const HWND dialog = create(id);
        ShowWindow(dialog, SW_SHOW);
        seen.clear();
        return dialog;
    }

    static int handled_by(HWND dialog, HWND target, UINT message, WPARAM wparam) {
        MSG entry = {};
        entry.hwnd = target;
        entry.message = message;
        entry.wParam = wparam;
        return IsDialogMessageW(dialog, &entry);
    }
};

bool has_style(HWND window, DWORD style) {
    return (static_cast<DWORD>(GetWindowLongPtrW(window, GWL_STYLE)) & style) != 0;
}

TEST_F(Windows, ADialogBeginsAsItsTemplateHasIt) {
    const HWND dialog = create(main_dialog, 77);
    ASSERT_NE(dialog, nullptr);
    ASSERT_FALSE(seen.empty());
    bool initialised = false;
    for (const Seen& entry : seen)
        initialised = initialised || (entry.message == WM_INITDIALOG && entry.lparam == 77);
    EXPECT_TRUE(initialised);
    EXPECT_FALSE(IsWindowVisible(dialog));
    EXPECT_EQ(GetParent(dialog), nullptr);

    const struct {
        int id;
        bool shown, enabled;
    } controls[] = {{1009, true, true},  {2, true, true},     {1017, false, true}, {1015, false, false},
                    {1003, false, true}, {1007, false, true}, {1013, false, true}, {104, true, true}};
    for (const auto& expected : controls) {
        SCOPED_TRACE(expected.id);
        const HWND control = GetDlgItem(dialog, expected.id);
        ASSERT_NE(control, nullptr);
        EXPECT_EQ(has_style(control, WS_VISIBLE), expected.shown);
        EXPECT_EQ(IsWindowEnabled(control) != FALSE, expected.enabled);
        EXPECT_FALSE(IsWindowVisible(control)) << "the dialog around it is hidden";
        EXPECT_EQ(GetDlgCtrlID(control), expected.id);
        EXPECT_EQ(GetParent(control), dialog);
    }
    SetLastError(0);
    EXPECT_EQ(GetDlgItem(dialog, 4711), nullptr);
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_CONTROL_ID_NOT_FOUND));
    DestroyWindow(dialog);
}

TEST_F(Windows, ADialogWithoutATemplateIsRefused) {
    SetLastError(0);
    EXPECT_EQ(create(4711), nullptr);
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_RESOURCE_NAME_NOT_FOUND));
}

TEST_F(Windows, ShowingAndEnablingGiveTheStateBefore) {
    const HWND dialog = create(address_dialog);
    EXPECT_FALSE(ShowWindow(dialog, SW_SHOW));
    EXPECT_TRUE(ShowWindow(dialog, SW_SHOW));
    EXPECT_TRUE(IsWindowVisible(GetDlgItem(dialog, IDOK)));
    EXPECT_TRUE(RedrawWindow(dialog, nullptr, nullptr, RDW_UPDATENOW | RDW_ALLCHILDREN));
    EXPECT_FALSE(EnableWindow(dialog, FALSE));
    EXPECT_TRUE(EnableWindow(dialog, FALSE));
    EXPECT_FALSE(IsWindowEnabled(dialog));
    EXPECT_TRUE(IsWindowEnabled(GetDlgItem(dialog, IDOK))) << "only the dialog itself is disabled";
    EXPECT_TRUE(EnableWindow(dialog, TRUE));
    EXPECT_TRUE(ShowWindow(dialog, SW_HIDE));
    DestroyWindow(dialog);
}

TEST_F(Windows, EndDialogOnlyHidesAModelessDialog) {
    const HWND dialog = open(address_dialog);
    EXPECT_TRUE(EndDialog(dialog, 1));
    EXPECT_TRUE(IsWindow(dialog));
    EXPECT_FALSE(IsWindowVisible(dialog));
    EXPECT_NE(GetDlgItem(dialog, IDOK), nullptr);
    for (const Seen& entry : seen)
        EXPECT_NE(entry.message, static_cast<UINT>(WM_DESTROY));
    DestroyWindow(dialog);
}

TEST_F(Windows, ADestroyedWindowIsNoWindow) {
    const HWND dialog = open(address_dialog);
    const HWND control = GetDlgItem(dialog, IDOK);
    EXPECT_TRUE(DestroyWindow(dialog));
    EXPECT_FALSE(IsWindow(dialog));
    EXPECT_FALSE(IsWindow(control));
    EXPECT_FALSE(RedrawWindow(dialog, nullptr, nullptr, RDW_UPDATENOW | RDW_ALLCHILDREN));
    for (const HWND gone : {dialog, control, static_cast<HWND>(nullptr)}) {
        SetLastError(0);
        EXPECT_FALSE(SetWindowTextW(gone, TEXT("x")));
        EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INVALID_WINDOW_HANDLE));
        SetLastError(0);
        EXPECT_FALSE(ShowWindow(gone, SW_SHOW));
        EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INVALID_WINDOW_HANDLE));
        RECT rectangle;
        EXPECT_FALSE(GetWindowRect(gone, &rectangle));
    }
    EXPECT_FALSE(DestroyWindow(dialog));
}

TEST_F(Windows, TheCloseBoxCountsAsCancelUnlessThatIsGrey) {
    const HWND dialog = open(address_dialog);
    SendMessageW(dialog, WM_CLOSE, 0, 0);
    EXPECT_TRUE(commands().empty()) << "the command is posted, not sent";
    MSG message;
    while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE))
        DispatchMessageW(&message);
    EXPECT_EQ(commands(), just(MAKEWPARAM(IDCANCEL, BN_CLICKED)));

    seen.clear();
    EnableWindow(GetDlgItem(dialog, IDCANCEL), FALSE);
    SendMessageW(dialog, WM_CLOSE, 0, 0);
    while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE))
        DispatchMessageW(&message);
    EXPECT_TRUE(commands().empty());
    DestroyWindow(dialog);
}

TEST_F(Windows, ADialogAnswersByItsMessageResult) {
    const HWND dialog = open(address_dialog);
    handled_message = WM_USER + 10;
    EXPECT_EQ(SendMessageW(dialog, WM_USER + 10, 0, 0), 0) << "handled, but no result was set";
    handled_result = 5;
    EXPECT_EQ(SendMessageW(dialog, WM_USER + 10, 0, 0), 5);
    EXPECT_EQ(SendMessageW(dialog, WM_USER + 11, 0, 0), 0) << "the result before counts no more";

    handled_message = WM_SETCURSOR;
    handled_result = TRUE;
    const HCURSOR wait = LoadCursorW(nullptr, IDC_WAIT);
    ASSERT_NE(wait, nullptr);
    const HWND ok = GetDlgItem(dialog, IDOK);
    const LPARAM over_client = MAKELPARAM(HTCLIENT, WM_MOUSEMOVE);
    SetCursor(wait);
    SendMessageW(ok, WM_SETCURSOR, reinterpret_cast<WPARAM>(ok), over_client);
    EXPECT_EQ(GetCursor(), wait) << "the control asks its dialog first";
    handled_result = 0;
    SendMessageW(ok, WM_SETCURSOR, reinterpret_cast<WPARAM>(ok), over_client);
    EXPECT_NE(GetCursor(), wait) << "without a result the arrow comes back";
    DestroyWindow(dialog);
}

TEST_F(Windows, ClicksReachTheDialogAsCommands) {
    const HWND dialog = open(terms_dialog);
    const HWND box = GetDlgItem(dialog, accept_box);
    const HWND cancel = GetDlgItem(dialog, IDCANCEL);
    SendMessageW(box, BM_CLICK, 0, 0);
    EXPECT_EQ(SendMessageW(box, BM_GETCHECK, 0, 0), BST_CHECKED);
    EXPECT_EQ(commands(), just(MAKEWPARAM(accept_box, BN_CLICKED)));
    SendMessageW(box, BM_CLICK, 0, 0);
    EXPECT_EQ(SendDlgItemMessageW(dialog, accept_box, BM_GETCHECK, 0, 0), BST_UNCHECKED);
    seen.clear();
    SendMessageW(box, BM_SETCHECK, BST_CHECKED, 0);
    EXPECT_EQ(SendMessageW(box, BM_GETCHECK, 0, 0), BST_CHECKED);
    EXPECT_TRUE(commands().empty()) << "setting the box is no click";

    SendMessageW(cancel, BM_CLICK, 0, 0);
    EXPECT_EQ(commands(), just(MAKEWPARAM(IDCANCEL, BN_CLICKED)));
    EXPECT_EQ(SendMessageW(cancel, BM_GETCHECK, 0, 0), BST_UNCHECKED);
    DestroyWindow(dialog);
}

TEST_F(Windows, TextsAreCutAtTheBufferAndTerminated) {
    const HWND dialog = open(address_dialog);
    const HWND edit = GetDlgItem(dialog, 1000);
    EXPECT_TRUE(SetWindowTextW(edit, TEXT("10.0.0.7")));
    EXPECT_EQ(GetWindowTextLengthW(edit), 8);
    WCHAR text[6] = {};
    EXPECT_EQ(GetWindowTextW(edit, text, 5), 4);
    EXPECT_EQ(lstrcmpW(text, TEXT("10.0")), 0);
    EXPECT_EQ(GetDlgItemTextW(dialog, 1000, text, 6), 5u);
    EXPECT_TRUE(SetDlgItemTextW(dialog, 1000, TEXT("")));
    EXPECT_EQ(GetWindowTextW(edit, text, 6), 0);
    EXPECT_EQ(text[0], 0);
    EXPECT_FALSE(SetDlgItemTextW(dialog, 4711, TEXT("x")));
    EXPECT_TRUE(SetWindowTextW(dialog, TEXT("Title")));
    EXPECT_EQ(GetWindowTextLengthW(dialog), 5);
    DestroyWindow(dialog);
}

TEST_F(Windows, AWindowIsWhereItWasMovedTo) {
    const HWND dialog = open(address_dialog);
    RECT before;
    ASSERT_TRUE(GetWindowRect(dialog, &before));
    EXPECT_GT(before.right - before.left, 183);
    EXPECT_TRUE(MoveWindow(dialog, 40, 30, 300, 200, TRUE));
    RECT after;
    ASSERT_TRUE(GetWindowRect(dialog, &after));
    EXPECT_EQ(after.left, 40);
    EXPECT_EQ(after.top, 30);
    EXPECT_EQ(after.right, 340);
    EXPECT_EQ(after.bottom, 230);
    ASSERT_TRUE(GetWindowRect(GetDesktopWindow(), &after));
    EXPECT_EQ(after.right - after.left, GetSystemMetrics(SM_CXSCREEN));
    EXPECT_EQ(after.bottom - after.top, GetSystemMetrics(SM_CYSCREEN));
    DestroyWindow(dialog);
}

TEST_F(Windows, DialogMessagesAreThoseOfTheDialogAndItsControls) {
    const HWND dialog = open(address_dialog);
    const HWND other = open(terms_dialog);
    const struct {
        const char* name;
        HWND target;
        BOOL taken;
    } cases[] = {{"dialog", dialog, TRUE},
                 {"control", GetDlgItem(dialog, 1000), TRUE},
                 {"other dialog", other, FALSE},
                 {"control of the other dialog", GetDlgItem(other, IDOK), FALSE},
                 {"no window", nullptr, FALSE}};
    for (const auto& [name, target, taken] : cases) {
        seen.clear();
        EXPECT_EQ(handled_by(dialog, target, WM_USER + 20, 0), taken) << name;
        const bool dispatched = !seen.empty() && seen.back().message == WM_USER + 20;
        EXPECT_EQ(dispatched, target == dialog) << name;
    }
    DestroyWindow(other);
    DestroyWindow(dialog);
}

TEST_F(Windows, ReturnAndEscapeBecomeCommands) {
    const HWND dialog = open(address_dialog);
    const HWND edit = GetDlgItem(dialog, 1000);
    EXPECT_TRUE(handled_by(dialog, edit, WM_KEYDOWN, VK_RETURN));
    EXPECT_EQ(commands(), just(IDOK));
    seen.clear();
    EXPECT_TRUE(handled_by(dialog, edit, WM_KEYDOWN, VK_ESCAPE));
    EXPECT_EQ(commands(), just(IDCANCEL));

    DestroyWindow(dialog);

    // A dialog that uses the number of DM_GETDEFID itself seems to have no default button.
    const HWND own_message = create(main_dialog);
    EnableWindow(GetDlgItem(own_message, IDCANCEL), FALSE); // nothing is left that takes the focus
    ShowWindow(own_message, SW_SHOW);
    seen.clear();
    handled_message = DM_GETDEFID;
    EXPECT_TRUE(handled_by(own_message, own_message, WM_KEYDOWN, VK_RETURN));
    EXPECT_EQ(commands(), just(IDOK));
    DestroyWindow(own_message);
}

TEST_F(Windows, AModalDialogGivesTheResultOfItsEnd) {
    const HWND owner = open(main_dialog);
    modal_result = 42;
    const auto run = [owner](int command) {
        return DialogBoxParamW(GetModuleHandleW(nullptr), MAKEINTRESOURCEW(address_dialog), owner,
                               modal_procedure, command);
    };
    EXPECT_EQ(run(IDOK), 42);
    EXPECT_TRUE(IsWindowEnabled(owner));
    EXPECT_EQ(run(IDCANCEL), 0);
    EXPECT_EQ(DialogBoxParamW(GetModuleHandleW(nullptr), MAKEINTRESOURCEW(4711), nullptr, modal_procedure, 0),
              -1);
    DestroyWindow(owner);
}

} // namespace
