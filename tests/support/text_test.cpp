// The text tools by the machine's own code page. The same source is judged on another platform too.
#include "harness/calls_fixture.h"
#include "support/composed.h"

#include <iterator>

namespace {

using TextTools = CallsTest;

constexpr const WCHAR* no_text = nullptr;
constexpr const char* no_ansi = nullptr;

} // namespace

TEST_F(TextTools, ComposesFields) {
    const struct {
        const char* name;
        Composed made;
        Composed expected;
    } cases[] = {
        {"texts of both widths",
         compose(40, TEXT("<%s> <%S> <%ls>"), TEXT("wide"), "caf\xe9", TEXT("long")),
         {"<wide> <café> <long>", 1}},
        {"null is empty", compose(40, TEXT("[%s%S]"), no_text, no_ansi), {"[]", 1}},
        {"signed limits",
         compose(40, TEXT("%d %d %d"), 0, 2147483647, -2147483647 - 1),
         {"0 2147483647 -2147483648", 1}},
        {"unsigned", compose(40, TEXT("%u %x %lx"), 4294967295u, 0xbeefu, 0x1fu), {"4294967295 beef 1f", 1}},
        {"zero padding",
         compose(40, TEXT("%04x %02x %08lx %03d"), 0x2au, 0xabcu, 1u, -5),
         {"002a abc 00000001 -05", 1}},
        {"blank padding", compose(40, TEXT("[%3d] [%3d] [%2u]"), 4, -4, 123u), {"[  4] [ -4] [123]", 1}},
        {"characters and signs", compose(40, TEXT("%c%%%c"), 'a', 'b'), {"a%b", 1}},
        {"ends inside a field", compose(40, TEXT("done %0")), {"done ", 1}},
        {"fits exactly", compose(5, TEXT("%s"), TEXT("abcd")), {"abcd", 1}},
        {"one too many", compose(5, TEXT("%s"), TEXT("abcde")), {"abcd", 0}},
        {"nothing follows a cut", compose(7, TEXT("%s%d"), TEXT("abcdefgh"), 1), {"abcdef", 0}},
        {"a cut number", compose(4, TEXT("%d"), 12345), {"123", 0}},
        {"a cut 8-bit text", compose(6, TEXT("%S.txt"), "longer"), {"longe", 0}},
        {"room for the terminator alone", compose(1, TEXT("a")), {"", 0}},
        {"8-bit", compose_ansi(40, "Label Sizes\\%d %s %x", 258, "x", 255), {"Label Sizes\\258 x ff", 1}},
        {"8-bit cut", compose_ansi(8, "%s", "12345678"), {"1234567", 0}},
    };
    for (const auto& item : cases)
        EXPECT_EQ(item.made, item.expected) << item.name;
}

TEST_F(TextTools, ScansNumbers) {
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

TEST_F(TextTools, CopiesWithinBounds) {
    WCHAR room[6] = TEXT("??");
    EXPECT_EQ(copy_text(room, std::size(room), TEXT("abcde")), 1);
    EXPECT_EQ(append_text(room, std::size(room), TEXT("f")), 0);
    EXPECT_EQ(Text(room), TEXT("abcde"));
    EXPECT_EQ(copy_text(room, std::size(room), TEXT("abcdef")), 0);
    EXPECT_EQ(copy_text(room, std::size(room), nullptr), 1);
    EXPECT_EQ(append_text(room, std::size(room), TEXT("ab")), 1);
    EXPECT_EQ(append_text(room, std::size(room), TEXT("cdef")), 0);
    EXPECT_EQ(Text(room), TEXT("abcde"));
    EXPECT_EQ(copy_text(room, 0, TEXT("x")), 0);
}

TEST_F(TextTools, FindsParts) {
    const WCHAR* text = TEXT("usb#vid#vid_1");
    EXPECT_EQ(find_text(text, TEXT("vid_")), text + 8);
    EXPECT_EQ(find_text(text, TEXT("VID")), nullptr);
    EXPECT_EQ(find_text(text, TEXT("")), text);
    const char* bytes = "aab";
    EXPECT_EQ(find_ansi(bytes, "ab"), bytes + 1);
    EXPECT_EQ(find_ansi(bytes, "abc"), nullptr);
    EXPECT_EQ(starts_with(TEXT("[UI] more"), TEXT("[UI]")), 1);
    EXPECT_EQ(ansi_starts_with("Na", "Name"), 0);
}

TEST_F(TextTools, TellsPlainNames) {
    for (const WCHAR* good :
         {TEXT("Label 100 Series"), TEXT(".hidden"), TEXT("a..b"), TEXT("Étiquette"), TEXT("-")})
        EXPECT_EQ(is_plain_name(good), 1) << as_utf8(good);
    for (const WCHAR* bad : {TEXT(""), TEXT("."), TEXT(".."), TEXT("..."), TEXT("a\\b"), TEXT("a/b"),
                             TEXT("c:"), TEXT("a*"), TEXT("a?"), TEXT("\"a"), TEXT("<a"), TEXT("a>"),
                             TEXT("a|b"), TEXT("a\tb"), TEXT("a\x7f"), TEXT("a "), TEXT("a.")})
        EXPECT_EQ(is_plain_name(bad), 0) << as_utf8(bad);
}
