#include "harness/test_session.h"
#include "machine/little_endian.h"
#include "package/profile_names.h"

#include <gtest/gtest.h>

namespace {

// A file behind its mark.
struct Profiles : TestSession {
    explicit Profiles(const std::u16string& text, const std::string& tail = {}) {
        write(medium / "wrenchbay" / "profilenames.inf", platform::utf16_file(text) + tail);
    }
};

} // namespace

TEST(ProfileNames, ReadsLines) {
    const std::u16string piece(253, u'é');
    Profiles session(u"a\r\n\nテ\r" + piece + u"[b\r\nz", "\x41");
    session.start();
    const HANDLE file = CreateFileW(u"D:\\medium\\wrenchbay\\profilenames.inf", GENERIC_READ, FILE_SHARE_READ,
                                    nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
    const struct {
        std::u16string text;
        DWORD bytes;
    } expected[] = {{u"\xfeff"
                     u"a",
                     8},
                    {u"", 2},
                    {u"テ", 4},
                    {piece, 506},
                    {u"[b", 8},
                    {u"z", 2}};
    std::vector<WCHAR> line(254);
    for (const auto& item : expected) {
        EXPECT_EQ(read_text_line_wide(file, line.data(), 254), item.bytes);
        EXPECT_EQ(std::u16string(line.data()), item.text);
    }
    EXPECT_EQ(read_text_line_wide(file, line.data(), 254), 0u); // half a character is left
    CloseHandle(file);
}

TEST(ProfileNames, FindsAField) {
    const struct {
        const char* name;
        std::u16string text;
        std::u16string value;
        DWORD result;
    } cases[] = {
        {"without its line end", u"[P]\r\nName=Value\r\n", u"Value", 5},
        {"any language, last line", u"[P] 1\nName=ラベル", u"ラベル", 3},
        {"key as a prefix of another", u"[P]\nName2=Value\nXName=x\nName =y", u"", 0},
        {"first of two", u"[P]\nName=one\nName=two", u"one", 3},
        {"empty goes on", u"[P]\nName=\n\nName=two\n", u"two", 3},
        {"outside the section", u"Name=a\n[A]\nName=b\n[P]\n[P]\nName=c", u"", 0},
        {"exactly full is replaced", u"[P]\nName=1234567\nName=two", u"two", 3},
        {"cut", u"[P]\nName=12345678", u"1234567", 7},
        {"cut, then empty", u"[P]\nName=12345678\nName=", u"1234567", 0},
    };
    for (const auto& item : cases) {
        Profiles session(item.text);
        session.start();
        std::vector<WCHAR> value(8, u'~');
        EXPECT_EQ(VLI_GetProfileFieldW(u"[P", u"Name", value.data(), 8), item.result) << item.name;
        EXPECT_EQ(std::u16string(value.data()), item.value) << item.name;
    }
}

TEST(ProfileNames, LogsEveryCall) {
    TestSession session;
    platform::Session& run = session.start();
    const unsigned opened = run.gate.count("CreateFileW");
    WCHAR value[8] = u"old";
    EXPECT_EQ(VLI_GetProfileFieldW(u"[P]", u"Name", value, 8), 0u);
    EXPECT_EQ(std::u16string(value), u"");
    EXPECT_EQ(session.log(), "VLI_GetProfileFieldW [P] Name=\r\nVLI_GetProfileFieldW [] 0\r\n");
    EXPECT_EQ(run.gate.count("CreateFileW"), opened + 1);

    const std::u16string longest(510, u'k'); // with its '=' and terminator as much as is served
    EXPECT_EQ(VLI_GetProfileFieldW(u"[P]", longest.c_str(), value, 8), 0u);
    EXPECT_EQ(run.gate.count("CreateFileW"), opened + 2);
    EXPECT_EQ(VLI_GetProfileFieldW(u"[P]", (longest + u"k").c_str(), value, 8), 0u);
    EXPECT_EQ(run.gate.count("CreateFileW"), opened + 2);
    const std::string cut_line = "VLI_GetProfileFieldW [P] " + std::string(228, 'k') + "\r\n";
    EXPECT_TRUE(session.log().ends_with(cut_line + "VLI_GetProfileFieldW [] 0\r\n"));
}
