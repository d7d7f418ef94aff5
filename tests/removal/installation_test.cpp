#include "removal/installation.h"

#include "deploy/program_files.h"
#include "harness/test_session.h"
#include "spooler/driver_package.h"

#include <gtest/gtest.h>

namespace {

class Installation : public testing::Test {
protected:
    // A model as an install leaves it, with a queue that still prints if asked.
    void install(const char* model, const char* folder_name = "lbl.inf") {
        ASSERT_EQ(deploy_program_files(u"Vorlane", u"Label 100 Driver", folder_name, model, 1), 1);
        ASSERT_EQ(install_driver_package("Label 100 Driver", u"D:\\medium\\Drivers\\lbl.inf"), 1);
        before = test.log().size();
    }

    void start_with_medium() {
        std::filesystem::copy(TRK_SAMPLE_MEDIUM, test.medium, std::filesystem::copy_options::recursive);
        test.start();
    }

    // A package folder that stands in the store without the spooler's knowing more of it.
    void store(const std::string& folder, const std::string& inf, bool deny = false) {
        TestSession::write(repository / folder / inf, "; package");
        test.machine.spooler.packages.push_back({u"C:\\Windows\\System32\\DriverStore\\FileRepository\\" +
                                                     platform::to_utf16(folder + "\\" + inf),
                                                 deny});
    }

    std::string log() const { return test.log().substr(before); }

    static unsigned lines_with(const std::string& log, const std::string& text) {
        unsigned count = 0;
        for (std::size_t place = log.find(text); place != log.npos; place = log.find(text, place + 1))
            ++count;
        return count;
    }

    void expect_all_given_back() {
        EXPECT_TRUE(platform::session().memory.live().empty());
        for (const std::string& kind : platform::session().handles.open_kinds())
            EXPECT_TRUE(kind == "file" || kind == "mutex") << kind; // the log's
    }

    TestSession test;
    std::filesystem::path install_root = test.drive_c / "Program Files/Vorlane";
    std::filesystem::path groups = test.drive_c / "ProgramData/Microsoft/Windows/Start Menu/Programs";
    std::filesystem::path repository = test.drive_c / "Windows/System32/DriverStore/FileRepository";
    std::size_t before = 0;
};

TEST_F(Installation, OneModelGoesAndTheOtherStays) {
    start_with_medium();
    install("Label 100");
    install("Label 200");
    EXPECT_EQ(remove_installation(u"C:\\Program Files\\Vorlane\\Label 100\\", u"Vorlane", "Label 100"), 1);
    EXPECT_FALSE(std::filesystem::exists(install_root / "Label 100"));
    EXPECT_FALSE(std::filesystem::exists(groups / "Vorlane/Label 100"));
    EXPECT_TRUE(std::filesystem::exists(install_root / "Label 200/inf/lbl.inf"));
    EXPECT_TRUE(std::filesystem::exists(groups / "Vorlane/Label 200"));
    EXPECT_TRUE(test.machine.spooler.packages.empty()) << "the INF's name was the same for both";
    const std::string start_menu = "C:\\ProgramData\\Microsoft\\Windows\\Start Menu\\Programs";
    EXPECT_TRUE(log().starts_with(
        "CommonPrograms " + start_menu + "\r\ndel dir " + start_menu + "\\Vorlane\\Label 100\r\ndel dir " +
        start_menu +
        "\\Vorlane\r\ndel dir C:\\Program Files\\Vorlane\\Label 100\\\r\n"
        "C:\\Program Files\\Vorlane\\Label 100\\inf\\*.inf\r\n"
        "get_store_inf_name C:\\Windows\\System32\\DriverStore\\FileRepository\\*\r\nfound "))
        << log();
    EXPECT_EQ(remove_installation(u"C:\\Program Files\\Vorlane\\Label 200", u"Vorlane", "Label 200"), 1);
    EXPECT_FALSE(std::filesystem::exists(groups / "Vorlane"))
        << "the last model takes the maker's group along";
    EXPECT_TRUE(std::filesystem::exists(install_root)) << "the maker's folder isn't touched";
    expect_all_given_back();
}

TEST_F(Installation, EveryPackageOfTheInfIsRemoved) {
    store("LBL.INF_amd64_1", "lbl.inf");
    store("lbl.inf_amd64_2", "lbl.inf");
    store("lbl.in", "lbl.inf");
    store("other_lbl.inf_amd64", "lbl.inf");
    store("lbl.inf_x", "lbl.inf", true); // the last one, which the spooler refuses
    TestSession::write(test.drive_c / "P/inf/lbl.inf", "; copy");
    test.start();
    EXPECT_EQ(remove_installation(u"C:\\P", u"Vorlane", "Label 100"), 1);
    EXPECT_EQ(lines_with(log(), "remove ["), 3u);
    EXPECT_EQ(lines_with(log(), "\r\nerror "), 1u) << "a refused package ends the repetition";
    EXPECT_FALSE(std::filesystem::exists(repository / "LBL.INF_amd64_1"));
    EXPECT_FALSE(std::filesystem::exists(repository / "lbl.inf_amd64_2"));
    EXPECT_TRUE(std::filesystem::exists(repository / "lbl.in/lbl.inf"));
    EXPECT_TRUE(std::filesystem::exists(repository / "other_lbl.inf_amd64/lbl.inf"));
    EXPECT_FALSE(std::filesystem::exists(test.drive_c / "P"));
    expect_all_given_back();
}

TEST_F(Installation, MissingPartsDontStopTheRest) {
    std::filesystem::create_directories(test.drive_c / "P");
    test.start();
    EXPECT_EQ(remove_installation(u"C:\\P", u"Vorlane", "Label 100"), 1);
    EXPECT_TRUE(log().ends_with("C:\\P\\inf\\*.inf\r\nFindFirstFile error 3\r\n")) << log();
    EXPECT_FALSE(std::filesystem::exists(test.drive_c / "P"));
    TestSession::write(test.drive_c / "P/inf/lbl.inf", "; copy");
    EXPECT_EQ(remove_installation(u"C:\\P", u"Vorlane", "Label 100"), 1);
    EXPECT_TRUE(log().ends_with("FindFile error!\r\n")) << log();
    EXPECT_FALSE(std::filesystem::exists(test.drive_c / "P"));
    expect_all_given_back();
}

TEST_F(Installation, NothingIsTouchedWithoutGoodNames) {
    const struct {
        const WCHAR* folder;
        const WCHAR* maker;
        const char* model;
    } table[] = {
        {u"", u"Vorlane", "Label"},
        {u"\\", u"Vorlane", "Label"},
        {u"C:\\P", u"", "Label"},
        {u"C:\\P", u"Vorlane", ""},
        {u"C:\\P", u"..", "Label"},
        {u"C:\\P", u"Vorlane", "..\\..\\x"},
        {u"C:\\P", u"Vorlane", "a*"},
        // What names a drive, nothing, or several things.
        {u"C:\\", u"Vorlane", "Label"},
        {u"C:", u"Vorlane", "Label"},
        {u"C:\\\\P", u"Vorlane", "Label"},
        {u"C:\\P\\\\", u"Vorlane", "Label"},
        {u"C:\\P*", u"Vorlane", "Label"},
        {u"C:\\P?\\b", u"Vorlane", "Label"},
        {u"C:\\P\\..", u"Vorlane", "Label"},
        {u"P", u"Vorlane", "Label"},
        {u"\\\\server\\P", u"Vorlane", "Label"},
        {u"1:\\P", u"Vorlane", "Label"},
    };
    std::filesystem::create_directories(test.drive_c / "P");
    test.start();
    std::string expected;
    for (const auto& row : table) {
        EXPECT_EQ(remove_installation(row.folder, row.maker, row.model), 0);
        expected += "nothing to remove\r\n";
    }
    EXPECT_EQ(log(), expected);
    EXPECT_EQ(delete_folder_tree(u""), ERROR_INVALID_NAME);
    EXPECT_EQ(platform::session().gate.count("SHFileOperationW"), 0u);
    EXPECT_EQ(platform::session().gate.count("RemoveDirectoryW"), 0u);
    test.stop();
    test.machine.faults = {{"SHGetKnownFolderPath", 1, true, 0x80070005, ""}};
    test.start();
    before = test.log().size();
    EXPECT_EQ(remove_installation(u"C:\\P", u"Vorlane", "Label"), 0);
    EXPECT_EQ(log(), "Get CommonPrograms failed -2147024891\r\n");
    EXPECT_TRUE(std::filesystem::exists(test.drive_c / "P"));
}

// In code page 932 these two letters differ in one byte, by which two letters of the alphabet differ in case;
// and by code page 1252's best fit a full-width name reads like another.
TEST_F(Installation, PackagesOfOtherNamesStay) {
    WCHAR path[removal_path_capacity];
    store("ヂ.inf_amd64_1", "ア.inf");
    test.machine.code_page = 932;
    test.start();
    EXPECT_EQ(get_store_inf_name("\x83\x41.inf", path), 0);
    EXPECT_EQ(get_store_inf_name("\x83\x61.INF", path), 1);
    test.stop();
    store("ｌbl.inf_amd64_1", "lbl.inf");
    test.machine.code_page = 1252;
    test.start();
    EXPECT_EQ(get_store_inf_name("lbl.inf", path), 0);
}

TEST_F(Installation, NamesThatCantBeConvertedAreNoNames) {
    store("anything", "x.inf");
    TestSession::write(test.drive_c / "P/inf/\u30e9\u30d9\u30eb.inf", "; copy");
    test.start();
    char name[inf_name_capacity];
    WCHAR path[removal_path_capacity];
    EXPECT_EQ(find_package_inf(u"C:\\P", name), 0);
    EXPECT_EQ(find_package_inf(std::u16string(600, u'p').c_str(), name), 0);
    EXPECT_TRUE(log().ends_with("FindFirstFile error 206\r\n"));
    EXPECT_EQ(get_store_inf_name("", path), 0);
    EXPECT_EQ(get_store_inf_name(std::string(511, 'x').c_str(), path), 0);
    EXPECT_EQ(get_store_inf_name("any", path), 1);
    EXPECT_EQ(platform::to_utf8(path), "C:\\Windows\\System32\\DriverStore\\FileRepository\\anything\\any");
    expect_all_given_back();
}

TEST_F(Installation, RefusalOfAPackageHasItsReason) {
    const struct {
        std::uint32_t error;
        const char* line;
    } table[] = {{0x80070005, "error Access is denied.\r\n\r\n"}, {0x8007f123, "error 8007f123\r\n"}};
    for (const auto& row : table) {
        test.machine.faults = {{"DeletePrinterDriverPackageW", 1, true, row.error, ""}};
        test.start();
        before = test.log().size();
        EXPECT_EQ(remove_driver_package(u"C:\\x.inf"), 0);
        EXPECT_EQ(log(), std::string("remove [C:\\x.inf]\r\n") + row.line);
        expect_all_given_back();
        test.stop();
    }
}

TEST_F(Installation, PackageThatStaysIsAskedForOnce) {
    // The spooler agrees, and the folder is still there.
    store("lbl.inf_1", "lbl.inf");
    TestSession::write(test.drive_c / "P/inf/lbl.inf", "; copy");
    platform::Session& session = test.start();
    session.gate.on_call = [&](const platform::JournalEntry& entry) {
        if (entry.call == "FindFirstFileW")
            TestSession::write(repository / "lbl.inf_1" / "lbl.inf", "; again");
    };
    EXPECT_EQ(remove_installation(u"C:\\P", u"Vorlane", "Label"), 1);
    EXPECT_EQ(lines_with(log(), "remove ["), 1u);
}

TEST(TextComparison, FoldsSmallAndCapitalLetters) {
    const struct {
        const char* first;
        const char* second;
        DWORD count;
        int expected;
    } table[] = {
        {"a", "b", 0, 0},         {"lbl.INF", "LBL.inf", 7, 0}, {"abc", "abd", 2, 0},
        {"abc", "abd", 3, -1},    {"ab", "abc", 3, -'c'},       {"ab", "ab", 9, 0},
        {"Z", "[", 1, 'z' - '['}, {"\xe4", "a", 1, 0xe4 - 'a'},
    };
    for (const auto& row : table)
        EXPECT_EQ(compare_text_nocase(row.first, row.second, row.count), row.expected)
            << row.first << " " << row.second;
}

} // namespace
