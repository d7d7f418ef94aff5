#include "machine/little_endian.h"

#include <gtest/gtest.h>

using namespace platform;

TEST(LittleEndian, TextGoesBothWaysAndAnOddByteIsLeftOut) {
    const std::u16string text = u"a\u65E5\xD83D";
    const std::vector<std::uint8_t> bytes = {0x61, 0x00, 0xE5, 0x65, 0x3D, 0xD8};
    EXPECT_EQ(utf16_bytes(text), bytes);
    EXPECT_EQ(utf16_text(bytes), text);
    EXPECT_EQ(utf16_text(std::string_view("a\0b", 3)), u"a");
}

TEST(LittleEndian, AReaderNotesWhatABlockIsTooShortForAndTakesNothingThen) {
    ByteReader bytes(std::string_view("\x01\x02\x83\x84\xFF z\0", 8));
    EXPECT_EQ(bytes.number(4), 0x84830201u);
    EXPECT_EQ(bytes.number(1), 0xFFu);
    EXPECT_EQ(bytes.place(), 5u);
    EXPECT_FALSE(bytes.short_of_bytes());
    EXPECT_EQ(bytes.number(4), 0u);
    EXPECT_TRUE(bytes.short_of_bytes());
    EXPECT_EQ(bytes.left(), 3u);
    bytes.align(2);
    EXPECT_EQ(bytes.text(1), u"z");
    bytes.align(4);
    EXPECT_EQ(bytes.left(), 0u);
}
