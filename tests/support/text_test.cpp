#include "harness/test_session.h"
#include "support/text.h"

#include <gtest/gtest.h>

#include <vector>

namespace {

struct Composed {
    std::string text;
    int fits;
    bool operator==(const Composed&) const = default;
};

std::ostream& operator<<(std::ostream& out, const Composed& composed) {
    return out << '"' << composed.text << '"' << (composed.fits ? "" : " cut");
}

Composed compose(std::size_t capacity, const WCHAR* format, ...) {
    std::vector<WCHAR> buffer(
        capacity); // exactly as large as told, so that a sanitizer sees the first step beyond
    va_list arguments;
    va_start(arguments, format);
    const int fits = format_text_list(buffer.data(), capacity, format, arguments);
    va_end(arguments);
    return {platform::to_utf8(buffer.data()), fits};
}

template<class... Arguments>
Composed compose_ansi(std::size_t capacity, const char* format, Arguments... arguments) {
    std::vector<char> buffer(capacity);
    const int fits = format_ansi(buffer.data(), capacity, format, arguments...);
    return {buffer.data(), fits};
}

constexpr const WCHAR* no_text = nullptr;
constexpr const char* no_ansi = nullptr;
constexpr const char* japanese = "\x83\x65\x83\x58\x83\x67"; // three characters of two bytes in code page 932

} // namespace

TEST(Text, ComposesFields) {
    TestSession session;
    session.start();
    const struct {
        const char* name;
        Composed made;
        Composed expected;
    } cases[] = {
        {"texts of both widths",
         compose(40, u"<%s> <%S> <%ls>", u"wide", "caf\xe9", u"long"),
         {"<wide> <café> <long>", 1}},
        {"null is empty", compose(40, u"[%s%S]", no_text, no_ansi), {"[]", 1}},
        {"signed limits",
         compose(40, u"%d %d %d", 0, 2147483647, -2147483647 - 1),
         {"0 2147483647 -2147483648", 1}},
        {"unsigned", compose(40, u"%u %x %lx", 4294967295u, 0xbeefu, 0x1fu), {"4294967295 beef 1f", 1}},
        {"zero padding",
         compose(40, u"%04x %02x %08lx %03d", 0x2au, 0xabcu, 1u, -5),
         {"002a abc 00000001 -05", 1}},
        {"blank padding", compose(40, u"[%3d] [%3d] [%2u]", 4, -4, 123u), {"[  4] [ -4] [123]", 1}},
        {"characters and signs", compose(40, u"%c%%%c", 'a', 'b'), {"a%b", 1}},
        {"ends inside a field", compose(40, u"done %0"), {"done ", 1}},
        {"fits exactly", compose(5, u"%s", u"abcd"), {"abcd", 1}},
        {"one too many", compose(5, u"%s", u"abcde"), {"abcd", 0}},
        {"nothing follows a cut", compose(7, u"%s%d", u"abcdefgh", 1), {"abcdef", 0}},
        {"a cut number", compose(4, u"%d", 12345), {"123", 0}},
        {"a cut 8-bit text", compose(6, u"%S.txt", "longer"), {"longe", 0}},
        {"room for the terminator alone", compose(1, u"a"), {"", 0}},
        {"8-bit", compose_ansi(40, "Label Sizes\\%d %s %x", 258, "x", 255), {"Label Sizes\\258 x ff", 1}},
        {"8-bit cut", compose_ansi(8, "%s", "12345678"), {"1234567", 0}},
    };
    for (const auto& item : cases)
        EXPECT_EQ(item.made, item.expected) << item.name;
}

TEST(Text, CutsNoCharacterInTwo) {
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

TEST(Text, ConvertsByTheCodePage) {
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

TEST(Text, SurvivesConversionsThatFail) {
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

TEST(Text, ScansNumbers) {
    const struct {
        const char* name;
        const char* text;
        const char* format;
        int count;
        std::vector<int> values;
    } cases[] = {
        {"version", "07/26/2024,1.2.3.4", "%d/%d/%d,%d.%d.%d.%d", 7, {7, 26, 2024, 1, 2, 3, 4}},
        {"white space in front of numbers", " 10. \t0.\r\n0.7 ", "%d.%d.%d.%d", 4, {10, 0, 0, 7}},
        {"white space in front of a separator", "10 .0.0.7", "%d.%d.%d.%d", 1, {10, 0, 0, 0}},
        {"too few", "1.2.3", "%d.%d.%d.%d", 3, {1, 2, 3, 0}},
        {"ends behind a separator", "1.", "%d.%d.%d.%d", 1, {1, 0, 0, 0}},
        {"signs", "-1.+2.-0.--3", "%d.%d.%d.%d", 3, {-1, 2, 0, 0}},
        {"saturation",
         "2147483648.-2147483649.99999999999.2147483647",
         "%d.%d.%d.%d",
         4,
         {2147483647, -2147483647 - 1, 2147483647, 2147483647}},
        {"empty", "", "%d.%d.%d.%d", -1, {0, 0, 0, 0}},
        {"nothing but white space", " \t", "%d.%d.%d.%d", -1, {0, 0, 0, 0}},
        {"no number", "abc", "%d.%d.%d.%d", 0, {0, 0, 0, 0}},
        {"a sign alone", "-", "%d.%d.%d.%d", 0, {0, 0, 0, 0}},
        {"more fields than room", "1.2.3", "%d.%d.%d", 2, {1, 2}},
    };
    for (const auto& item : cases) {
        std::vector<int> values(item.values.size(), 99);
        EXPECT_EQ(scan_numbers(item.text, item.format, values.data(), values.size()), item.count)
            << item.name;
        EXPECT_EQ(values, item.values) << item.name;
    }
    EXPECT_EQ(scan_number("\t 9100;"), 9100);
    EXPECT_EQ(scan_number("-7"), -7);
    EXPECT_EQ(scan_number("x1"), 0);
}

TEST(Text, CopiesWithinBounds) {
    WCHAR room[6] = u"??";
    EXPECT_EQ(copy_text(room, std::size(room), u"abcde"), 1);
    EXPECT_EQ(append_text(room, std::size(room), u"f"), 0);
    EXPECT_EQ(std::u16string(room), u"abcde");
    EXPECT_EQ(copy_text(room, std::size(room), u"abcdef"), 0);
    EXPECT_EQ(copy_text(room, std::size(room), nullptr), 1);
    EXPECT_EQ(append_text(room, std::size(room), u"ab"), 1);
    EXPECT_EQ(append_text(room, std::size(room), u"cdef"), 0);
    EXPECT_EQ(std::u16string(room), u"abcde");
    EXPECT_EQ(copy_text(room, 0, u"x"), 0);
}

TEST(Text, FindsParts) {
    const WCHAR* text = u"usb#vid#vid_1";
    EXPECT_EQ(find_text(text, u"vid_"), text + 8);
    EXPECT_EQ(find_text(text, u"VID"), nullptr);
    EXPECT_EQ(find_text(text, u""), text);
    const char* bytes = "aab";
    EXPECT_EQ(find_ansi(bytes, "ab"), bytes + 1);
    EXPECT_EQ(find_ansi(bytes, "abc"), nullptr);
    EXPECT_EQ(starts_with(u"[UI] more", u"[UI]"), 1);
    EXPECT_EQ(ansi_starts_with("Na", "Name"), 0);
}

TEST(Text, TellsPlainNames) {
    for (const WCHAR* good : {u"Label 100 Series", u".hidden", u"a..b", u"Étiquette", u"-"})
        EXPECT_EQ(is_plain_name(good), 1) << platform::to_utf8(good);
    for (const WCHAR* bad : {u"", u".", u"..", u"...", u"a\\b", u"a/b", u"c:", u"a*", u"a?", u"\"a", u"<a",
                             u"a>", u"a|b", u"a\tb", u"a\x7f", u"a ", u"a."})
        EXPECT_EQ(is_plain_name(bad), 0) << platform::to_utf8(bad);
}
