#include "scenarios/scenario.h"

#include <gtest/gtest.h>

namespace {

using rehearsal::Outcome;

constexpr char install_folder[] = "C:\\Program Files\\Vorlane\\Label 100 Series";

// What a clean network install of the sample medium writes, from the banner to the last label size.
constexpr char whole_log[] =
    "\r\nVorlane Installer 32 --- Thu Jul  4 09:05:01 2024 ---\r\n"
    "VLI_Get_Locale\r\n"
    "_locale 0 (0)\r\n"
    "CreateDialog\r\n"
    "D:\\medium\r\n"
    "Get driver info...\r\n"
    "D:\\medium\\Drivers\\*.inf\r\n"
    "Version:1.2.3.4\r\n"
    "manuName:Label_Models\r\n"
    "driverName:Label 100 Driver\r\n"
    "mdlName:Label_100_Series\r\n"
    "hasUSB:1\r\n"
    "Found in lbl.inf \"Label 100 Driver\"\r\n"
    "inf file D:\\medium\\Drivers\\lbl.inf\r\n"
    "Label 100 Driver\r\n"
    "Check installed drivers...\r\n"
    "Driver Label 100 Driver not installed\r\n"
    "Search for model MDL:Label_100_Series;\r\n"
    "Interface 0/1\r\n"
    "(printer-name=Shelf A),(ieee1284-id=MFG:Vorlane;MDL:Label_100_Series;CLS:PRINTER;)\r\n"
    "Printer found 10.0.0.7 Shelf A\r\n"
    "(printer-name=Other),(ieee1284-id=MFG:Vorlane;MDL:Label_200_Series;CLS:PRINTER;)\r\n"
    "\r\n"
    "(printer-name=Shelf B),(ieee1284-id=MFG:Vorlane;MDL:Label_100_Series;CLS:PRINTER;)\r\n"
    "Printer found 10.0.0.8 Shelf B\r\n"
    "close interface\r\n"
    "find slp cleanup\r\n"
    "find slp complete\r\n"
    "set default printer\r\n"
    "CreateDialog License\r\n"
    "License accepted\r\n"
    "run_installer...\r\n"
    "Net 10.0.0.7\r\n"
    "ProgramFiles C:\\Program Files\r\n"
    "C:\\Program Files\\Vorlane\r\n"
    "C:\\Program Files\\Vorlane\\Label 100 Series\r\n";

TEST(NetworkInstall, DoesTheWholeJob) {
    Scenario scenario;
    scenario.actions = network_install;
    const Outcome outcome = scenario.run();
    EXPECT_EQ(outcome.refusal, "");
    EXPECT_EQ(outcome.problem, "");
    EXPECT_EQ(outcome.exit_code, 0);
    EXPECT_EQ(outcome.log.substr(0, std::size(whole_log) - 1), whole_log);
    EXPECT_TRUE(find_failures(outcome).empty());
    EXPECT_TRUE(outcome.misuses.empty());
    EXPECT_TRUE(outcome.leaks.empty());
    ASSERT_EQ(outcome.boxes.size(), 1u);
    EXPECT_EQ(outcome.boxes[0].text, "Driver successfully installed");
    EXPECT_EQ(outcome.boxes[0].caption, "Vorlane Inc");
    EXPECT_EQ(outcome.boxes[0].flags, 0x40000u);

    const platform::PrintQueue* const queue = queue_of(outcome, u"Label 100 Series");
    ASSERT_NE(queue, nullptr);
    EXPECT_EQ(queue->port, u"TRK_10.0.0.7");
    EXPECT_EQ(outcome.after.spooler.default_printer, u"Label 100 Series");
    EXPECT_TRUE(outcome.files_after.contains(std::string(install_folder) + "\\inf\\lbl.inf"));
}

} // namespace
