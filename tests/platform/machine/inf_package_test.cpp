#include "machine/inf_package.h"

#include "machine/inf_text.h"
#include "machine/text.h"

#include "platform/machine/inf_language.h"

#include <gtest/gtest.h>

namespace {

using namespace platform;

// What a reader found: `[name]`, then for each line `key:value|value;`.
std::string dump(const InfText& inf) {
    std::string out;
    for (const InfSection& section : inf.sections()) {
        out += "[" + to_utf8(section.name) + "]";
        for (const InfLine& line : section.lines) {
            out += to_utf8(line.key) + ":";
            for (std::size_t i = 0; i < line.values.size(); ++i)
                out += (i == 0 ? "" : "|") + to_utf8(line.values[i].text);
            out += ";";
        }
    }
    return out;
}

TEST(InfText, ReadsTheLanguage) {
    for (const InfLanguageCase& test : inf_language_cases) {
        SCOPED_TRACE(test.name);
        InfText inf;
        EXPECT_EQ(inf.parse(to_utf16(inf_language_version + test.text)), test.error == 0);
        EXPECT_EQ(inf.fault().code, test.error);
        const std::string found = dump(inf);
        if (test.error == 0) {
            EXPECT_EQ(found.substr(found.find(';') + 1), test.found);
        }
    }
}

TEST(InfText, FindsByNameAndReplacesTokens) {
    InfText inf;
    ASSERT_TRUE(inf.parse(u"[One]\r\n%Key%=1\r\nkey = %What%, %unknown%, 100%%\r\nKEY = later\r\n"
                          u"[STRINGS]\r\nwhat = \"token, %Key%\"\r\nkey=\"long key\"\r\n"));
    EXPECT_EQ(inf.value(u"one", u"LONG KEY"), u"1");
    const InfLine* line = inf.line(u"ONE", u"Key");
    ASSERT_NE(line, nullptr);
    EXPECT_EQ(line->values[0].text, u"token, %Key%");
    EXPECT_EQ(line->values[1].text, u"%unknown%");
    EXPECT_EQ(line->values[2].text, u"100%");
    EXPECT_EQ(inf.section(u"two"), nullptr);
}

std::string shown(TextPlace place) {
    return std::to_string(place.line) + ":" + std::to_string(place.column);
}

TEST(InfText, TellsWhereEverythingStands) {
    InfText inf;
    ASSERT_TRUE(inf.parse(u"\uFEFF; note\r\n"
                          u"  [One] ; 2\r\n"
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
    EXPECT_EQ(places, "[2:4 (3:1 3:7 3:14 3:16 3:22) (4:2 4:9 4:12) (6:1 6:8 7:4 8:2 8:4) (14:1 14:6)]"
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
                                         u"DriverVer=07/26/2024,2\r\n"
                                         u"CopyFiles=Parts\r\n"
                                         u"[Parts]\r\n"
                                         u"label.gpd\r\n"
                                         u"renamed.dll,label.dll\r\n"
                                         u"[SourceDisksNames]\r\n"
                                         u"1=%Disk%,Label.cab,,\\parts\r\n"
                                         u"2=%Disk%,disk2.tag\r\n"
                                         u"[SourceDisksFiles]\r\n"
                                         u"label.gpd=1\r\n"
                                         u"label.dll=1,x64\r\n"
                                         u"label.ini=2\r\n"
                                         u"[Strings]\r\n"
                                         u"Second=\"Label 200\"\r\n";

std::u16string with(std::u16string_view old_part, std::u16string_view new_part) {
    std::u16string text(good_inf);
    const std::size_t place = text.find(old_part);
    EXPECT_NE(place, text.npos);
    return text.replace(place, old_part.size(), new_part);
}

std::string files_of(const InfPackage& package) {
    std::string files;
    for (const PackageFile& file : package.files) {
        files += (files.empty() ? "" : " ") + to_utf8(file.path) + (file.optional ? "?" : "");
        for (const std::u16string& stand_in : file.stand_ins)
            files += "/" + to_utf8(stand_in);
    }
    return files;
}

TEST(InfPackage, FindsDriversVersionAndFiles) {
    InfPackage package;
    ASSERT_EQ(read_inf_package(good_inf, u"Windows x64", package), 0u);
    EXPECT_EQ(package.version, 0x0001'0002'0003'0004u);
    ASSERT_EQ(package.models.size(), 2u);
    EXPECT_EQ(package.models[0].driver_name, u"Label 100");
    EXPECT_EQ(package.models[0].hardware_id, u"usbprint\\label100");
    EXPECT_EQ(package.models[0].version, 0x0001'0002'0003'0004u);
    EXPECT_EQ(shown(package.models[0].section_place), "9:15");
    EXPECT_EQ(package.models[1].driver_name, u"Label 200");
    EXPECT_EQ(package.models[1].version, 0x0002'0000'0000'0000u) << "of its install section";
    EXPECT_EQ(files_of(package),
              "lbl.cat parts\\label.gpd/parts\\label.gp_/parts\\Label.cab/Label.cab "
              "parts\\x64\\label.dll/parts\\x64\\label.dl_/parts\\Label.cab/Label.cab label.ini/label.in_ "
              "unidrv.dll?");
    EXPECT_EQ(shown(package.files[1].place), "21:1");

    ASSERT_EQ(read_inf_package(with(u"CatalogFile=", u"CatalogFile.NTx86=x86.cat\r\nCatalogFile="),
                               u"Windows NT x86", package),
              0u);
    ASSERT_EQ(package.models.size(), 1u);
    EXPECT_EQ(package.models[0].driver_name, u"Label 100 (32)");
    EXPECT_EQ(package.files[0].path, u"x86.cat");
}

TEST(InfPackage, TellsWhatIsWrong) {
    const struct {
        const char* name;
        std::u16string text;
        std::uint32_t result;
        std::size_t models;
        std::string place;
    } cases[] = {
        {"open bracket", with(u"[Version]", u"[Version"), inf_error::bad_section_name_line, 0, "1:2"},
        {"no signature", with(u"Signature", u"Sig"), inf_error::wrong_style, 0, "1:2"},
        {"other class", with(u"Class=Printer", u"Class=Mouse"), inf_error::class_mismatch, 0, "1:2"},
        {"class by its id", with(u"Class=Printer", u"ClassGuid={4d36e979-e325-11ce-bfc1-08002be10318}"), 0, 2,
         "0:0"},
        {"no version", with(u"DriverVer=07", u"Version=07"), inf_error::line_not_found, 0, "1:2"},
        {"no manufacturer", with(u"[Manufacturer]", u"[Maker]"), inf_error::section_not_found, 0, "0:0"},
        {"no models section", with(u"[Models.NTamd64]", u"[Models.NTarm]"), inf_error::section_not_found, 0,
         "7:16"},
        {"no install section", with(u"[Label_100]", u"[Label]"), inf_error::section_not_found, 2, "9:15"},
        {"not for this platform", with(u"Models,NTamd64,NTx86.6.0", u"Models,NTx86.6.0"), 0, 0, "0:0"},
        {"undecorated", with(u"Models,NTamd64,NTx86.6.0", u"Models.NTamd64"), 0, 0, "0:0"},
        {"no copy list", with(u"[Parts]", u"[Part]"), inf_error::section_not_found, 2, "14:11"},
        {"no entry", with(u"label.gpd=1", u"label.xpd=1"), inf_error::line_not_found, 2, "21:1"},
        {"no entry of a single file", with(u"label.ini=2", u"label.xni=2"), inf_error::line_not_found, 2,
         "14:17"},
        {"no entry with Include", with(u"label.gpd=1", u"Other=1\r\n[Label_100]\r\nInclude=ntprint.inf"),
         inf_error::line_not_found, 2, "21:1"},
        {"no entry with LayoutFile", with(u"label.gpd=1", u"Other=1\r\n[Version]\r\nLayoutFile=layout.inf"),
         inf_error::line_not_found, 2, "21:1"},
        {"the system's file", with(u"@label.ini", u"@UNIRES.DLL\r\nInclude=ntprint.inf"), 0, 2, "0:0"},
        {"the system's file by itself", with(u"@label.ini", u"@UNIRES.DLL"), inf_error::line_not_found, 2,
         "14:17"},
        {"no such disk", with(u"label.ini=2", u"label.ini=3"), inf_error::line_not_found, 2, "29:11"},
        {"end of file", with(u"[Models.NTamd64]", u"\x1A[Models.NTamd64]"), inf_error::section_not_found, 0,
         "7:16"},
    };
    for (const auto& test : cases) {
        SCOPED_TRACE(test.name);
        InfPackage package;
        EXPECT_EQ(read_inf_package(test.text, u"Windows x64", package), test.result);
        EXPECT_EQ(package.models.size(), test.models);
        EXPECT_EQ(package.fault.code, test.result);
        EXPECT_EQ(shown(package.fault.place), test.place) << package.fault.reason;
    }
}

TEST(InfPackage, TakesThePlatformsInstallSection) {
    for (const InfInstallCase& test : inf_install_cases) {
        InfPackage package;
        ASSERT_EQ(read_inf_package(to_utf16(inf_language_version +
                                            "Class=Printer\r\nDriverVer=1,1\r\n"
                                            "[Manufacturer]\r\nM=X,NTamd64\r\n"
                                            "[X.NTamd64]\r\nL=Label\r\n" +
                                            test.present),
                                   u"Windows x64", package),
                  0u);
        EXPECT_EQ(to_utf8(package.models.at(0).actual_section), test.taken);
    }
}

// Which section of [Manufacturer] `%M%=X` and the targets a system takes; "-" for none.
TEST(InfPackage, TakesTheClosestModelsSection) {
    const struct {
        const char16_t* targets;
        const char16_t* environment;
        InfSystem system;
        const char16_t* taken;
    } cases[] = {
        {u"", u"Windows NT x86", {10, 0, 19045}, u"X"},
        {u"", u"Windows x64", {10, 0, 19045}, u"-"},
        {u",NT", u"Windows x64", {10, 0, 19045}, u"-"},
        {u",NT.6.1,NTx86", u"Windows NT x86", {6, 1, 7601}, u"X.NT.6.1"},
        {u",NT,NTx86", u"Windows NT x86", {10, 0, 19045}, u"X.NTx86"},
        {u",NTx86.6.1", u"Windows NT x86", {6, 0, 6000}, u"X"},
        {u",NTamd64,NTamd64.6.1,NTamd64.10.0", u"Windows x64", {6, 3, 9600}, u"X.NTamd64.6.1"},
        {u",ntAMD64.10.0,NTamd64", u"Windows x64", {10, 0, 19045}, u"X.ntAMD64.10.0"},
        {u",NTamd64.10.0", u"Windows x64", {6, 3, 9600}, u"-"},
        {u",NTamd64.10.0...17763,NTamd64.10.0...19041,NTamd64.10.0...22000",
         u"Windows x64",
         {10, 0, 19045},
         u"X.NTamd64.10.0...19041"},
        {u",NTamd64.6.3...99999", u"Windows x64", {10, 0, 19045}, u"X.NTamd64.6.3...99999"},
        {u",NTamd64...3,NTamd64...1", u"Windows x64", {10, 0, 19045}, u"X.NTamd64...1"},
        {u",NTamd64....0x80,NTamd64.5", u"Windows x64", {10, 0, 19045}, u"X.NTamd64.5"},
        {u",NT.5,NT.5.5,NT....0x80", u"Windows NT x86", {5, 1, 2600}, u"X.NT.5"},
        {u",NTarm64,NTamd64", u"Windows ARM64", {10, 0, 19045}, u"X.NTarm64"},
        {u",NTamd64.6.x,amd64", u"Windows x64", {10, 0, 19045}, u"-"},
    };
    for (const auto& test : cases) {
        SCOPED_TRACE(to_utf8(test.targets));
        std::u16string text =
            u"[Version]\nSignature=$CHICAGO$\nClass=Printer\nDriverVer=1,1\n[Manufacturer]\nM=X";
        text += test.targets;
        std::u16string names = u"X" + std::u16string(test.targets);
        text += u"\n[X]\nX=I\n[I]\n";
        for (std::size_t comma = names.find(u','); comma != names.npos; comma = names.find(u',')) {
            names.erase(0, comma + 1);
            const std::u16string name = u"X." + names.substr(0, names.find(u','));
            text += u"[" + name + u"]\n" + name + u"=I\n";
        }
        InfPackage package;
        ASSERT_EQ(read_inf_package(text, test.environment, package, test.system), 0u);
        ASSERT_EQ(package.models.size(), test.taken == std::u16string_view(u"-") ? 0u : 1u);
        if (!package.models.empty()) {
            EXPECT_EQ(to_utf8(package.models[0].driver_name), to_utf8(test.taken));
        }
    }
    InfPackage package;
    ASSERT_EQ(read_inf_package(with(u"NTamd64,", u"NTamd64,NTamd64.10.0,") + u"[Models.NTamd64.10.0]\r\n",
                               u"Windows x64", package),
              0u);
    EXPECT_TRUE(package.models.empty()) << "an empty section excludes newer systems";
}

} // namespace
