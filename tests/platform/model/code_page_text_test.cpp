#include "calls/text/code_page_text.h"

#include <gtest/gtest.h>

using namespace platform;

// Whoever reads 8-bit text, be it a call, a link or a package, meets the same edges.
TEST(CodePageText, HalvesOfCharactersAndPairsThatMakeNone) {
    const struct {
        const char* name;
        std::uint32_t page;
        std::string_view bytes;
        std::u16string text;
        bool good;
    } cases[] = {
        {"half at the end", 932, "a\x93", u"a\u30FB", false},
        {"half before a terminator", 932, std::string_view("\x93\0z", 3), std::u16string(u"\u30FB\0z", 3),
         false},
        {"a pair without a character", 950, "\xA4\x20z", u"?z", false},
        {"a byte without a character", 932, "\xA0", u"\uF8F0", false},
        {"a pair", 936, "\xD6\xD0z", u"\u4E2Dz", true},
        {"no table: UTF-8", 65001, "\xC3\xA9\xC3", u"\u00E9\uFFFD", false},
    };
    for (const auto& test : cases) {
        const WideText wide = widen(code_page_table(test.page), test.bytes);
        EXPECT_EQ(wide.text, test.text) << test.name;
        EXPECT_EQ(wide.good, test.good) << test.name;
    }
}

TEST(CodePageText, WhatACodePageLacksIsReplacedOrFitted) {
    const CodePageTable* const western = code_page_table(1252);
    const std::u16string_view text = u"\u0100\U0001F600";
    EXPECT_EQ(narrow(western, text).text, "???");
    EXPECT_EQ(narrow(western, text, Fit::nearest, "_").text, "A__");
    EXPECT_FALSE(narrow(western, text, Fit::nearest).good);
    EXPECT_TRUE(narrow(western, u"\u0100", Fit::nearest).good);
}
