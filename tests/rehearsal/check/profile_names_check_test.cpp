#include "package/profile_names.h"
#include "rehearsal/check/program_view.h"
#include "rehearsal/check/subject_test.h"

#include <gtest/gtest.h>

namespace {

struct ProfileCase {
    const char* name;
    std::string text; // as bytes
    bool read;        // whether the program finds the key "a" of section "[S]" as "x"
    std::vector<std::string> places;
};

class ProfileNamesCheck : public testing::TestWithParam<ProfileCase> {};

TEST_P(ProfileNamesCheck, AgreesWithTheReader) {
    const tests::MediumFiles files = {{"wrenchbay/profilenames.inf", GetParam().text}};
    EXPECT_EQ(tests::places_found(files, rehearsal::check::check_profile_names), GetParam().places);
    const tests::MediumFolder folder(files);
    WCHAR value[32] = {};
    rehearsal::check::with_program(rehearsal::check::Medium(folder.path()),
                                   [&] { VLI_GetProfileFieldW(TEXT("[S]"), TEXT("a"), value, 32); });
    EXPECT_EQ(std::u16string(value) == u"x", GetParam().read);
}

const std::string names_inf = "wrenchbay/profilenames.inf";

const ProfileCase profile_cases[] = {
    {"Good", tests::utf16("; names\r\n[S]\r\na=x\r\nb=y\r\n\r\n[T]\r\na=z\r\n"), true, {}},
    {"EightBits", "[S]\r\na=x\r\n", false, {"profile-names-encoding " + names_inf}},
    {"NoMark", tests::utf16("[S]\r\na=x\r\n").substr(2), false, {"profile-names-encoding " + names_inf}},
    {"BeforeSections", tests::utf16("a=x\r\n[S]\r\n"), false, {"profile-names-place " + names_inf + ":1:1"}},
    {"SecondSection",
     tests::utf16("[S]\r\n[T]\r\n[S]\r\na=x\r\n"),
     false,
     {"profile-names-place " + names_inf + ":4:1"}},
    {"IndentedHeader", tests::utf16(" [S]\r\n"), false, {"profile-names-place " + names_inf + ":1:1"}},
    {"BlankBeforeKey", tests::utf16("[S]\r\n a=x\r\n"), false, {"profile-names-key " + names_inf + ":2:1"}},
    {"BlankBehindEquals",
     tests::utf16("[S]\r\na= x\r\n"),
     false,
     {"profile-names-key " + names_inf + ":2:1"}},
    {"Empty", tests::utf16("[S]\r\na=\r\n"), false, {"profile-names-empty " + names_inf + ":2:1"}},
    {"Twice", tests::utf16("[S]\r\na=x\r\na=y\r\n"), true, {"profile-names-twice " + names_inf + ":3:1"}},
    {"NoEquals", tests::utf16("[S]\r\na x\r\n"), false, {"profile-names-line " + names_inf + ":2:1"}},
    {"LongLine",
     tests::utf16("[S]\r\nb=" + std::string(251, 'y') + "a=x\r\n"),
     true,
     {"profile-names-long-line " + names_inf + ":2:1"}},
};

INSTANTIATE_TEST_SUITE_P(, ProfileNamesCheck, testing::ValuesIn(profile_cases),
                         [](const auto& each) { return each.param.name; });

} // namespace
