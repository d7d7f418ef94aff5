// The text tools under other code pages than the tests' own, and when conversions fail.
#include "harness/test_session.h"
#include "support/composed.h"

#include <gtest/gtest.h>

#include <iterator>

namespace {

constexpr const char* japanese = "\x83\x65\x83\x58\x83\x67"; // three characters of two bytes in code page 932

} // namespace

TEST(AnsiText, CutsNoCharacterInTwo) {
    TestSession session;
    session.machine.code_page = 932;
    session.start();
    EXPECT_EQ(compose(3, u"%S", japanese), (Composed{"テス", 0}));
    EXPECT_EQ(compose_ansi(6, "%s", japanese), (Composed{std::string(japanese, 4), 0}));
    EXPECT_EQ(compose_ansi(6, "%s%s", japanese, "x"), (Composed{std::string(japanese, 4), 0}));
    EXPECT_EQ(compose_ansi(7, "%s", japanese), (Composed{japanese, 1}));
    EXPECT_EQ(compose_ansi(4, "a%s", japanese), (Composed{std::string("a\x83\x65"), 0}));
    EXPECT_EQ(whole_ansi_length(japanese, 3), 2u);
    EXPECT_EQ(whole_ansi_length(japanese, 99), 6u);
    EXPECT_EQ(whole_ansi_length("", 5), 0u);
}

// In code page 932 the second byte of a character may be a letter, an underscore, a bracket.
TEST(AnsiText, LooksForCharactersInNames) {
    TestSession session;
    session.machine.code_page = 932;
    session.start();
    char name[] = "\x83\x5f_\x83\x5f\x5f";
    replace_in_name(name, '_', ' ');
    EXPECT_STREQ(name, "\x83\x5f \x83\x5f ");
    const struct {
        const char* text;
        const char* part;
        int place; // -1: none
    } cases[] = {
        {"\x83\x5b[La", "[La", 2},         {"\x81\x5bLa]", "[La", -1}, {"[La", "[La", 0},
        {"\x83\x5f[La", "[La", 2},         {"\xb1[La", "[La", 1},      {"\x81\x5bLa[La", "[La", 4},
        {"x\x83\x83\x5b", "\x83\x5b", -1}, {"\x83[La", "[La", -1},     {"", "x", -1},
    };
    for (const auto& item : cases) {
        const char* const found = find_in_names(item.text, item.part);
        EXPECT_EQ(found != nullptr ? found - item.text : -1, item.place) << item.text;
    }
}

// A name that the code page's best fit would turn into another's isn't one.
TEST(AnsiText, TakesNoNameForAnother) {
    TestSession session;
    session.start();
    char name[8];
    EXPECT_EQ(narrow_name(name, std::size(name), u"TRK_1"), 1);
    EXPECT_STREQ(name, "TRK_1");
    EXPECT_EQ(narrow_name(name, std::size(name), u"TRK_１"), 0);
    EXPECT_EQ(narrow_name(name, std::size(name), u"TRK_テ"), 0);
    EXPECT_EQ(narrow_name(name, std::size(name), u"TRK_1234"), 0);
}

TEST(AnsiText, ConvertsByTheCodePage) {
    const struct {
        const char* name;
        unsigned code_page;
        const char* bytes;
        const char16_t* text;
        std::size_t narrow_room; // for the bytes and the terminator
        const char* narrowed;
        std::size_t wide_room;
        const char16_t* widened;
    } cases[] = {
        {"Latin", 1252, "\x80 caf\xe9", u"€ café", 7, "\x80 caf\xe9", 7, u"€ café"},
        {"Latin, cut", 1252, "caf\xe9s", u"cafés", 5, "caf\xe9", 4, u"caf"},
        {"no counterpart", 1252, "?", u"テ", 9, "?", 9, u"?"},
        {"a pair without counterpart", 1252, "??", u"😀", 9, "??", 9, u"??"},
        {"Japanese", 932, japanese, u"テスト", 7, japanese, 4, u"テスト"},
        {"Japanese, cut", 932, japanese, u"テスト", 4, "\x83\x65", 3, u"テス"},
        {"UTF-8", 65001, "é😀", u"é😀", 7, "é😀", 4, u"é😀"},
        {"UTF-8, cut", 65001, "é😀", u"é😀", 6, "é", 3, u"é"},
        {"empty", 1252, "", u"", 1, "", 1, u""},
    };
    for (const auto& item : cases) {
        SCOPED_TRACE(item.name);
        TestSession session;
        session.machine.code_page = item.code_page;
        session.start();
        std::vector<char> bytes(item.narrow_room);
        EXPECT_EQ(narrow(bytes.data(), bytes.size(), item.text), std::string(item.narrowed) == item.bytes);
        EXPECT_STREQ(bytes.data(), item.narrowed);
        std::vector<WCHAR> text(item.wide_room);
        const bool whole = std::u16string(item.widened) == (item.code_page == 1252 && *item.bytes == '?'
                                                                ? platform::to_utf16(item.bytes).c_str()
                                                                : item.text);
        EXPECT_EQ(widen(text.data(), text.size(), item.bytes), whole);
        EXPECT_EQ(std::u16string(text.data()), item.widened);
    }
}

TEST(AnsiText, SurvivesConversionsThatFail) {
    TestSession session;
    session.machine.faults = {{.call = "MultiByteToWideChar", .from_then_on = true},
                              {.call = "WideCharToMultiByte", .from_then_on = true}};
    session.start();
    char bytes[8] = "old";
    WCHAR text[8] = u"old";
    EXPECT_EQ(narrow(bytes, std::size(bytes), u"new"), 0);
    EXPECT_STREQ(bytes, "");
    EXPECT_EQ(widen(text, std::size(text), "new"), 0);
    EXPECT_EQ(std::u16string(text), u"");
}
