#include "harness/calls_fixture.h"

#include <vector>

namespace {

using CodePages = CallsTest;

Text widened(UINT page, const std::string& bytes, DWORD flags = 0) {
    std::vector<WCHAR> out(64, 0x2A2A);
    const int length =
        MultiByteToWideChar(page, flags, bytes.data(), static_cast<int>(bytes.size()), out.data(), 64);
    EXPECT_EQ(MultiByteToWideChar(page, flags, bytes.data(), static_cast<int>(bytes.size()), nullptr, 0),
              length);
    return Text(out.data(), static_cast<std::size_t>(length));
}

std::string narrowed(UINT page, const Text& text, BOOL* used_default, const char* default_character = nullptr,
                     DWORD flags = 0) {
    std::vector<char> out(64, '*');
    const int length = WideCharToMultiByte(page, flags, text.data(), static_cast<int>(text.size()),
                                           out.data(), 64, default_character, used_default);
    return std::string(out.data(), static_cast<std::size_t>(length));
}

} // namespace

TEST_F(CodePages, CharactersThatBothSidesHaveGoBothWays) {
    const struct {
        const char* name;
        UINT page;
        std::string bytes;
        Text text;
    } cases[] = {
        {"plain", 1252, "Az~\\\x01", TEXT("Az~\\\x01")},
        {"western", 1252, "\xE9\x80\xFF", TEXT("\u00E9\u20AC\u00FF")},
        {"western, without a character", 1252, "\x81\x8D\x8F\x90\x9D", {0x81, 0x8D, 0x8F, 0x90, 0x9D}},
        {"central European", 1250, "\xE8\x98", {0x010D, 0x98}},
        {"Cyrillic", 1251, "\xC6\xB8\x98", {0x0416, 0x0451, 0x98}},
        {"Japanese", 932, "\x93\xFA\x96{A\xB1\\~", TEXT("\u65E5\u672CA\uFF71\\~")},
        {"Japanese, own rows", 932, "\x87\x40\xFA\x55", TEXT("\u2460\uFFE4")},
        {"Japanese, wave and minus", 932, "\x81\x60\x81\x7C", TEXT("\uFF5E\uFF0D")},
        {"simplified Chinese", 936, "\xD6\xD0\x80", TEXT("\u4E2D\u20AC")},
        {"Korean", 949, "\xC7\xD1\x81\x41", TEXT("\uD55C\uAC02")},
        {"traditional Chinese", 950, "\xA4\xA4", TEXT("\u4E2D")},
        {"the users' own, Chinese", 936, "\xAA\xA1\xA1\x80\xA6\xB9", TEXT("\uE000\uE505\uE785")},
        {"the users' own, Korean", 949, "\xC9\xFE\xFE\xA1", TEXT("\uE05D\uE05E")},
        {"the users' own, traditional Chinese", 950, "\xFE\xFE\x8E\x40\x81\xA1", TEXT("\uE310\uE311\uEEF7")},
        {"UTF-8", CP_UTF8, "\xC3\xA9\xE6\x97\xA5\xF0\x9F\x98\x80", TEXT("\u00E9\u65E5\U0001F600")},
    };
    for (const auto& test : cases) {
        EXPECT_EQ(widened(test.page, test.bytes), test.text) << test.name;
        EXPECT_EQ(narrowed(test.page, test.text, nullptr), test.bytes) << test.name;
    }
}

TEST_F(CodePages, OnlyOneOfSeveralBytePairsIsWritten) {
    const struct {
        UINT page;
        const char* read;
        const char* written;
    } cases[] = {{932, "\xED\x40", "\xFA\x5C"}, {932, "\xEE\xF9", "\x81\xCA"}, {932, "\xFA\x4A", "\x87\x54"},
                 {932, "\xFA\x5B", "\x81\xE6"}, {950, "\xA2\xCC", "\xA4\x51"}, {950, "\xA2\xA4", "\xF9\xF9"}};
    for (const auto& test : cases)
        EXPECT_EQ(narrowed(test.page, widened(test.page, test.read), nullptr), test.written);
}

TEST_F(CodePages, CharactersWithoutCounterpartBecomeTheDefault) {
    const struct {
        const char* name;
        UINT page;
        Text text;
        const char* default_character;
        std::string expected;
        BOOL used;
    } cases[] = {
        {"nothing to replace", 1252, TEXT("a?"), nullptr, "a?", FALSE},
        {"one", 1252, TEXT("a\u65E5b"), nullptr, "a?b", TRUE},
        {"chosen", 1252, TEXT("a\u65E5b"), "#", "a#b", TRUE},
        {"each half of a pair", 1252, TEXT("\U0001F600"), nullptr, "??", TRUE},
        {"Japanese", 932, TEXT("\u65E5\u0E01"), nullptr, "\x93\xFA?", TRUE},
    };
    for (const auto& test : cases) {
        BOOL used = 2;
        EXPECT_EQ(narrowed(test.page, test.text, &used, test.default_character), test.expected) << test.name;
        EXPECT_EQ(used, test.used) << test.name;
    }
}

TEST_F(CodePages, CharactersWithoutCounterpartBecomeTheNearestUnlessForbidden) {
    const struct {
        const char* name;
        UINT page;
        Text text;
        std::string nearest;
    } cases[] = {
        {"western", 1252, TEXT("\u0100\u03A3\uFF11\u3000"), "AS1 "},
        {"central European", 1250, TEXT("\u00E3\u00BC\u212B"), "a1\xC5"},
        {"Cyrillic", 1251, TEXT("\u00E9\u2554"), "e\xE3"},
        {"Japanese", 932, TEXT("\u00E9\u00A5\u3094"), "e\\\x83\x94"},
        {"simplified Chinese", 936, TEXT("\u00C9\u24B6\uF900"), "\xA8\xA6?\xD8\x4D"},
        {"Korean", 949, TEXT("\u24CF\u1112\uFFDC"), "\xA8\xE6\xA4\xBE\xA4\xD3"},
        {"traditional Chinese", 950, TEXT("\uFF3B\u00E9\uF900"), "\xA1\x65\x65\xB0\x5A"},
    };
    for (const auto& test : cases) {
        BOOL used = 2;
        EXPECT_EQ(narrowed(test.page, test.text, &used), test.nearest) << test.name;
        EXPECT_EQ(used, test.nearest.find('?') == std::string::npos ? FALSE : TRUE) << test.name;
        EXPECT_EQ(narrowed(test.page, test.text, &used, nullptr, WC_NO_BEST_FIT_CHARS),
                  std::string(test.text.size(), '?'))
            << test.name;
        EXPECT_EQ(used, TRUE) << test.name;
    }
}

TEST_F(CodePages, BadBytes) {
    const struct {
        const char* name;
        UINT page;
        std::string bytes;
        Text expected;
    } cases[] = {
        {"cut character", CP_UTF8, "a\xE6\x97", TEXT("a\uFFFD")},
        {"stray byte", CP_UTF8, "\xFFz", TEXT("\uFFFDz")},
        {"no character, Japanese", 932, "\xA0\xFF", TEXT("\uF8F0\uF8F3")},
        {"no character, Korean", 949, "\xFF", TEXT("\uF8F7")},
    };
    for (const auto& test : cases) {
        EXPECT_EQ(widened(test.page, test.bytes), test.expected) << test.name;
        SetLastError(0);
        EXPECT_EQ(widened(test.page, test.bytes, MB_ERR_INVALID_CHARS), Text()) << test.name;
        EXPECT_EQ(GetLastError(), DWORD{ERROR_NO_UNICODE_TRANSLATION}) << test.name;
    }
    EXPECT_EQ(widened(CP_UTF8, "\xED\xA0\x80", MB_ERR_INVALID_CHARS), Text()) << "half a surrogate pair";
    EXPECT_EQ(narrowed(CP_UTF8, Text{0xD800, 'z'}, nullptr), "\xEF\xBF\xBDz");
    // The terminator behind half a character stays the terminator.
    WCHAR out[4] = {1, 1, 1, 1};
    EXPECT_EQ(MultiByteToWideChar(932, 0, "\x93", -1, out, 4), 2);
    EXPECT_EQ(out[1], 0);
}

TEST_F(CodePages, SizesAndArguments) {
    WCHAR wide[4] = {};
    char bytes[4] = {};
    BOOL used = FALSE;
    EXPECT_EQ(MultiByteToWideChar(1252, MB_PRECOMPOSED, "abc", -1, wide, 4), 4);
    EXPECT_EQ(wide[3], 0);
    EXPECT_EQ(MultiByteToWideChar(1252, 0, "abc", 3, wide, 4), 3);
    EXPECT_EQ(WideCharToMultiByte(932, 0, TEXT("\u65E5a"), -1, nullptr, 0, nullptr, nullptr), 4);
    EXPECT_EQ(WideCharToMultiByte(932, 0, TEXT("\u65E5a"), -1, bytes, 4, nullptr, nullptr), 4);

    const struct {
        const char* name;
        int result;
        DWORD error;
    } refused[] = {
        {"too small", (SetLastError(0), MultiByteToWideChar(1252, 0, "abcd", -1, wide, 4)), GetLastError()},
        {"half a character",
         (SetLastError(0), WideCharToMultiByte(932, 0, TEXT("\u65E5"), 1, bytes, 1, nullptr, nullptr)),
         GetLastError()},
    };
    for (const auto& test : refused) {
        EXPECT_EQ(test.result, 0) << test.name;
        EXPECT_EQ(test.error, DWORD{ERROR_INSUFFICIENT_BUFFER}) << test.name;
    }
    EXPECT_EQ(MultiByteToWideChar(1252, 0, "a", 0, wide, 4), 0);
    EXPECT_EQ(GetLastError(), DWORD{ERROR_INVALID_PARAMETER});
    SetLastError(0);
    EXPECT_EQ(WideCharToMultiByte(CP_UTF8, 0, TEXT("a"), 1, bytes, 4, nullptr, &used), 0);
    EXPECT_EQ(GetLastError(), DWORD{ERROR_INVALID_PARAMETER});
    EXPECT_EQ(WideCharToMultiByte(CP_UTF8, 0, TEXT("a"), 1, bytes, 4, "?", nullptr), 0);
    EXPECT_EQ(MultiByteToWideChar(CP_UTF8, MB_PRECOMPOSED, "a", 1, wide, 4), 0);
    EXPECT_EQ(GetLastError(), DWORD{ERROR_INVALID_FLAGS});
}

TEST_F(CodePages, LeadBytes) {
    const struct {
        UINT page;
        BYTE byte;
        BOOL lead;
    } cases[] = {{932, 0x81, TRUE},     {932, 0x80, FALSE}, {932, 0xA0, FALSE}, {932, 0xB1, FALSE},
                 {932, 0xE0, TRUE},     {932, 0xFC, TRUE},  {932, 0xFD, FALSE}, {936, 0xFE, TRUE},
                 {936, 0x80, FALSE},    {949, 0x81, TRUE},  {950, 0xFE, TRUE},  {1252, 0xE9, FALSE},
                 {CP_UTF8, 0xE9, FALSE}};
    for (const auto& test : cases)
        EXPECT_EQ(IsDBCSLeadByteEx(test.page, test.byte) != 0, test.lead != 0)
            << test.page << " " << +test.byte;
}
