#include "machine/inf_package.h"

#include "machine/inf_text.h"
#include "machine/text.h"

#include <gtest/gtest.h>

namespace {

using namespace platform;

TEST(InfText, ReadsTheLanguage) {
    const std::u16string text = u"; a comment\r\n"
                                u"[One]\r\n"
                                u"plain = a , \"b;c\", %What% ; comment\r\n"
                                u"\"quoted = key\" = \"say \"\"hi\"\"\"\r\n"
                                u"long = x, \\\r\n"
                                u"       y\r\n"
                                u"\"%What%\" = 100%%, %unknown%\r\n"
                                u"alone, second\r\n"
                                u"[ STRINGS ]\r\n"
                                u"WHAT = \"token, %What%\"\r\n"
                                u"[one]\n"
                                u"joined = yes";
    InfText inf;
    ASSERT_TRUE(inf.parse(text));
    const struct {
        const char16_t* key;
        std::vector<std::u16string> values;
    } cases[] = {{u"PLAIN", {u"a", u"b;c", u"token, %What%"}},
                 {u"quoted = key", {u"say \"hi\""}},
                 {u"long", {u"x", u"y"}},
                 {u"token, %What%", {u"100%", u"%unknown%"}},
                 {u"", {u"alone", u"second"}},
                 {u"joined", {u"yes"}}};
    for (const auto& test : cases) {
        SCOPED_TRACE(to_utf8(test.key));
        const InfLine* line = inf.line(u"one", test.key);
        ASSERT_NE(line, nullptr);
        std::vector<std::u16string> values;
        for (const InfValue& value : line->values)
            values.push_back(value.text);
        EXPECT_EQ(values, test.values);
    }
    EXPECT_EQ(inf.section(u"two"), nullptr);
}

std::string shown(TextPlace place) {
    return std::to_string(place.line) + ":" + std::to_string(place.column);
}

TEST(InfText, TellsWhereEverythingStands) {
    InfText inf;
    ASSERT_TRUE(inf.parse(u"\uFEFF; note\r\n"
                          u"  [ One ] ; 2\r\n"
                          u"key = \"a;b\" ,, %Two%,%None%\r\n"
                          u"\tlong = x, \\ ; goes on\r\n"
                          u"\r\n"
                          u"more = y , \\\r\n"
                          u"   z, \\\n"
                          u" u,v\r\n"
                          u"[;two; \"2\"]\r\n"
                          u"alone\r\n"
                          u"[Strings]\r\n"
                          u"Two=\"long text\"\r\n"
                          u"[one]\r\n"
                          u"last=\r\n"
                          u"\x1A[broken\r\n"));
    std::string places;
    for (const InfSection& section : inf.sections()) {
        places += "[" + shown(section.place);
        for (const InfLine& line : section.lines) {
            places += " (" + shown(line.place);
            for (const InfValue& value : line.values)
                places += " " + shown(value.place);
            places += ")";
        }
        places += "]";
    }
    EXPECT_EQ(places, "[2:5 (3:1 3:7 3:14 3:16 3:22) (4:2 4:9 4:12) (6:1 6:8 7:4 8:2 8:4) (14:1 14:6)]"
                      "[9:2 (10:1 10:1)][11:2 (12:1 12:5)]");
    ASSERT_EQ(inf.unknown_strings().size(), 1u);
    EXPECT_EQ(inf.unknown_strings()[0].name, u"None");
    EXPECT_EQ(shown(inf.unknown_strings()[0].place), "3:22");
    EXPECT_EQ(inf.section(u";two; \"2\"")->lines.size(), 1u);
}

TEST(InfText, TellsWhereAFileIsBroken) {
    const std::u16string much = u"[One]\nlong = " + std::u16string(3000, u'a');
    const struct {
        const char* name;
        std::u16string text;
        std::uint32_t code;
        std::string place;
    } cases[] = {
        {"open header", u"; note\r\n  [One\r\n", inf_error::bad_section_name_line, "2:4"},
        {"entry first", u"\r\nkey = value\r\n", inf_error::expected_section_name, "2:1"},
        {"open quote", u"[One]\r\nkey = a, \"open ; quote\r\n", inf_error::general_syntax, "2:10"},
        {"long name", u"[" + std::u16string(256, u'n') + u"]", inf_error::section_name_too_long, "1:2"},
        {"long value", much + std::u16string(1096, u'b'), inf_error::general_syntax, "2:8"},
        {"long by its tokens", much + u"\na = %T%\n[Strings]\nT = " + std::u16string(4095, u't') + u"\nU=1",
         0, "0:0"},
        {"too long by its tokens", u"[One]\na=,%T%\n[Strings]\nT = " + std::u16string(4095, u't'), 0, "0:0"},
        {"much too long by its tokens", u"[One]\na=,%T%%T%\n[Strings]\nT = " + std::u16string(4095, u't'),
         inf_error::general_syntax, "2:4"},
    };
    for (const auto& test : cases) {
        SCOPED_TRACE(test.name);
        InfText inf;
        EXPECT_EQ(inf.parse(test.text), test.code == 0);
        EXPECT_EQ(inf.fault().code, test.code);
        EXPECT_EQ(shown(inf.fault().place), test.place);
        EXPECT_EQ(inf.fault().reason.empty(), test.code == 0);
    }
}

constexpr std::u16string_view good_inf = u"[Version]\r\n"
                                         u"Signature=\"$Windows NT$\"\r\n"
                                         u"Class=Printer\r\n"
                                         u"DriverVer=07/26/2024,1.2.3.4\r\n"
                                         u"CatalogFile=lbl.cat\r\n"
                                         u"[Manufacturer]\r\n"
                                         u"%Maker%=Models,NTamd64,NTx86.6.0\r\n"
                                         u"[Models.NTamd64]\r\n"
                                         u"\"Label 100\" = Label_100, usbprint\\label100\r\n"
                                         u"%Second% = Label_200\r\n"
                                         u"[Models.NTx86.6.0]\r\n"
                                         u"\"Label 100 (32)\" = Label_100\r\n"
                                         u"[Label_100]\r\n"
                                         u"CopyFiles=Parts,@label.ini\r\n"
                                         u"DataFile=label.gpd\r\n"
                                         u"DriverFile=unidrv.dll\r\n"
                                         u"[Label_200.NTamd64]\r\n"
                                         u"CopyFiles=Parts\r\n"
                                         u"[Parts]\r\n"
                                         u"label.gpd\r\n"
                                         u"renamed.dll,label.dl_\r\n"
                                         u"[SourceDisksNames.amd64]\r\n"
                                         u"1=%Disk%,,,\\parts\r\n"
                                         u"[SourceDisksFiles]\r\n"
                                         u"label.gpd=1\r\n"
                                         u"label.dl_=1,x64\r\n"
                                         u"[Strings]\r\n"
                                         u"Second=\"Label 200\"\r\n";

std::u16string with(std::u16string_view old_part, std::u16string_view new_part) {
    std::u16string text(good_inf);
    const std::size_t place = text.find(old_part);
    EXPECT_NE(place, text.npos);
    return text.replace(place, old_part.size(), new_part);
}

TEST(InfPackage, FindsDriversVersionAndFiles) {
    InfPackage package;
    ASSERT_EQ(read_inf_package(good_inf, u"Windows x64", package), 0u);
    EXPECT_EQ(package.version, 0x0001'0002'0003'0004u);
    ASSERT_EQ(package.models.size(), 2u);
    EXPECT_EQ(package.models[0].driver_name, u"Label 100");
    EXPECT_EQ(package.models[0].hardware_id, u"usbprint\\label100");
    EXPECT_EQ(package.models[1].driver_name, u"Label 200");
    std::vector<std::u16string> files;
    for (const PackageFile& file : package.files)
        files.push_back(file.path + (file.optional ? u"?" : u""));
    EXPECT_EQ(files, (std::vector<std::u16string>{u"lbl.cat", u"parts\\label.gpd", u"parts\\x64\\label.dl_",
                                                  u"label.ini", u"unidrv.dll?"}));

    ASSERT_EQ(read_inf_package(good_inf, u"Windows NT x86", package), 0u);
    ASSERT_EQ(package.models.size(), 1u);
    EXPECT_EQ(package.models[0].driver_name, u"Label 100 (32)");
}

TEST(InfPackage, TellsWhatIsWrong) {
    const struct {
        const char* name;
        std::u16string text;
        std::uint32_t result;
        std::size_t models;
    } cases[] = {
        {"open bracket", with(u"[Version]", u"[Version"), inf_error::bad_section_name_line, 0},
        {"no signature", with(u"Signature", u"Sig"), inf_error::wrong_style, 0},
        {"other class", with(u"Class=Printer", u"Class=Mouse"), inf_error::class_mismatch, 0},
        {"class by its id", with(u"Class=Printer", u"ClassGuid={4d36e979-e325-11ce-bfc1-08002be10318}"), 0,
         2},
        {"no version", with(u"DriverVer", u"Version"), inf_error::line_not_found, 0},
        {"no manufacturer", with(u"[Manufacturer]", u"[Maker]"), inf_error::section_not_found, 0},
        {"no models section", with(u"[Models.NTamd64]", u"[Models.NTarm]"), inf_error::section_not_found, 0},
        {"no install section", with(u"[Label_100]", u"[Label]"), inf_error::section_not_found, 2},
        {"not for this platform", with(u"Models,NTamd64,NTx86.6.0", u"Models,NTx86.6.0"), 0, 0},
        {"for any platform", with(u"Models,NTamd64,NTx86.6.0", u"Models.NTamd64"), 0, 2},
    };
    for (const auto& test : cases) {
        SCOPED_TRACE(test.name);
        InfPackage package;
        EXPECT_EQ(read_inf_package(test.text, u"Windows x64", package), test.result);
        EXPECT_EQ(package.models.size(), test.models);
    }
}

} // namespace
