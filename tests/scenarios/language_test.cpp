#include "machine/little_endian.h"
#include "scenarios/scenario.h"

#include <gtest/gtest.h>

namespace {

using rehearsal::Outcome;

struct Language {
    const char* setting;
    const char16_t* locale; // the system's abbreviation of it
    std::uint16_t ui_language;
    const char* index;
    const char* set; // "<primary> <sub>" of the log
    const char* terms;
    const char* title;
    const char* network;
    const char* headline; // of the terms page
    const char* end;      // of the USB road
};

const Language languages[] = {
    {"ENU", u"ENU", 1033, "0", "9 0", "license.txt", "Installer", "Network", "License Agreement",
     "Driver successfully installed\r\nYou may now plug in the USB cable"},
    {"ENG", u"ENG", 2057, "1", "9 2", "license_ENU.txt", "Installer", "Network", "License Agreement",
     "Driver successfully installed\r\nYou may now plug in the USB cable"},
    {"FRA", u"FRA", 1036, "2", "12 0", "license_FRA.txt", "Programme d'installation", "Réseau",
     "Contrat de licence", "Le pilote a été installé\r\nVous pouvez maintenant brancher le câble USB"},
    {"DEU", u"DEU", 1031, "3", "7 0", "license_DEU.txt", "Installationsprogramm", "Netzwerk", "Lizenzvertrag",
     "Der Treiber wurde erfolgreich installiert\r\nSie können jetzt das USB-Kabel anschließen"},
    {"CH", u"CHS", 2052, "4", "4 0", "license_CH.txt", "安装程序", "网络", "许可协议",
     "驱动程序安装成功\r\n现在可以插入 USB 电缆"},
    {"ESP", u"ESN", 3082, "5", "10 0", "license_ES.txt", "Instalador", "Red", "Contrato de licencia",
     "El controlador se instaló correctamente\r\nYa puede conectar el cable USB"},
    {"JPN", u"JPN", 1041, "6", "17 1", "license_JPN.txt", "インストーラー", "ネットワーク", "使用許諾契約",
     "ドライバーが正常にインストールされました\r\nUSB ケーブルを接続できます"},
};

// The agreement as it stands in its file, which is UTF-16 behind its mark.
std::string agreement(const std::filesystem::path& file) {
    return platform::to_utf8(platform::utf16_text(TestSession::read(file)).substr(1));
}

class Languages : public testing::TestWithParam<bool> {};

TEST_P(Languages, ReachEveryText) {
    const bool by_setting = GetParam();
    for (const Language& row : languages) {
        SCOPED_TRACE(row.setting);
        Scenario scenario;
        scenario.actions = usb_install;
        if (by_setting) {
            TestSession::write(scenario.own_medium() / "wrenchbay/settings.inf",
                               std::string("; tools\r\n[UI]\r\nLanguage=") + row.setting + "\r\n");
        } else {
            scenario.machine.locale_abbreviation = row.locale;
            scenario.machine.ui_language = row.ui_language;
        }
        const Outcome outcome = scenario.run();
        expect_clean(outcome);
        const std::string choice =
            std::string("_locale ") + row.index + (by_setting ? " (1)\r\n" : " (0)\r\n");
        const std::string setting = by_setting ? std::string("set lang ") + row.set + "\r\n" : "";
        EXPECT_TRUE(has(outcome.log, choice + setting + "CreateDialog\r\n")) << outcome.log;
        EXPECT_EQ(caption_of(outcome, 105), std::string("ZR Series ") + row.title);
        std::string order; // of the pause and what it is for
        for (const platform::JournalEntry& call : outcome.journal)
            if (order.size() < 10 && (call.call == "Sleep" || call.call == "SetThreadUILanguage"))
                order += call.call + " ";
        EXPECT_EQ(order, by_setting ? "Sleep SetThreadUILanguage " : "");
        EXPECT_EQ(caption_of(outcome, 101), std::string("ZR Series ") + row.title);
        EXPECT_EQ(control_of(outcome, 105, 1014).text, row.network);
        EXPECT_EQ(control_of(outcome, 101, 1012).text, row.headline);
        EXPECT_EQ(control_of(outcome, 101, 1010).text, agreement(scenario.medium() / "licenses" / row.terms));
        EXPECT_EQ(boxes_of(outcome), std::string("Vorlane Inc: ") + row.end);
    }
}

INSTANTIATE_TEST_SUITE_P(By, Languages, testing::Bool(),
                         [](const auto& chosen) { return chosen.param ? "Setting" : "Locale"; });

// What a missing call costs is the language alone.
TEST(Languages, WithoutTheirCallStayTheSystems) {
    Scenario scenario;
    scenario.machine.missing_functions = {"SetThreadUILanguage"};
    TestSession::write(scenario.own_medium() / "wrenchbay/settings.inf", "[UI]\r\nLanguage=DEU");
    const Outcome outcome = scenario.run();
    expect_clean(outcome);
    EXPECT_TRUE(has(outcome.log, "_locale 3 (1)\r\nerror getting SetThreadUILanguageCreateDialog\r\n"));
    EXPECT_EQ(caption_of(outcome, 105), "ZR Series Installer");
}

// A printer's name in Shift JIS comes through the network, the list, the log and the ANSI code page unharmed.
TEST(Languages, JapaneseNamesAreKept) {
    Scenario scenario;
    scenario.machine.code_page = 932;
    scenario.machine.adapters[0].searches[0] = {
        slp_reply("10.0.0.7", "(printer-name=\x92\x49\x83\x5c"
                              "A),(ieee1284-id=MFG:Vorlane;MDL:Label_100_Series;)")};
    scenario.actions = network_install;
    const Outcome outcome = scenario.run();
    expect_clean(outcome);
    EXPECT_EQ(control_of(outcome, 105, 1003).rows, std::vector<std::string>{"10.0.0.7\t棚ソA"});
    EXPECT_TRUE(has(outcome.log, "Printer found 10.0.0.7 棚ソA\r\n")) << outcome.log;
    EXPECT_EQ(boxes_of(outcome), success);
}

} // namespace
