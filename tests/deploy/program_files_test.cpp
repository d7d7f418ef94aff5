#include "deploy/program_files.h"

#include "deploy/deploy_fixture.h"

#include <algorithm>

namespace {

class ProgramFiles : public Deployment {
protected:
    static int deploy(const char* model = "Label 100", const WCHAR* maker = u"Vorlane", int with_tools = 1) {
        return deploy_program_files(maker, u"Label Driver", "lbl.inf", model, with_tools);
    }
};

const std::set<std::string> without_tools = {"iconv.dll",
                                             "inf/lbl.inf",
                                             "media.inf",
                                             "profilenames.inf",
                                             "profiles/label100.icm",
                                             "profiles/label100.tkd",
                                             "profiles/label100_draft.tkp",
                                             "profiles/label100_fine.tkp",
                                             "settings.inf",
                                             "trk_remove.exe",
                                             "trk_remove64.exe",
                                             "zelcore.dll",
                                             "zelmodel.dat",
                                             "zelmodel.dll"};
const std::set<std::string> tools = {"portlynx.exe", "portlynx.inf", "wrenchbay.exe"};

TEST_F(ProgramFiles, LieWhereTheModelBelongs) {
    test.start();
    ASSERT_EQ(deploy(), 1);
    std::set<std::string> expected = without_tools;
    expected.insert(tools.begin(), tools.end());
    EXPECT_EQ(tree(program_files / "Vorlane/Label 100"), expected);
    EXPECT_EQ(tree(programs / "Vorlane/Label 100"),
              (std::set<std::string>{"Label Driver Uninstall.lnk", "Label Driver Wrenchbay.lnk"}));
    EXPECT_EQ(TestSession::read(program_files / "Vorlane/Label 100/zelcore.dll"),
              TestSession::read(test.medium / "Drivers/32-bit/zelcore.dll"));
    const std::string log = test.log();
    EXPECT_TRUE(log.starts_with("ProgramFiles C:\\Program Files\r\n"
                                "C:\\Program Files\\Vorlane\r\n"
                                "C:\\Program Files\\Vorlane\\Label 100\r\n"
                                "Copy D:\\medium\\wrenchbay\\trk_remove64.exe to "
                                "C:\\Program Files\\Vorlane\\Label 100\\trk_remove64.exe\r\n"))
        << log;
    EXPECT_NE(
        log.find(
            "Copy D:\\medium\\Drivers\\lbl.inf to C:\\Program Files\\Vorlane\\Label 100\\inf\\lbl.inf\r\n"
            "copyDirFiles D:\\medium\\profiles\\*.tkp to "
            "C:\\Program Files\\Vorlane\\Label 100\\profiles\\\r\n"),
        std::string::npos)
        << log;
    TestSession::write(program_files / "Vorlane/Label 100/media.inf", "old");
    EXPECT_EQ(deploy(), 1) << "over an earlier deployment";
    EXPECT_EQ(TestSession::read(program_files / "Vorlane/Label 100/media.inf"),
              TestSession::read(test.medium / "wrenchbay/media.inf"));
    EXPECT_EQ(deploy("Label 200", u"Vorlane", 0), 1);
    EXPECT_EQ(tree(program_files / "Vorlane/Label 200"), without_tools);
    EXPECT_EQ(tree(programs / "Vorlane/Label 200"), std::set<std::string>{"Label Driver Uninstall.lnk"});
    expect_all_given_back();
}

TEST_F(ProgramFiles, MissingFilesStopWhereTheyMatter) {
    const struct {
        const char* missing;
        int result;
        const char* last_copied; // of the rows in front
    } table[] = {
        {"wrenchbay/trk_remove64.exe", 0, ""},
        {"wrenchbay/media.inf", 0, "portlynx.inf"},
        {"wrenchbay/profilenames.inf", 1, "profiles/label100.icm"},
        {"Drivers/32-bit/iconv.dll", 0, "zelmodel.dll"},
        {"Drivers/lbl.inf", 0, "iconv.dll"},
        {"profiles/label100.tkd", 1, "profiles/label100.icm"},
        {"profiles", 1, "inf/lbl.inf"},
    };
    for (const auto& row : table) {
        const std::filesystem::path away = test.folder.path / "away";
        std::filesystem::rename(test.medium / row.missing, away);
        test.start();
        EXPECT_EQ(deploy(), row.result) << row.missing;
        const std::set<std::string> left = tree(program_files / "Vorlane/Label 100");
        EXPECT_TRUE(row.last_copied[0] == 0 ? left.empty() : left.contains(row.last_copied)) << row.missing;
        EXPECT_EQ(tree(programs).size(), row.result == 1 ? 2u : 0u) << row.missing;
        if (row.result == 0) {
            std::string source = row.missing;
            std::replace(source.begin(), source.end(), '/', '\\');
            EXPECT_TRUE(test.log().ends_with("copy file failed 0 2 D:\\medium\\" + source + "\r\n"))
                << test.log();
        }
        test.stop();
        std::filesystem::remove_all(program_files / "Vorlane");
        std::filesystem::remove_all(programs / "Vorlane");
        std::filesystem::rename(away, test.medium / row.missing);
    }
}

// What comes from a CD is read-only on the disk too, and a second install has to get over it.
TEST_F(ProgramFiles, ReplaceReadOnlyFilesOfAnEarlierInstall) {
    using std::filesystem::perms;
    std::filesystem::permissions(test.medium / "wrenchbay/media.inf", perms::owner_read);
    test.start();
    ASSERT_EQ(deploy(), 1);
    const std::string first = test.log();
    TestSession::write(test.medium / "wrenchbay/settings.inf", "[UI]\r\nLanguage=FRA\r\n");
    EXPECT_EQ(deploy(), 1);
    EXPECT_EQ(test.log(), first + first) << "one line a copy";
    EXPECT_EQ(platform::session().gate.count("SetFileAttributesW"), 1u);
    test.stop();
    // A refusal that has another reason is the copy's end.
    test.machine.faults = {{"CopyFileW", 3, true, 5, ""}};
    test.start();
    EXPECT_EQ(deploy(), 0);
    EXPECT_TRUE(test.log().ends_with("copy file failed 0 5 D:\\medium\\wrenchbay\\wrenchbay.exe\r\n"))
        << test.log();
    EXPECT_EQ(platform::session().gate.count("SetFileAttributesW"), 0u);
}

TEST_F(ProgramFiles, HostileNamesMakeNothing) {
    const struct {
        const WCHAR* maker;
        const char* model;
        const char* shown;
    } table[] = {{u"Vorlane", "..", ".."},
                 {u"Vorlane", "..\\..\\Windows", "..\\..\\Windows"},
                 {u"Vorlane", "", ""},
                 {u"Vorlane", "a:b", "a:b"},
                 {u"Vorlane", "Label ", "Label "},
                 {u"Vorlane", "x/y", "x/y"},
                 {u"", "Label 100", ""},
                 {u"..", "Label 100", ".."}};
    test.start();
    std::string expected;
    for (const auto& row : table) {
        EXPECT_EQ(deploy(row.model, row.maker), 0) << row.shown;
        expected += "ProgramFiles C:\\Program Files\r\nnot a folder name: " + std::string(row.shown) + "\r\n";
    }
    EXPECT_EQ(test.log(), expected);
    EXPECT_TRUE(tree(program_files).empty());
    EXPECT_EQ(platform::session().gate.count("CreateDirectoryW"), 0u);
}

TEST_F(ProgramFiles, NeedBothKnownFolders) {
    for (unsigned nth = 1; nth <= 2; ++nth) {
        test.machine.faults = {{"SHGetKnownFolderPath", nth, true, 0x80070005, ""}};
        test.start();
        EXPECT_EQ(deploy(), 0);
        EXPECT_TRUE(test.log().ends_with(nth == 1 ? "Get ProgramFiles failed -2147024891\r\n"
                                                  : "Get CommonPrograms failed -2147024891\r\n"));
        EXPECT_EQ(tree(program_files).empty(), nth == 1);
        expect_all_given_back();
        test.stop();
    }
}

TEST_F(ProgramFiles, NeverComeFromACurrentFolderThatDoesntFit) {
    test.machine.current_folder = u"D:\\" + std::u16string(253, u'm');
    test.start();
    EXPECT_EQ(deploy(), 0);
    EXPECT_TRUE(test.log().ends_with("\\Label 100\r\ncurrent folder too long\r\n")) << test.log();
    EXPECT_EQ(platform::session().gate.count("CopyFileW"), 0u);
}

TEST_F(ProgramFiles, PathsThatDontFitAreNeverUsed) {
    const std::u16string folder = u"C:\\" + std::u16string(506, u'f') + u"\\"; // 510 characters
    test.start();
    EXPECT_EQ(copy_package_file(folder.c_str(), u"ab", u"C:\\", u"ab"), 0);
    EXPECT_EQ(copy_package_file(u"D:\\medium\\wrenchbay\\", u"media.inf", folder.c_str(), u"ab"), 0);
    EXPECT_TRUE(test.log().ends_with("copy file failed 0 206 D:\\medium\\wrenchbay\\media.inf\r\n"))
        << test.log();
    EXPECT_EQ(copyDirFiles((folder + u"*.").c_str(), u"C:\\"), DWORD{ERROR_FILENAME_EXCED_RANGE});
    EXPECT_NE(copyDirFiles((folder + u"*.*").c_str(), u"C:\\"), 0);
    EXPECT_NE(copyDirFiles(u"D:\\medium\\profiles\\*.tkp", (folder + u"ff").c_str()), 0);
    EXPECT_EQ(platform::session().gate.count("CopyFileW"), 0u);
    EXPECT_EQ(platform::session().gate.count("SHFileOperationW"), 0u);
    EXPECT_EQ(deploy("Label 100", std::u16string(600, u'v').c_str()), 0);
    EXPECT_EQ(platform::session().gate.count("CreateDirectoryW"), 0u);
}

TEST_F(ProgramFiles, VersionsAreComparedFieldByField) {
    const struct {
        platform::SystemVersion running;
        int expected; // against 6.2.0
    } table[] = {{{6, 2, 0}, 0},     {{6, 2, 9200}, 1},  {{6, 3, 0}, 1},         {{10, 0, 0}, 1},
                 {{6, 1, 7601}, -1}, {{5, 9, 9999}, -1}, {{0x80000000, 0, 0}, 1}};
    for (const auto& row : table) {
        test.machine.version = row.running;
        test.start();
        EXPECT_EQ(compare_os_version(6, 2, 0), row.expected) << row.running.major << "." << row.running.minor;
        EXPECT_EQ(is_os_newer_than(), row.expected == 1);
        test.stop();
    }
    test.machine.faults = {{"GetVersionExW", 1, true, 122, ""}};
    test.start();
    EXPECT_EQ(compare_os_version(0, 0, 0), 0) << "no answer counts as 0.0.0";
}

} // namespace
