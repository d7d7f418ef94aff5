#include "deploy/shortcuts.h"

#include "deploy/deploy_fixture.h"

namespace {

class Shortcuts : public Deployment {
protected:
    void SetUp() override { std::filesystem::create_directories(programs / "G"); }

    int create(int newer, const std::u16string& driver = u"Label Driver",
               const std::u16string& label = u"Uninstall") {
        const std::u16string group = test.machine.folders.common_programs + u"\\G";
        return create_shortcut(newer, u"C:\\Program Files\\V\\", driver.c_str(), group.c_str(), label.c_str(),
                               u"trk_remove.exe");
    }
};

TEST_F(Shortcuts, SayWhereTheyLead) {
    test.start();
    ASSERT_EQ(create(1), 1);
    ASSERT_EQ(create(1), 1) << "over the first one";
    ASSERT_EQ(create(0), 1);
    EXPECT_EQ(tree(programs / "G"), (std::set<std::string>{"Label Driver Uninstall.lnk", "Uninstall.lnk"}));
    const platform::LinkFile made = link("G/Label Driver Uninstall.lnk");
    EXPECT_EQ(made.target, u"C:\\Program Files\\V\\trk_remove.exe");
    EXPECT_EQ(made.working_folder, u"C:\\Program Files\\V\\");
    EXPECT_EQ(made.description, u"Label Driver Uninstall");
    EXPECT_EQ(link("G/Uninstall.lnk").description, u"Uninstall");
    EXPECT_TRUE(test.log().starts_with("create sc [C:\\Program Files\\V\\\\trk_remove.exe] "
                                       "[C:\\ProgramData\\Microsoft\\Windows\\Start Menu\\Programs\\G\\"
                                       "Label Driver Uninstall.lnk] [Label Driver Uninstall]\r\n"));
    expect_all_given_back();
}

TEST_F(Shortcuts, FailuresLeaveNothingOpen) {
    const struct {
        const char* call;
        const char* argument;
        int result;
        const char* last_line; // behind "create sc"
    } table[] = {
        {"CoCreateInstance", "", 0, "CoCreateInstance failed!\r\n"},
        {"IUnknown::QueryInterface", "", 0, "QueryInterface failed!\r\n"},
        {"IPersistFile::Save", "", 0, ""},
        {"IShellLinkW::SetDescription", "", 1, ""},
    };
    for (const auto& row : table) {
        test.machine.faults = {{row.call, 1, true, 0x80004005, row.argument}};
        test.start();
        const std::size_t before = test.log().size();
        EXPECT_EQ(create(0), row.result) << row.call;
        const std::string log = test.log().substr(before);
        EXPECT_EQ(log.substr(log.find("\r\n") + 2), row.last_line) << row.call;
        expect_all_given_back();
        test.stop();
    }
}

TEST_F(Shortcuts, NamesThatArentFileNamesAreRefused) {
    test.start();
    for (const std::u16string name : {u"..\\..\\Startup\\x", u"a:b", u"a?"})
        EXPECT_EQ(create(1, u"Label", name), 0);
    EXPECT_EQ(create(1, std::u16string(500, u'd')), 0);
    EXPECT_EQ(platform::session().gate.count("CoCreateInstance"), 0u);
    EXPECT_TRUE(test.log().starts_with("create sc [")) << "the line is written all the same";
    EXPECT_TRUE(test.log().ends_with("\r\n")) << "also where it was cut";
    const std::string line = "\r\nshortcut path too long: C:\\ProgramData\\Microsoft\\";
    EXPECT_NE(test.log().find(line), std::string::npos);
    const std::size_t before = test.log().size();
    const std::size_t room = MAX_PATH - 1 - (test.machine.folders.common_programs.size() + 3 + 14);
    EXPECT_EQ(create(1, std::u16string(room + 1, u'd')), 0) << "more than the shell can save";
    EXPECT_NE(test.log().find(line, before), std::string::npos);
    EXPECT_EQ(create(1, std::u16string(room, u'd')), 1);
}

TEST_F(Shortcuts, MenuGroupIsMadeOnce) {
    const std::string group = "C:\\ProgramData\\Microsoft\\Windows\\Start Menu\\Programs";
    test.start();
    EXPECT_EQ(create_menu_group(u"Vorlane", u"Label 100"), 1);
    EXPECT_EQ(create_menu_group(u"Vorlane", u"Label 100"), 1);
    EXPECT_EQ(test.log(), "program folder: [" + group + "]\r\nprogram folder: [" + group +
                              "]\r\ncreate dir failed 0 " + group + "\\Vorlane 183\r\ncreate dir failed 0 " +
                              group + "\\Vorlane\\Label 100 183\r\n");
    EXPECT_TRUE(std::filesystem::is_directory(programs / "Vorlane/Label 100"));
    EXPECT_EQ(create_menu_group(std::u16string(500, u'v').c_str(), u"x"), 1);
    EXPECT_TRUE(test.log().ends_with(" 206\r\n"));
    EXPECT_EQ(platform::session().gate.count("CreateDirectoryW"), 4u);
    expect_all_given_back();
}

} // namespace
