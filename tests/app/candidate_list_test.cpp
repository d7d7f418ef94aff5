#include "app/candidate_list.h"
#include "app/main_dialog.h"

#include "calls/windows/user_input.h"
#include "harness/test_session.h"
#include "resources/resource_ids.h"

#include <gtest/gtest.h>

#include <array>

namespace {

INT_PTR CALLBACK quiet_proc(HWND, UINT, WPARAM, LPARAM) {
    return 0;
}

class CandidateList : public testing::Test {
protected:
    void SetUp() override {
        test.start();
        app.main_dialog = CreateDialogParamW(nullptr, MAKEINTRESOURCEW(IDD_MAIN), nullptr, quiet_proc, 0);
    }

    static std::vector<std::string> rows() {
        const std::vector<platform::DialogView> dialogs = platform::dialogs();
        for (const platform::ControlView& control : dialogs.front().controls)
            if (control.id == IDC_PRINTER_LIST)
                return control.rows;
        return {};
    }

    static HWND list() { return GetDlgItem(app.main_dialog, IDC_PRINTER_LIST); }
    static LONG list_width() {
        RECT place = {};
        GetWindowRect(list(), &place);
        return place.right - place.left;
    }
    static std::array<int, 5> place_of(const platform::ControlView& control) {
        return {control.id, control.left, control.top, control.width, control.height};
    }

    TestSession test;
};

TEST_F(CandidateList, KeepsOneRowForEachAddress) {
    add_candidate("10.0.0.7", "Shelf");
    add_candidate("10.0.0.8", "Shelf");
    add_candidate("10.0.0.7", "Other");
    add_candidate("USB-like", "");
    add_usb_candidate(TEXT("USB001"), TEXT("On the cable"));
    add_usb_candidate(TEXT("USB001"), TEXT("On the cable")); // no check here
    EXPECT_EQ(rows(), (std::vector<std::string>{"10.0.0.7\tShelf", "10.0.0.8\tShelf", "USB-like\t",
                                                "USB\tOn the cable", "USB\tOn the cable"}));
    EXPECT_EQ(test.log(), "10.0.0.7 already in list\r\n");
    ASSERT_EQ(app.candidate_count, 5);
    const DWORD is_network[] = {1, 1, 0, 0, 0};
    for (int i = 0; i < app.candidate_count; ++i)
        EXPECT_EQ(app.candidates[i].is_network, is_network[i]) << i;
    EXPECT_STREQ(platform::to_utf8(app.candidates[3].address).c_str(), "USB001");
}

TEST_F(CandidateList, CutsRowsAndNamesButNoAddress) {
    const std::string address(120, '1');
    add_candidate(address.c_str(), std::string(150, 'n').c_str());
    add_candidate("2", std::string(150, 'n').c_str());
    EXPECT_EQ(rows(), (std::vector<std::string>{std::string(99, '1'), "2\t" + std::string(97, 'n')}));
    EXPECT_EQ(platform::to_utf8(app.candidates[0].address), address);
    EXPECT_EQ(platform::to_utf8(app.candidates[1].printer_name), std::string(99, 'n'));
    add_usb_candidate(std::u16string(256, u'U').c_str(), TEXT("a port's name is never cut"));
    EXPECT_EQ(app.candidate_count, 2);
}

// What lies beyond its column isn't painted. The address takes the 96 pixels up to the tab stop.
TEST_F(CandidateList, GivesRowsTheRoomOfTheLongestName) {
    const auto room = [] {
        RECT row = {};
        SendMessageW(list(), LB_GETITEMRECT, 0, reinterpret_cast<LPARAM>(&row));
        return row.right - row.left;
    };
    search_printers("Label_100_Series");
    std::string name;
    add_candidate("10.0.0.1", name.c_str());
    const LONG two_columns = room();
    EXPECT_LE(2 * two_columns, list_width() - 4) << "within the edges";
    EXPECT_GT(3 * two_columns, list_width());
    for (int length = 1; length < 20; ++length) {
        name += 'm';
        add_candidate(("10.0.1." + std::to_string(length)).c_str(), name.c_str());
        EXPECT_GE(room(), 96 + 6 * length) << name;
    }
    EXPECT_LE(room(), list_width());
    clear_candidates();
    search_printers("Label_100_Series");
    add_candidate("10.0.0.1", "Shelf");
    EXPECT_EQ(room(), two_columns) << "the next search begins anew";
}

TEST_F(CandidateList, EveryRowCanBeReached) {
    const std::vector<platform::ControlView> before = platform::dialogs().front().controls;
    make_list_scroll(app.main_dialog);
    const std::vector<platform::ControlView> after = platform::dialogs().front().controls;
    ASSERT_EQ(after.size(), before.size());
    for (std::size_t i = 0; i < before.size(); ++i) // the Tab key goes by this order
        EXPECT_EQ(place_of(after[i]), place_of(before[i]));
    ShowWindow(app.main_dialog, SW_SHOW);
    show_control(app.main_dialog, IDC_PRINTER_LIST, 1, 1);
    search_printers("Label_100_Series");
    for (int i = 0; i < candidate_capacity; ++i)
        add_candidate(("10.0.0." + std::to_string(i)).c_str(), "Shelf");
    for (const int row : {0, 8, candidate_capacity - 1, 50, 7}) {
        EXPECT_EQ(platform::select_row(row), "");
        MSG message;
        while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE))
            DispatchMessageW(&message);
        EXPECT_EQ(SendMessageW(list(), LB_GETCURSEL, 0, 0), row);
    }
    for (int row = 8; row < candidate_capacity; ++row)
        SendMessageW(list(), WM_KEYDOWN, VK_DOWN, 0);
    EXPECT_EQ(SendMessageW(list(), LB_GETCURSEL, 0, 0), candidate_capacity - 1);
    clear_candidates();
    EXPECT_EQ(GetWindowLongPtrW(list(), GWL_STYLE) & LONG_PTR{WS_HSCROLL}, 0);
}

TEST_F(CandidateList, EndsAtItsCapacity) {
    for (int i = 0; i <= candidate_capacity; ++i)
        add_candidate(("10.0.0." + std::to_string(i)).c_str(), "Shelf");
    add_usb_candidate(TEXT("USB001"), TEXT("On the cable"));
    add_candidate("10.0.0.99", "the last one"); // known, so it isn't refused
    EXPECT_EQ(app.candidate_count, candidate_capacity);
    EXPECT_EQ(rows().size(), static_cast<std::size_t>(candidate_capacity));
    EXPECT_EQ(test.log(), "Candidate list full\r\nCandidate list full\r\n10.0.0.99 already in list\r\n");
}

} // namespace
