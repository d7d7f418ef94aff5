#include "rehearsal/check/subject_test.h"

#include <gtest/gtest.h>

namespace {

using tests::utf16;

struct TermsCase {
    const char* name;
    tests::MediumFiles files;
    std::vector<std::string> places;
};

// A medium whose language is fixed to German, so that one file is enough.
tests::MediumFiles german(const std::string& terms) {
    return {{"wrenchbay/settings.inf", "[UI]\r\nLanguage=DEU\r\n"}, {"licenses/license_DEU.txt", terms}};
}

tests::MediumFiles all_languages() {
    tests::MediumFiles files;
    for (const char* const suffix : {"", "_ENU", "_FRA", "_DEU", "_CH", "_ES", "_JPN"})
        files.emplace_back("licenses/license" + std::string(suffix) + ".txt", utf16("Terms\r\n"));
    return files;
}

tests::MediumFiles without(tests::MediumFiles files, std::size_t index) {
    files.erase(files.begin() + static_cast<std::ptrdiff_t>(index));
    return files;
}

class TermsCheck : public testing::TestWithParam<TermsCase> {};

TEST_P(TermsCheck, Finds) {
    EXPECT_EQ(tests::places_found(GetParam().files, rehearsal::check::check_terms), GetParam().places);
}

const std::string german_terms = "licenses/license_DEU.txt";

const TermsCase terms_cases[] = {
    {"Good", all_languages(), {}},
    {"OneLanguageMissing", without(all_languages(), 3), {"terms-missing licenses"}},
    {"CommonMissing", without(all_languages(), 0), {"terms-none licenses"}},
    {"NoFolder", {{"wrenchbay/settings.inf", "[UI]\r\nLanguage=DEU\r\n"}}, {"terms-none "}},
    {"FixedLanguage", german(utf16("Text\r\n")), {}},
    {"WrongName",
     {{"licenses/license.txt", utf16("a")},
      {"licenses/license_GER.txt", utf16("a")},
      {"wrenchbay/settings.inf", "[UI]\r\nLanguage=ENU\r\n"}},
     {"terms-unused licenses/license_GER.txt"}},
    {"Empty", german(""), {"terms-none licenses", "terms-empty " + german_terms}},
    {"MarkAlone", german(utf16("")), {"terms-empty " + german_terms}},
    {"EightBits", german("Lizenz\r\n"), {"terms-encoding " + german_terms + ":1:1"}},
    {"Utf8", german("\xEF\xBB\xBFLizenz\r\n"), {"terms-encoding " + german_terms + ":1:1"}},
    {"BigEndian", german(std::string("\xFE\xFF\0L\0i", 6)), {"terms-encoding " + german_terms + ":1:1"}},
    {"NoMark", german(utf16("Lizenz").substr(2)), {"terms-mark " + german_terms + ":1:1"}},
    {"LongestText", german(utf16(std::string(16381, 'x'))), {}},
    {"TooLong", german(utf16("\r\n" + std::string(16381, 'x'))), {"terms-long " + german_terms + ":2:16380"}},
    {"HalfACharacter", german(utf16("ab\r\ncd") + "e"), {"terms-half " + german_terms + ":2:3"}},
    {"Zero", german(utf16(std::string("ab\0cd", 5))), {"terms-character " + german_terms + ":1:3"}},
    {"HalfAPair",
     german(utf16("a") + std::string("\x00\xD8", 2) + utf16("b").substr(2)),
     {"terms-character " + german_terms + ":1:2"}},
    {"LineFeeds", german(utf16("a\nb\nc")), {"terms-line-end " + german_terms + ":1:2"}},
};

INSTANTIATE_TEST_SUITE_P(, TermsCheck, testing::ValuesIn(terms_cases),
                         [](const auto& each) { return each.param.name; });

} // namespace
