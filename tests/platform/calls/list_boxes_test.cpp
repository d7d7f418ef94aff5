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

    // From here on the list is one of the template's styles that was made with a scroll bar, with two
    // columns.
    void make_scrolling() {
        const RECT place = place_of(list_);
        const HWND made = CreateWindowExW(
            0, TEXT("LISTBOX"), nullptr, static_cast<DWORD>(GetWindowLongPtrW(list_, GWL_STYLE)) | WS_HSCROLL,
            10, 10, width(place), place.bottom - place.top, dialog_, reinterpret_cast<HMENU>(UINT_PTR{1003}),
            nullptr, nullptr);
        ASSERT_NE(made, nullptr);
        SendMessageW(made, WM_SETFONT, static_cast<WPARAM>(send(WM_GETFONT)), 0);
        EXPECT_TRUE(SetWindowPos(made, list_, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOSIZE | SWP_NOACTIVATE));
        EXPECT_TRUE(DestroyWindow(list_));
        list_ = GetDlgItem(dialog_, 1003);
        EXPECT_EQ(list_, made);
        send(LB_SETCOLUMNWIDTH, static_cast<WPARAM>(width(place) / 2 - 4));
    }

    static RECT place_of(HWND window) {
        RECT place = {};
        EXPECT_TRUE(GetWindowRect(window, &place));
        return place;
    }
    static int width(const RECT& place) { return place.right - place.left; }
    bool has_bar() const { return (GetWindowLongPtrW(list_, GWL_STYLE) & LONG_PTR{WS_HSCROLL}) != 0; }

    bool in_sight(WPARAM row) const {
        RECT place = {};
        const RECT list = place_of(list_);
        return send(LB_GETITEMRECT, row, reinterpret_cast<LPARAM>(&place)) != LB_ERR && place.left >= 0 &&
               place.right <= width(list) && place.top >= 0 && place.bottom <= list.bottom - list.top;
    }

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

TEST_F(ListBoxes, OnlyOneThatWasMadeSoHasABarForRowsOutOfSight) {
    for (int row = 0; row < 100; ++row)
        add(TEXT("10.0.0.7\tShelf"));
    EXPECT_FALSE(has_bar());
    make_scrolling();
    LRESULT rows = 0;
    for (; !has_bar() && rows < 100; rows = send(LB_GETCOUNT)) {
        for (LRESULT row = 0; row < rows; ++row)
            EXPECT_TRUE(in_sight(static_cast<WPARAM>(row))) << row << " of " << rows;
        add(TEXT("10.0.0.7\tShelf"));
    }
    EXPECT_LT(rows, 12) << "two columns";
    const auto last = static_cast<WPARAM>(rows - 1);
    EXPECT_FALSE(in_sight(last));
    SendMessageW(list_, WM_HSCROLL, SB_LINERIGHT, 0);
    EXPECT_FALSE(in_sight(0));
    EXPECT_GT(send(LB_GETTOPINDEX), 0);
    SendMessageW(list_, WM_HSCROLL, SB_RIGHT, 0);
    EXPECT_TRUE(in_sight(last));
    SendMessageW(list_, WM_HSCROLL, SB_LEFT, 0);
    EXPECT_TRUE(in_sight(0));
    EXPECT_EQ(send(LB_GETTOPINDEX), 0);
    while (send(LB_DELETESTRING, 0) > 0) {
    }
    EXPECT_FALSE(has_bar());
}

TEST_F(ListBoxes, KeysMoveTheSelectionIntoSight) {
    make_scrolling();
    for (int row = 0; row < 30; ++row)
        add(TEXT("10.0.0.7\tShelf"));
    const struct {
        WPARAM key;
        LRESULT selected;
    } presses[] = {{VK_DOWN, 0}, {VK_DOWN, 1}, {VK_END, 29}, {VK_RIGHT, 29},
                   {VK_UP, 28},  {VK_HOME, 0}, {VK_UP, 0}};
    for (const auto& [key, selected] : presses) {
        SendMessageW(list_, WM_KEYDOWN, key, 0);
        EXPECT_EQ(send(LB_GETCURSEL), selected) << key;
        EXPECT_TRUE(in_sight(static_cast<WPARAM>(selected))) << key;
    }
    SendMessageW(list_, WM_KEYDOWN, VK_RIGHT, 0);
    SendMessageW(list_, WM_KEYDOWN, VK_LEFT, 0);
    EXPECT_EQ(send(LB_GETCURSEL), 0) << "a column there and back";
}

TEST_F(ListBoxes, PlacesAndTextsCanBeMeasured) {
    RECT place = place_of(list_);
    const int list_width = width(place);
    RECT wanted = {9, 17, 279, 40}; // the template's units
    EXPECT_TRUE(MapDialogRect(dialog_, &wanted));
    MapWindowPoints(nullptr, dialog_, reinterpret_cast<POINT*>(&place), 2);
    EXPECT_EQ(place.left, wanted.left);
    EXPECT_EQ(place.top, wanted.top);
    EXPECT_EQ(list_width, wanted.right);
    EXPECT_EQ(place.bottom - place.top, wanted.bottom);

    const HDC context = GetDC(list_);
    const HGDIOBJ before = SelectObject(context, reinterpret_cast<HGDIOBJ>(send(WM_GETFONT)));
    EXPECT_NE(before, nullptr);
    constexpr int stop = 200;
    const auto extent = [&](const WCHAR* text) {
        return GetTabbedTextExtentW(context, text, static_cast<int>(Text(text).size()), 1, &stop);
    };
    EXPECT_GT(LOWORD(extent(TEXT("MM"))), LOWORD(extent(TEXT("M"))));
    EXPECT_EQ(LOWORD(extent(TEXT("a\tM"))), stop + LOWORD(extent(TEXT("M"))));
    EXPECT_EQ(SelectObject(context, before), reinterpret_cast<HGDIOBJ>(send(WM_GETFONT)));
    EXPECT_EQ(ReleaseDC(list_, context), 1);
    EXPECT_EQ(GetTabbedTextExtentW(nullptr, TEXT("a"), 1, 1, &stop), 0u);
}

} // namespace
