// The five states that a run can start in, and those that can't start at all.
#include "scenarios/scenario.h"

#include <gtest/gtest.h>

namespace {

using rehearsal::Outcome;

constexpr std::uint64_t same_version = 0x0001'0002'0003'0004;
constexpr std::uint64_t other_version = 0x0001'0002'0003'0005; // newer, and in the last field alone

constexpr char analyzing[] = "Analyzing setup...\r\n";
constexpr char line_s[] = "Driver Label 100 Driver already installed. Version: 1.2.3.4\r\n";
constexpr char line_d[] = "Installed driver has different version\r\nLabel 100 Driver : 1.2.3.5<>1.2.3.4\r\n";
constexpr char list_shown[] = "list default install- refresh address cancel";

struct State {
    const char* name;
    std::uint64_t installed; // 0: no driver
    bool has_usb;
    std::string status;
    const char* controls;
    std::string log; // from the check for the driver on, up to a search
};

TEST(StartingState, FollowsFromTheDriver) {
    const std::string plug = "\r\nUSB devices can be plugged in to trigger printer install.\r\n";
    const std::string remove = "\r\nPlease uninstall existing driver first\r\n";
    const std::string text_d =
        "Installed driver has different version\r\nLabel 100 Driver : 1.2.3.5<>1.2.3.4";
    const State table[] = {
        {"same version", same_version, true, analyzing + ("\r\n" + (line_s + plug)), "usb- network cancel",
         line_s},
        {"same version, no USB", same_version, false, analyzing + ("\r\n" + std::string(line_s)), list_shown,
         line_s},
        {"other version", other_version, true, analyzing + ("\r\n" + text_d + remove), "refresh- cancel",
         line_d},
        {"other version, no USB", other_version, false, analyzing + ("\r\n" + text_d + remove),
         "refresh- cancel", line_d},
        {"new", 0, true, "Do not connect USB until prompted!\r\n", "usb network cancel",
         "Driver Label 100 Driver not installed\r\n"},
        {"new, no USB", 0, false, analyzing, list_shown, "Driver Label 100 Driver not installed\r\n"},
    };
    for (const State& row : table) {
        SCOPED_TRACE(row.name);
        Scenario scenario;
        if (row.installed != 0)
            scenario.add_driver(row.installed);
        if (!row.has_usb)
            replace_in_file(scenario.own_medium() / "Drivers/lbl.inf", "usbprint\\", "network\\");
        const Outcome outcome = scenario.run();
        expect_clean(outcome);
        EXPECT_EQ(status_of(outcome), row.status);
        EXPECT_EQ(shown_controls(outcome), row.controls);
        EXPECT_EQ(calls_of(outcome, "SetDefaultDllDirectories"), 1u);
        EXPECT_EQ(boxes_of(outcome), "") << "leaving shows no box";
        EXPECT_EQ(changes_of(outcome), "");
        EXPECT_EQ(caption_of(outcome, 105), "ZR Series Installer");
        EXPECT_EQ(control_of(outcome, 105, 1006).text, "0.0.0.36");
        const std::string log = outcome.log.substr(outcome.log.find("Check installed drivers...\r\n") + 28);
        EXPECT_EQ(log.substr(0, log.find("Search for model")), row.log);
        const bool network = row.controls == list_shown;
        EXPECT_EQ(control_of(outcome, 105, 1003).rows.size(), network ? 2u : 0u);
        EXPECT_EQ(control_of(outcome, 105, 1010).text,
                  network ? "Available Network Printers:" : "Connection Type:");
    }
}

TEST(StartingState, NetworkButtonLeavesTheStatusEmpty) {
    Scenario scenario;
    scenario.add_driver(same_version);
    scenario.machine.spooler.drivers.back().name = u"LABEL 100 Driver"; // another driver
    scenario.actions = {"press 1014", "tick 1007", "untick 1007"};
    const Outcome outcome = scenario.run();
    expect_clean(outcome);
    EXPECT_EQ(status_of(outcome), "");
    EXPECT_EQ(shown_controls(outcome), list_shown);
    EXPECT_EQ(control_of(outcome, 105, 1003).rows,
              (std::vector<std::string>{"10.0.0.7\tShelf A", "10.0.0.8\tShelf B"}));
    EXPECT_TRUE(has(outcome.log, "Driver Label 100 Driver not installed\r\n"));
    EXPECT_TRUE(
        outcome.log.ends_with("find slp complete\r\nset default printer\r\ndont set default printer\r\n"));
}

TEST(StartingState, WithoutAPackageOrADialogTheRunEndsWithABox) {
    const struct {
        const char* name;
        bool with_inf;
        std::vector<platform::Fault> faults;
        const char* box;
        const char* log_end;
    } table[] = {
        {"no INF",
         false,
         {},
         "!: Unable to find driver details!",
         "D:\\medium\\Drivers\\*.inf\r\nFindFirstFile error!\r\n"},
        {"unreadable INF",
         true,
         {{"CreateFileW", 1, false, 5, "lbl.inf"}},
         "!: Unable to find driver details!",
         "file open failed\r\nNot found in lbl.inf\r\n"},
        {"no dialog",
         true,
         {{"CreateDialogParamW", 1, false, 8, ""}},
         "!: The setup window could not be opened.",
         "2024 ---\r\nCreateDialog failed 8\r\n"},
    };
    for (const auto& row : table) {
        SCOPED_TRACE(row.name);
        Scenario scenario;
        scenario.machine.faults = row.faults;
        if (!row.with_inf)
            std::filesystem::remove(scenario.own_medium() / "Drivers/lbl.inf");
        const Outcome outcome = scenario.run();
        expect_clean(outcome);
        EXPECT_EQ(boxes_of(outcome), row.box);
        EXPECT_TRUE(outcome.log.ends_with(row.log_end)) << outcome.log;
        EXPECT_EQ(calls_of(outcome, "GetMessageW"), 0u);
    }
}

TEST(StartingState, MissingStringsHaveTheirFallbacks) {
    const struct {
        std::uint32_t string_id;
        std::uint64_t installed;
        std::string status;
        const char* caption;
        const char* log;
    } table[] = {
        {411, 0, "Do not connect USB until prompted!\r\n", "ZR Series Installer",
         "(0)\r\nfailed\r\nCreateDialog\r\n"},
        {423, same_version,
         analyzing + std::string("\r\nDriver Label 100 Driver already installed. Version: 1.2.3.4"
                                 "\r\nUSB devices can be plugged in to trigger printer install.\r\n"),
         "ZR Series Installer", line_s},
        {424, other_version,
         analyzing +
             std::string("\r\nInstalled driver has different version\r\nLabel 100 Driver : 1.2.3.5<>1.2.3.4"
                         "\r\nPlease uninstall existing driver first\r\n"),
         "ZR Series Installer", line_d},
        {410, 0, analyzing, "ZR Series Installer", "Driver Label 100 Driver not installed\r\n"},
        {405, 0, "Do not connect USB until prompted!\r\n", "ZR Series Installer", "LoadString fail 405\r\n"},
    };
    for (const auto& row : table) {
        SCOPED_TRACE(row.string_id);
        Scenario scenario;
        scenario.machine.missing_strings = {row.string_id};
        if (row.installed != 0)
            scenario.add_driver(row.installed);
        const Outcome outcome = scenario.run();
        expect_clean(outcome);
        EXPECT_EQ(status_of(outcome), row.status);
        EXPECT_EQ(caption_of(outcome, 105), row.caption);
        EXPECT_TRUE(has(outcome.log, row.log)) << outcome.log;
        EXPECT_EQ(control_of(outcome, 105, 1015).text, "Install Printer"); // at worst the template's
    }
}

} // namespace
