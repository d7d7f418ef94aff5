#include "rehearsal/check/subject_test.h"

#include <gtest/gtest.h>

namespace {

struct MediaCase {
    const char* name;
    std::string text;
    std::vector<std::string> expected; // as reasons
    std::vector<std::string> places = {};
};

const std::string media_head = "; sizes\r\n[Media]\r\n";
const std::string media_row = "\"A\",\"100.0\",\"50.0\",0\r\n";
const std::string other_row = "\"B\" \"4\" \"6.00\" 1\r\n";

std::string many_rows(std::size_t count) {
    std::string rows;
    for (std::size_t i = 0; i < count; ++i)
        rows += "\"Label " + std::to_string(1000 + i) + "\",\"100.0\",\"50.0\",0\r\n"; // 31 bytes each
    return rows;
}

class MediaTableCheck : public testing::TestWithParam<MediaCase> {};

TEST_P(MediaTableCheck, Finds) {
    const tests::MediumFiles files = {{"wrenchbay/media.inf", GetParam().text}};
    EXPECT_EQ(tests::reasons_found(files, rehearsal::check::check_media_table), GetParam().expected);
    if (!GetParam().places.empty()) {
        EXPECT_EQ(tests::places_found(files, rehearsal::check::check_media_table), GetParam().places);
    }
}

const MediaCase media_cases[] = {
    {"Good", media_head + media_row + other_row + "\r\n; the end\r\n[Other]\r\n\"x\"\r\n", {}},
    {"GoodWithoutLineEnd", media_head + media_row + "\"B\",\"1\",\"2\",1", {}},
    {"Comma",
     media_head + "\"A\",\"100,0\",\"50.0\",0\r\n",
     {"media-number: width \"100,0\": a number has a point, not a comma"},
     {"media-number wrenchbay/media.inf:3:9"}},
    {"Zero",
     media_head + "\"A\",\"0.0\",\"50.0\",0\r\n",
     {"media-number: width \"0.0\": a label has a size above zero"}},
    {"Text",
     media_head + "\"A\",\"wide\",\"5.0.0\",0\r\n",
     {"media-number: width \"wide\": it isn't a number of digits and at most one point",
      "media-number: length \"5.0.0\": it isn't a number of digits and at most one point"},
     {"media-number wrenchbay/media.inf:3:6", "media-number wrenchbay/media.inf:3:13"}},
    {"Empty",
     media_head + "\"\",\"1\",\"2\",0\r\n",
     {"media-text: the name is empty"},
     {"media-text wrenchbay/media.inf:3:1"}},
    {"Units",
     media_head + "\"A\",\"1\",\"2\",mm\r\n\"B\",\"1\",\"2\"\r\n",
     {"media-units: the units \"mm\" count as 0", "media-units: the units are missing and count as 0"},
     {"media-units wrenchbay/media.inf:3:13", "media-units wrenchbay/media.inf:4:12"}},
    {"Twice",
     media_head + media_row + other_row + media_row,
     {"media-twice: \"A\" is also the name in line 3"},
     {"media-twice wrenchbay/media.inf:5:1"}},
    {"Comment",
     media_head + media_row + "; more\r\n" + other_row,
     {"media-ends-early: this line isn't a row and ends the table in front of more: 1 row counts"},
     {"media-ends-early wrenchbay/media.inf:4:1"}},
    {"EmptyLineFirst",
     media_head + "\r\n" + media_row,
     {"media-ends-early: this line isn't a row and ends the table in front of more: 0 rows count"},
     {"media-ends-early wrenchbay/media.inf:3:1"}},
    {"LongName",
     media_head + "\"" + std::string(64, 'n') + "\",\"1\",\"2\",0\r\n" + media_row,
     {"media-row: the name has 64 bytes, at most 63 are taken, which ends the table: 0 rows count"}},
    {"LongWidth",
     media_head + media_row + "\"B\",\"12345.78\",\"2\",0\r\n",
     {"media-row: the width has 8 bytes, at most 7 are taken, which ends the table: 1 row counts"},
     {"media-row wrenchbay/media.inf:4:1"}},
    {"NoQuote",
     media_head + media_row + "\"B\",100.0,\"2\",0\r\n",
     {"media-row: no width in double quotes follows, which ends the table: 1 row counts"}},
    {"OpenQuote",
     media_head + media_row + "\"B\",\"1\",\"2,0\r\n" + other_row,
     {"media-text: the length runs over a line end: its closing quote is missing",
      "media-units: the units \"B\" \"4\" \"6.00\" 1\" count as 0"}},
    {"Header",
     "[media]\r\n" + media_row,
     {"media-header: \"[media]\" isn't found by the setup: it looks for \"[Media]\", exactly"},
     {"media-header wrenchbay/media.inf:1:1"}},
    {"HeaderMistyped",
     "[Meda]\r\n" + media_row,
     {"media-header: \"[Meda]\" isn't found by the setup: it looks for \"[Media]\", exactly"}},
    {"HeaderInComment",
     "; the rows of [Media]:\r\n" + media_head + media_row,
     {"media-header: this \"[Media]\" is the first and counts, but no line end stands right behind it"},
     {"media-header wrenchbay/media.inf:1:15"}},
    {"NoHeader",
     media_row,
     {"media-header: the file has no line [Media]"},
     {"media-header wrenchbay/media.inf"}},
    {"NoRows", media_head, {"media-no-rows: no row stands right below [Media]"}},
    {"Nothing", "", {"media-empty: the file is empty"}},
    {"Wide", tests::utf16("[Media]\r\n"), {"media-encoding: the file is UTF-16, and the setup reads bytes"}},
    {"ZeroByte",
     media_head + media_row + std::string(1, '\0') + media_row,
     {"media-encoding: a zero byte ends the text for the setup"},
     {"media-encoding wrenchbay/media.inf:4:1"}},
    {"Utf8Name",
     media_head + "\"\xC3\x89tiquette\",\"1\",\"2\",0\r\n\"\xC9tiquette\",\"1\",\"2\",0\r\n",
     {"media-utf8: \"\xC3\x89tiquette\" is UTF-8, which the systems show letter by letter"}},
    {"TooLong",
     media_head + many_rows(140),
     {"media-beyond: the first 4,095 bytes end here and 131 rows count; what follows isn't read"},
     {"media-beyond wrenchbay/media.inf:134:1"}},
    {"LongButNotTheTable", media_head + many_rows(10) + "\r\n" + std::string(5000, ';'), {}},
    {"HeaderBeyond",
     std::string(4095, ';') + "\r\n" + media_head + media_row,
     {"media-beyond: [Media] stands behind the first 4,095 bytes, which are all that is read"}},
};

INSTANTIATE_TEST_SUITE_P(, MediaTableCheck, testing::ValuesIn(media_cases),
                         [](const auto& each) { return each.param.name; });

} // namespace
