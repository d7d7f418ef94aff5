#include "harness/calls_fixture.h"

#include <windows.h>

namespace {

INT_PTR CALLBACK idle_procedure(HWND, UINT, WPARAM, LPARAM) {
    return FALSE;
}

constexpr WPARAM no_row = static_cast<WPARAM>(-1);

class ListBoxes : public CallsTest {
protected:
    ListBoxes()
        : dialog_(CreateDialogParamW(GetModuleHandleW(nullptr), MAKEINTRESOURCEW(105), nullptr,
                                     idle_procedure, 0)),
          list_(GetDlgItem(dialog_, 1003)) {}
    ~ListBoxes() override { DestroyWindow(dialog_); }

    LRESULT send(UINT message, WPARAM wparam = 0, LPARAM lparam = 0) const {
        return SendMessageW(list_, message, wparam, lparam);
    }
    LRESULT add(const WCHAR* text) const { return send(LB_ADDSTRING, 0, reinterpret_cast<LPARAM>(text)); }

    HWND dialog_;
    HWND list_;
};

TEST_F(ListBoxes, RowsKeepTheirOrderAndTexts) {
    EXPECT_EQ(send(LB_GETCOUNT), 0);
    EXPECT_EQ(add(TEXT("b\t10.0.0.7")), 0);
    EXPECT_EQ(add(TEXT("a")), 1);
    EXPECT_EQ(add(TEXT("")), 2);
    EXPECT_EQ(send(LB_GETCOUNT), 3);
    EXPECT_EQ(send(LB_GETTEXTLEN, 0), 10);
    WCHAR text[32] = {};
    EXPECT_EQ(send(LB_GETTEXT, 0, reinterpret_cast<LPARAM>(text)), 10);
    EXPECT_EQ(lstrcmpW(text, TEXT("b\t10.0.0.7")), 0);
    EXPECT_EQ(send(LB_GETTEXT, 3, reinterpret_cast<LPARAM>(text)), LB_ERR);
    EXPECT_EQ(send(LB_GETTEXTLEN, 3), LB_ERR);
    int stops[] = {100, 200};
    EXPECT_EQ(send(LB_SETTABSTOPS, 2, reinterpret_cast<LPARAM>(stops)), TRUE);
    send(LB_RESETCONTENT);
    EXPECT_EQ(send(LB_GETCOUNT), 0);
}

TEST_F(ListBoxes, DeletingGivesTheRowsLeft) {
    EXPECT_EQ(send(LB_DELETESTRING, 0), LB_ERR);
    add(TEXT("a"));
    add(TEXT("b"));
    EXPECT_EQ(send(LB_DELETESTRING, 2), LB_ERR);
    EXPECT_EQ(send(LB_DELETESTRING, 0), 1);
    EXPECT_EQ(send(LB_DELETESTRING, 0), 0);
    EXPECT_EQ(send(LB_DELETESTRING, 0), LB_ERR);
}

TEST_F(ListBoxes, TheSelectionFollowsItsRow) {
    const struct {
        const char* name;
        WPARAM selected;
        WPARAM deleted;
        LRESULT left;
    } cases[] = {{"selected row goes", 1, 1, LB_ERR},
                 {"last row goes", 2, 2, LB_ERR},
                 {"row before goes", 2, 0, 1},
                 {"row behind goes", 0, 2, 0}};
    for (const auto& [name, selected, deleted, left] : cases) {
        SCOPED_TRACE(name);
        send(LB_RESETCONTENT);
        for (const WCHAR* text : {TEXT("a"), TEXT("b"), TEXT("c")})
            add(text);
        EXPECT_EQ(send(LB_GETCURSEL), LB_ERR) << "rows alone select nothing";
        EXPECT_EQ(send(LB_SETCURSEL, selected), static_cast<LRESULT>(selected));
        send(LB_DELETESTRING, deleted);
        EXPECT_EQ(send(LB_GETCURSEL), left);
    }
    EXPECT_EQ(send(LB_SETCURSEL, 0), 0);
    EXPECT_EQ(send(LB_SETCURSEL, 2), LB_ERR) << "there is no such row any more";
    EXPECT_EQ(send(LB_SETCURSEL, 0), 0);
    EXPECT_EQ(send(LB_SETCURSEL, no_row), LB_ERR) << "takes the selection away";
    EXPECT_EQ(send(LB_GETCURSEL), LB_ERR);
}

} // namespace
