#include "machine/text.h"

#include <gtest/gtest.h>

using namespace platform;

TEST(LayerText, GoodTextSurvivesAndBadBecomesTheReplacement) {
    const struct {
        const char* name;
        std::string utf8;
        std::u16string utf16;
    } cases[] = {
        {"plain", "a~", u"a~"},
        {"two bytes", "\xC3\xA9", u"\u00E9"},
        {"three bytes", "\xE6\x97\xA5", u"日"},
        {"four bytes", "\xF0\x9F\x98\x80", u"\U0001F600"},
        {"last character", "\xF4\x8F\xBF\xBF", u"\U0010FFFF"},
    };
    for (const auto& test : cases) {
        EXPECT_EQ(to_utf16(test.utf8), test.utf16) << test.name;
        EXPECT_EQ(to_utf8(test.utf16), test.utf8) << test.name;
    }
    const struct {
        const char* name;
        std::string utf8;
        std::u16string expected;
    } bad[] = {
        {"stray continuation", "\x80z", u"\uFFFDz"},
        {"cut at the end", "z\xE6\x97", u"z\uFFFD"},
        {"cut by another", "\xE6\x97z", u"\uFFFDz"},
        {"overlong", "\xC0\xAF", u"\uFFFD\uFFFD"},
        {"overlong, three bytes", "\xE0\x80\xAF", u"\uFFFD\uFFFD\uFFFD"},
        {"surrogate", "\xED\xA0\x80", u"\uFFFD\uFFFD\uFFFD"},
        {"beyond the last", "\xF4\x90\x80\x80", u"\uFFFD\uFFFD\uFFFD\uFFFD"},
    };
    for (const auto& test : bad)
        EXPECT_EQ(to_utf16(test.utf8), test.expected) << test.name;
    EXPECT_EQ(to_utf8(std::u16string{0xD800, u'z', 0xDC00}), "\xEF\xBF\xBDz\xEF\xBF\xBD");
    EXPECT_EQ(shown(nullptr), "(null)");
}

TEST(LayerText, NamesAreComparedWithoutCase) {
    const struct {
        std::u16string a, b;
        bool same;
    } cases[] = {
        {u"Drivers", u"dRIVERS", true}, {u"\u00E9\u00FF", u"\u00C9\u0178", true},
        {u"\u00F7", u"\u00D7", false},  {u"\u0436\u0451", u"\u0416\u0401", true},
        {u"\u03C9", u"\u03A9", true},   {u"\u0105", u"\u0104", true},
        {u"\u00DF", u"ss", false},      {u"\u0131", u"I", false},
        {u"ab", u"abc", false},         {u"[", u"{", false},
        {u"\uFF41", u"\uFF21", true},
    };
    for (const auto& test : cases)
        EXPECT_EQ(same_name(test.a, test.b), test.same) << to_utf8(test.a) << " " << to_utf8(test.b);
    EXPECT_EQ(upper_case(u"lbl.inf"), u"LBL.INF");
}
