// Rare mistakes of an INF, in the smallest file that both readers take.
#include "machine/inf_text.h"
#include "rehearsal/check/subject_test.h"

#include <gtest/gtest.h>

namespace {

using Lines = std::vector<std::string>;

std::string inf_of(const std::string& driver, const std::string& model, const std::string& maker = "Maker",
                   const std::string& end = "") {
    return "[Version]\r\nSignature=\"$Windows NT$\"\r\nClass=Printer\r\nProvider=%Maker%\r\n"
           "DriverVer=07/26/2024,1.2.3.4\r\n[Manufacturer]\r\n%Maker%=Models,NTx86,NTamd64\r\n"
           "[Models.NTx86]\r\n\"" +
           driver + "\"=" + model + ",usbprint\\lbl\r\n[Models.NTamd64]\r\n\"" + driver + "\"=" + model +
           ",usbprint\\lbl\r\n[" + model + "]\r\nDriverFile=a.dll\r\n[Strings]\r\nMaker=\"" + maker +
           "\"\r\n" + end;
}

Lines found_in(const std::string& inf) {
    return tests::places_found({{"Drivers/lbl.inf", inf}}, rehearsal::check::check_inf);
}

TEST(InfCorners, NamesOfDevices) {
    const std::string folder = "inf-model-folder Drivers/lbl.inf:9:";
    EXPECT_EQ(found_in(inf_of("Label", "LPT1")), Lines{folder + "9"});
    EXPECT_EQ(found_in(inf_of("Label", "nul.40")), Lines{folder + "9"});
    EXPECT_EQ(found_in(inf_of("Com3.Label", "L")), Lines{"inf-driver-file-name Drivers/lbl.inf:9:1"});
    for (const char* good : {"CONSOLE", "LPT10", "COM0", "LPT"})
        EXPECT_EQ(found_in(inf_of(good, good)), Lines{}) << good;
    EXPECT_EQ(found_in(inf_of("CON", "L")), Lines{}) << "the shortcut is called CON Uninstall";
}

TEST(InfCorners, LettersBeyond7BitsOutsideOfTheNames) {
    EXPECT_EQ(found_in(inf_of("Label", "L", "M\xF6ller")), Lines{"inf-code-page Drivers/lbl.inf:15:9"});
    EXPECT_EQ(found_in(inf_of("Label", "L", "M\xC3\xB6ller")), Lines{"inf-utf8 Drivers/lbl.inf:15:9"});
    EXPECT_EQ(found_in(inf_of("Label", "L", "Maker", "; f\xFCr alle\r\n")), Lines{}) << "a comment";
    EXPECT_EQ(
        tests::reasons_found({{"Drivers/lbl.inf", inf_of("Label", "L", "M\xC3\xB6ller")}},
                             rehearsal::check::check_inf),
        Lines{
            "inf-utf8: the letters are UTF-8, and both readers take 8-bit text: this line is "
            "\"Maker=\"M\u00C3\u00B6ller\"\" on a western system, \"Maker=\"M\u679aller\"\" on a Chinese and "
            "\"Maker=\"M\uFF83\uFF76ller\"\" on a Japanese one"});
}

// A file that can't be read to its end has sections all the same.
TEST(InfCorners, LinesOfARefusedFile) {
    platform::InfText inf;
    ASSERT_FALSE(inf.parse(u"[Version]\r\nClass=Printer\r\n[Models\r\nx=y\r\n"));
    EXPECT_EQ(inf.line(u"Version", u"Class"), nullptr);
    EXPECT_EQ(inf.value(u"Models", u"x"), u"");
}

} // namespace
