#include "harness/test_session.h"
#include "package/settings.h"

#include <gtest/gtest.h>

namespace {

struct Settings : TestSession {
    explicit Settings(const std::string& bytes) {
        write(medium / "wrenchbay" / "settings.inf", bytes);
        start();
    }
};

} // namespace

TEST(Settings, ReadsLines) {
    const std::string long_line = std::string(253, 'x') + "[" + std::string(46, 'y');
    const struct {
        const char* name;
        std::string bytes;
        std::vector<std::string> lines;
    } cases[] = {
        {"all line ends", "a\r\nb\nc\rd", {"a\r\n", "b\n", "c\r", "d"}},
        {"line feed first", "a\n\rb", {"a\n", "\r", "b"}},
        {"empty lines", "\r\n\n\r\n", {"\r\n", "\n", "\r\n"}},
        {"a long line in pieces",
         long_line + "\r\nz",
         {std::string(253, 'x'), long_line.substr(253) + "\r\n", "z"}},
        {"exactly a piece", std::string(252, 'x') + "\nz", {std::string(252, 'x') + "\n", "z"}},
        {"a line end in two pieces",
         std::string(252, 'x') + "\r\nz",
         {std::string(252, 'x') + "\r", "\n", "z"}},
        {"empty", "", {}},
    };
    for (const auto& item : cases) {
        Settings session(item.bytes);
        const HANDLE file = CreateFileW(u"D:\\medium\\wrenchbay\\settings.inf", GENERIC_READ, FILE_SHARE_READ,
                                        nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
        std::vector<std::string> lines;
        std::vector<char> line(254);
        while (const DWORD length = read_text_line(file, line.data(), 254)) {
            EXPECT_EQ(length, std::string(line.data()).size()) << item.name;
            lines.push_back(line.data());
        }
        EXPECT_EQ(lines, item.lines) << item.name;
        CloseHandle(file);
    }
}

TEST(Settings, FindsAnEntry) {
    const struct {
        const char* name;
        std::string bytes;
        std::string value;
        DWORD result;
    } cases[] = {
        {"with its line end", "[UI]\r\nLanguage=DEU\r\n", "DEU\r\n", 5},
        {"last bytes of the file", "[UI]\nLanguage=DEU", "DEU", 3},
        {"section as a prefix", "[UI] more\nLanguage=DEU", "DEU", 3},
        {"section in other case", "[ui]\nLanguage=DEU", "", 0},
        {"byte order mark", "\xef\xbb\xbf[UI]\nLanguage=DEU", "", 0},
        {"before the section", "Language=DEU\n[UI]\n", "", 0},
        {"in another section", "[A]\nLanguage=DEU\n[UI]\n[B]\nLanguage=FRA", "", 0},
        {"the section twice", "[UI]\nx\n[UI]\nLanguage=DEU", "", 0},
        {"white space", "[UI]\n Language=DEU\nLanguage = DEU\n", "", 0},
        {"behind other lines", "; c\n[A]\n\n[UI]\n\n; c\nlanguage=ENU\nLanguage=FRA\nLanguage=DEU", "FRA\n",
         4},
        {"line end alone", "[UI]\nLanguage=\r\nLanguage=DEU", "\r\n", 2},
        {"no value at the end", "[UI]\nLanguage=", "", 0},
        {"cut", "[UI]\nLanguage=0123456789012345678X", "0123456789012345678", 19},
        {"exactly full is replaced", "[UI]\nLanguage=012345678901234567\nLanguage=DEU\nLanguage=FRA", "DEU\n",
         4},
        {"one less is kept", "[UI]\nLanguage=01234567890123456\nLanguage=DEU", "01234567890123456\n", 18},
        {"cut, then empty", "[UI]\nLanguage=0123456789012345678X\nLanguage=", "0123456789012345678", 0},
        {"header in the second piece", "[UI]\n" + std::string(253, 'x') + "[B]\nLanguage=DEU", "", 0},
    };
    for (const auto& item : cases) {
        Settings session(item.bytes);
        std::vector<char> value(20, '~');
        EXPECT_EQ(read_setting("[UI]", "Language=", value.data(), 20, 0), item.result) << item.name;
        EXPECT_EQ(std::string(value.data()), item.value) << item.name;
    }
}

TEST(Settings, LooksInTheFileAskedFor) {
    Settings session("[UI]\nLanguage=DEU");
    char value[20] = "old";
    EXPECT_EQ(read_setting("[UI]", "Language=", value, sizeof(value), 1), 0u);
    EXPECT_STREQ(value, "");
    TestSession::write(session.medium / "settings.inf", "[UI]\nLanguage=FRA");
    EXPECT_EQ(read_setting("[UI]", "Language=", value, sizeof(value), 1), 3u);
    EXPECT_STREQ(value, "FRA");
    EXPECT_EQ(read_setting("[UI]", "Language=", value, 1, 1), 0u);
    EXPECT_STREQ(value, "");
}

TEST(Settings, OpensNothingUnderACutName) {
    TestSession session;
    session.machine.current_folder = u"D:\\" + std::u16string(237, u'm');
    TestSession::write(session.medium / "wrenchbay" / "settin",
                       "[UI]\nLanguage=DEU"); // what a cut path would name
    session.start();
    char value[20];
    EXPECT_EQ(read_setting("[UI]", "Language=", value, sizeof(value), 0), 0u);
}

TEST(Settings, ComparesAllCharacters) {
    EXPECT_EQ(compare_wide(u"ESP", u"ES", 2), 0);
    EXPECT_EQ(compare_wide(u"ESP", u"ESN", 3), 1);
    EXPECT_EQ(compare_wide(u"a\0b", u"a\0c", 3), 1); // a terminator ends nothing
    EXPECT_EQ(compare_wide(u"a", u"b", 0), 0);
}

TEST(Settings, ChoosesTheLanguage) {
    const struct {
        const char* setting; // null: no file
        const char16_t* locale;
        int language;
        DWORD from_setting;
    } cases[] = {
        {"ENG", u"DEU", 1, 1},   {"ENU", u"DEU", 0, 1},
        {"DEU", u"ENU", 3, 1},   {"FRA", u"ENU", 2, 1},
        {"ESP", u"ENU", 5, 1},   {"CHT", u"ENU", 4, 1},
        {"JPN", u"ENU", 6, 1},   {"DEUTSCH\r\n", u"ENU", 3, 1},
        {"deu", u"FRA", 2, 0},   {" DEU", u"ITA", 0, 0},
        {"", u"ENG", 1, 0},      {nullptr, u"DEU", 3, 0},
        {nullptr, u"ESN", 5, 0}, {nullptr, u"CHS", 4, 0},
        {nullptr, u"JPN", 6, 0}, {nullptr, u"ENU", 0, 0},
        {nullptr, u"E", 0, 0},   {nullptr, u"", 0, 0},
    };
    for (const auto& item : cases) {
        TestSession session;
        session.machine.locale_abbreviation = item.locale;
        if (item.setting != nullptr)
            TestSession::write(session.medium / "wrenchbay" / "settings.inf",
                               "[UI]\r\nLanguage=" + std::string(item.setting));
        session.start();
        const std::string name = item.setting != nullptr ? item.setting : platform::to_utf8(item.locale);
        DWORD from_setting = 9;
        EXPECT_EQ(VLI_Get_Locale(&from_setting, 0), item.language) << name;
        EXPECT_EQ(from_setting, item.from_setting) << name;
        EXPECT_EQ(session.log(), "VLI_Get_Locale\r\n");
    }
}

TEST(Settings, FallsBackToEnglishWithoutALocale) {
    TestSession session;
    session.machine.locale_abbreviation = u"DEU";
    session.machine.faults = {{.call = "GetLocaleInfoW"}};
    session.start();
    DWORD from_setting = 9;
    EXPECT_EQ(VLI_Get_Locale(&from_setting, 0), 0);
}

TEST(Settings, AppliesALanguage) {
    const struct {
        int language;
        unsigned id; // 0: nothing is set
        const char* log;
        const char16_t* suffix;
    } cases[] = {
        {0, 9, "set lang 9 0\r\n", u""},
        {1, 2057, "set lang 9 2\r\n", u"_ENU"},
        {2, 12, "set lang 12 0\r\n", u"_FRA"},
        {3, 7, "set lang 7 0\r\n", u"_DEU"},
        {4, 4, "set lang 4 0\r\n", u"_CH"},
        {5, 10, "set lang 10 0\r\n", u"_ES"},
        {6, 1041, "set lang 17 1\r\n", u"_JPN"},
        {7, 0, "", u""},
        {-1, 0, "", u""},
    };
    for (const auto& item : cases) {
        TestSession session;
        platform::Session& run = session.start();
        apply_language(item.language);
        EXPECT_EQ(run.gate.count("SetThreadUILanguage"), item.id != 0 ? 1u : 0u) << item.language;
        if (item.id != 0) {
            EXPECT_EQ(GetThreadUILanguage(), item.id) << item.language;
        }
        EXPECT_EQ(session.log(), item.log) << item.language;
        EXPECT_EQ(std::u16string(terms_suffix(item.language)), item.suffix) << item.language;
    }
}

TEST(Settings, GoesOnWithoutTheFunction) {
    TestSession session;
    session.machine.missing_functions = {"SetThreadUILanguage"};
    session.start();
    apply_language(3);
    EXPECT_EQ(session.log(), "error getting SetThreadUILanguage");
}
