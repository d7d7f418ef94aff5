#include "rehearsal/check/settings_check.h"
#include "rehearsal/check/subject_test.h"

#include <gtest/gtest.h>

namespace {

struct SettingsCase {
    const char* name;
    std::string text;
    bool chosen; // whether the program takes the language from it
    std::vector<std::string> expected;
    std::vector<std::string> places = {};
};

class SettingsCheck : public testing::TestWithParam<SettingsCase> {};

TEST_P(SettingsCheck, Finds) {
    const tests::MediumFiles files = {{"wrenchbay/settings.inf", GetParam().text}};
    EXPECT_EQ(tests::reasons_found(files, rehearsal::check::check_settings), GetParam().expected);
    if (!GetParam().places.empty()) {
        EXPECT_EQ(tests::places_found(files, rehearsal::check::check_settings), GetParam().places);
    }
    const tests::MediumFolder folder(files);
    EXPECT_EQ(rehearsal::check::chosen_language(rehearsal::check::Medium(folder.path())).from_setting,
              GetParam().chosen);
}

const std::string unread = " isn't found by the setup: it looks for a line that begins with \"Language=\"";

const SettingsCase settings_cases[] = {
    {"Good", "; language\r\n[UI]\r\nLanguage=DEU\r\n[More]\r\nLanguages=2\r\n", true, {}},
    {"None", "[UI]\r\n;Language=DEU\r\n", false, {}},
    {"Spanish", "[UI]\nLanguage=ESP", true, {}},
    {"Case",
     "[UI]\r\nlanguage=DEU\r\n",
     false,
     {"settings-key: \"language=DEU\"" + unread},
     {"settings-key wrenchbay/settings.inf:2:1"}},
    {"Blanks", "[UI]\r\n Language = DEU\r\n", false, {"settings-key: \" Language = DEU\"" + unread}},
    {"SectionCase",
     "[ui]\r\nLanguage=DEU\r\n",
     false,
     {
         "settings-section: \"Language=DEU\" isn't read: its section is \"[ui]\", not \"[UI]\"",
     },
     {"settings-section wrenchbay/settings.inf:2:1"}},
    {"SectionBlank",
     " [UI]\r\nLanguage=DEU\r\n",
     false,
     {"settings-section: \"Language=DEU\" isn't read: its section is \" [UI]\", not \"[UI]\""}},
    {"OtherSection",
     "[UI]\r\n[More]\r\nLanguage=DEU\r\n",
     false,
     {"settings-section: \"Language=DEU\" doesn't stand in the first section [UI], and isn't read"}},
    {"SecondSection",
     "[UI]\r\n[More]\r\n[UI]\r\nLanguage=DEU\r\n",
     false,
     {"settings-section: \"Language=DEU\" doesn't stand in the first section [UI], and isn't read"}},
    {"ValueCase",
     "[UI]\r\nLanguage=deu\r\n",
     false,
     {"settings-language: \"deu\" is no language of the setup; \"DEU\" is"},
     {"settings-language wrenchbay/settings.inf:2:10"}},
    {"ValueBlank",
     "[UI]\r\nLanguage= DEU\r\n",
     false,
     {"settings-language: \"DEU\" is a language, but a blank stands in front of it"}},
    {"ValueUnknown",
     "[UI]\r\nLanguage=ITA\r\n",
     false,
     {"settings-language: \"ITA\" is no language of the setup"}},
    {"ValueQuoted",
     "[UI]\r\nLanguage=\"DEU\"\r\n",
     false,
     {"settings-language: \"\"DEU\"\" is no language of the setup; \"DEU\" is"}},
    {"ValueEmpty",
     "[UI]\r\nLanguage=\r\n",
     false,
     {"settings-language: no language follows the equals sign"}},
    {"Word",
     "[UI]\r\nLanguage=ENGLISH\r\n",
     true,
     {"settings-language-name: of \"ENGLISH\" only \"ENG\" counts"}},
    {"Twice",
     "[UI]\r\nLanguage=DEU\r\nLanguage=FRA\r\n",
     true,
     {"settings-twice: the language in line 2 counts, this one isn't read"},
     {"settings-twice wrenchbay/settings.inf:3:1"}},
    {"Wide",
     tests::utf16("[UI]\r\nLanguage=DEU\r\n"),
     false,
     {"settings-encoding: the file is UTF-16 or has a zero byte in it"}},
    {"Mark",
     "\xEF\xBB\xBF[UI]\r\nLanguage=DEU\r\n",
     false,
     {"settings-encoding: the mark of UTF-8 in front of the first header hides it"}},
    {"MarkBeforeComment", "\xEF\xBB\xBF; x\r\n[UI]\r\nLanguage=DEU\r\n", true, {}},
    {"LongLine",
     "[UI]\r\n" + std::string(253, ';') + "[x\r\nLanguage=DEU\r\n",
     false,
     {"settings-section: \"Language=DEU\" doesn't stand in the first section [UI], and isn't read",
      "settings-long-line: this is the 254th byte of its line, and counts as a line's beginning"},
     {"settings-section wrenchbay/settings.inf:3:1", "settings-long-line wrenchbay/settings.inf:2:254"}},
};

INSTANTIATE_TEST_SUITE_P(, SettingsCheck, testing::ValuesIn(settings_cases),
                         [](const auto& each) { return each.param.name; });

} // namespace
