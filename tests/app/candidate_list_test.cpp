#include "app/candidate_list.h"

#include "calls/windows/user_input.h"
#include "harness/test_session.h"
#include "resources/resource_ids.h"

#include <gtest/gtest.h>

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

// A click beyond the row's column would choose a row of the next one.
TEST_F(CandidateList, GivesRowsTheRoomOfTheLongestName) {
    const HWND list = GetDlgItem(app.main_dialog, IDC_PRINTER_LIST);
    search_printers("Label_100_Series");
    add_candidate("255.255.255.255", "mmmmmmmmmmmmmmmmmmm");
    constexpr int end_of_name = 96 + 19 * 5; // pixels
    SendMessageW(list, WM_LBUTTONDOWN, 0, MAKELPARAM(end_of_name, 5));
    EXPECT_EQ(SendMessageW(list, LB_GETCURSEL, 0, 0), 0);
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
