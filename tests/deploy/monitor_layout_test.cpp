#include "deploy/monitor_layout.h"

#include "deploy/deploy_fixture.h"

namespace {

// Lays out a medium with a monitor folder.
class MonitorLayout : public Deployment {
protected:
    void SetUp() override {
        for (const char* name :
             {"trk_remove64.exe", "trk_remove.exe", "monitor/lblmon.inf", "wrenchbay/wrenchbay.exe",
              "wrenchbay/portlynx.exe", "wrenchbay/portlynx.inf", "wrenchbay/media.inf",
              "wrenchbay/settings.inf", "monitor/x86/zelcore.dll", "monitor/x86/zelmodel.dat",
              "monitor/x86/zelmodel.dll", "monitor/x86/iconv.dll", "monitor/profiles/a.tkp",
              "monitor/profiles/b.icm"})
            TestSession::write(test.medium / name, name);
    }

    static int deploy(const WCHAR* model = u"Label 100") {
        return deploy_monitor_layout(u"Vorlane", model, u"lblmon.inf");
    }

    static unsigned lines_with(const std::string& log, const std::string& text) {
        unsigned count = 0;
        for (std::size_t place = log.find(text); place != log.npos; place = log.find(text, place + 1))
            ++count;
        return count;
    }
};

TEST_F(MonitorLayout, LiesInOneFolder) {
    test.start();
    ASSERT_EQ(deploy(), 1);
    const std::set<std::string> files = {
        "a.tkp",        "iconv.dll",    "media.inf",      "monitor.inf",      "portlynx.exe",
        "portlynx.inf", "settings.inf", "trk_remove.exe", "trk_remove64.exe", "wrenchbay.exe",
        "zelcore.dll",  "zelmodel.dat", "zelmodel.dll"};
    EXPECT_EQ(tree(program_files / "Vorlane/Label 100"), files);
    EXPECT_EQ(TestSession::read(program_files / "Vorlane/Label 100/monitor.inf"), "monitor/lblmon.inf");
    EXPECT_EQ(tree(programs / "Vorlane/Label 100"),
              (std::set<std::string>{"Label 100 Uninstall.lnk", "Label 100 Wrenchbay.lnk"}));
    EXPECT_NE(test.log().find("Copy D:\\medium\\\\monitor\\lblmon.inf to "), std::string::npos);
    EXPECT_NE(test.log().find("CommonPrograms C:\\ProgramData"), std::string::npos);
    EXPECT_EQ(deploy(), 1);
    EXPECT_EQ(lines_with(test.log(), "create dir failed 0 183\r\n"), 2u);
    EXPECT_EQ(lines_with(test.log(), "create dir failed 0 C:\\"), 2u);
    expect_all_given_back();
}

TEST_F(MonitorLayout, FailedCopiesAreLinesOnly) {
    std::filesystem::remove_all(test.medium / "monitor/x86");
    test.start();
    EXPECT_EQ(deploy(), 1);
    EXPECT_EQ(lines_with(test.log(), "copy file failed 0 3 D:\\medium\\\\monitor\\x86\\"), 4u);
    EXPECT_EQ(tree(programs).size(), 2u);
}

TEST_F(MonitorLayout, WithoutPlainNamesOrCurrentFolderNothingIsCopied) {
    test.start();
    EXPECT_EQ(deploy(u"..\\x"), 1);
    EXPECT_NE(test.log().find("not a folder name: ..\\x\r\n"), std::string::npos);
    EXPECT_EQ(platform::session().gate.count("CreateDirectoryW"), 0u);
    EXPECT_EQ(platform::session().gate.count("CopyFileW"), 0u);
    test.stop();
    test.machine.current_folder = u"D:\\" + std::u16string(253, u'm');
    test.start();
    EXPECT_EQ(deploy(), 1);
    EXPECT_EQ(lines_with(test.log(), "current folder too long\r\n"), 1u);
    EXPECT_EQ(platform::session().gate.count("CopyFileW"), 0u);
    EXPECT_EQ(tree(programs).size(), 2u) << "the rest goes on";
    test.stop();
    test.machine = platform::default_machine();
    test.start();
    EXPECT_EQ(deploy(std::u16string(600, u'm').c_str()), 1);
    EXPECT_EQ(deploy_monitor_layout(std::u16string(600, u'v').c_str(), u"Label 100", u"lblmon.inf"), 1);
    EXPECT_EQ(lines_with(test.log(), "create dir failed 0 206\r\n"), 3u) << "one folder, then two";
    EXPECT_EQ(lines_with(test.log(), " 206\r\n"), 6u) << "the group's lines are cut, but not their code";
    EXPECT_EQ(
        platform::session().gate.count("CopyFileW") + platform::session().gate.count("SHFileOperationW"), 0u);
}

TEST_F(MonitorLayout, NeedsBothKnownFolders) {
    for (unsigned nth = 1; nth <= 2; ++nth) {
        test.machine.faults = {{"SHGetKnownFolderPath", nth, true, 0x80070005, ""}};
        test.start();
        EXPECT_EQ(deploy(), 0);
        EXPECT_TRUE(test.log().ends_with(nth == 1 ? "Get ProgramFiles failed -2147024891\r\n"
                                                  : "Get CommonPrograms failed -2147024891\r\n"));
        test.stop();
    }
}

} // namespace
