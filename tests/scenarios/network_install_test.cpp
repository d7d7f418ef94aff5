#include "scenarios/scenario.h"

#include <gtest/gtest.h>

namespace {

using rehearsal::Outcome;

// What a clean network install of the sample medium writes, from the banner to the last label size. <I> is
// the install folder, <P> the folder of the Start menu's groups, <store> the package's folder in the driver
// store.
constexpr char whole_log[] =
    "\r\nVorlane Installer 64 --- Thu Jul  4 09:05:01 2024 ---\r\n"
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
    "<I>\r\n"
    "Copy D:\\medium\\wrenchbay\\trk_remove64.exe to <I>\\trk_remove64.exe\r\n"
    "Copy D:\\medium\\wrenchbay\\trk_remove.exe to <I>\\trk_remove.exe\r\n"
    "Copy D:\\medium\\wrenchbay\\wrenchbay.exe to <I>\\wrenchbay.exe\r\n"
    "Copy D:\\medium\\wrenchbay\\portlynx.exe to <I>\\portlynx.exe\r\n"
    "Copy D:\\medium\\wrenchbay\\portlynx.inf to <I>\\portlynx.inf\r\n"
    "Copy D:\\medium\\wrenchbay\\media.inf to <I>\\media.inf\r\n"
    "Copy D:\\medium\\wrenchbay\\settings.inf to <I>\\settings.inf\r\n"
    "Copy D:\\medium\\wrenchbay\\profilenames.inf to <I>\\profilenames.inf\r\n"
    "Copy D:\\medium\\Drivers\\32-bit\\zelcore.dll to <I>\\zelcore.dll\r\n"
    "Copy D:\\medium\\Drivers\\32-bit\\zelmodel.dat to <I>\\zelmodel.dat\r\n"
    "Copy D:\\medium\\Drivers\\32-bit\\zelmodel.dll to <I>\\zelmodel.dll\r\n"
    "Copy D:\\medium\\Drivers\\32-bit\\iconv.dll to <I>\\iconv.dll\r\n"
    "Copy D:\\medium\\Drivers\\lbl.inf to <I>\\inf\\lbl.inf\r\n"
    "copyDirFiles D:\\medium\\profiles\\*.tkp to <I>\\profiles\\\r\n"
    "copyDirFiles D:\\medium\\profiles\\*.tkd to <I>\\profiles\\\r\n"
    "copyDirFiles D:\\medium\\profiles\\*.icm to <I>\\profiles\\\r\n"
    "program folder: <P>\r\n"
    "create sc [<I>\\\\trk_remove.exe] [<P>\\Vorlane\\Label 100 Series\\Label 100 Driver Uninstall.lnk]"
    " [Label 100 Driver Uninstall]\r\n"
    "create sc [<I>\\\\wrenchbay.exe] [<P>\\Vorlane\\Label 100 Series\\Label 100 Driver Wrenchbay.lnk]"
    " [Label 100 Driver Wrenchbay]\r\n"
    "Install Driver...\r\n"
    "D:\\medium\\Drivers\\lbl.inf\r\n"
    "Package uploaded:\r\n"
    "<store>\\lbl.inf\r\n"
    "Printer Driver Installed\r\n"
    "TRK_10.0.0.7.\r\n"
    "Adding port TRK_10.0.0.7\r\n"
    ",XcvMonitor Standard TCP/IP Port\r\n"
    "sztPortName [TRK_10.0.0.7]\r\n"
    "XcvData AddPort 1 0 0 0 [TRK_10.0.0.7]\r\n"
    "Adding printer Label 100 Series\r\n"
    "Add Label 100x50 100.0 50.0 0\r\n"
    "Add Label 100x75 100.0 75.0 0\r\n"
    "Add Label 100x100 100.0 100.0 0\r\n"
    "Add Label 100x150 100.0 150.0 0\r\n"
    "Add Label 70x35 70.0 35.0 0\r\n"
    "Add Label 50x25 50.0 25.0 0\r\n"
    "Add Label 4x6 4.00 6.00 1\r\n"
    "Add Label 4x3 4.00 3.00 1\r\n"
    "Add Label 2x1 2.00 1.00 1\r\n";

std::string masked(const std::string& log) {
    return replaced(replaced(mask_store(log), install_folder, "<I>"),
                    "C:\\ProgramData\\Microsoft\\Windows\\Start Menu\\Programs", "<P>");
}

TEST(NetworkInstall, DoesTheWholeJob) {
    Scenario scenario;
    scenario.actions = network_install;
    const Outcome outcome = scenario.run();
    expect_clean(outcome);
    EXPECT_EQ(masked(outcome.log), whole_log);
    EXPECT_TRUE(find_failures(outcome).empty());
    EXPECT_EQ(boxes_of(outcome), success);
    EXPECT_EQ(shown_controls(outcome), "list default install- refresh- address- cancel");
    EXPECT_EQ(status_of(outcome),
              "\r\nInstall Printer\r\nAdding port TRK_10.0.0.7\r\nAdding printer Label 100 Series");
    EXPECT_EQ(changes_of(outcome),
              "+ driver Label 100 Driver, + package <store>\\lbl.inf, + port TRK_10.0.0.7, "
              "+ queue Label 100 Series, "
              "* default printer \"Print to File\" -> \"Label 100 Series\"");

    const platform::PrintQueue* const queue = queue_of(outcome, u"Label 100 Series");
    ASSERT_NE(queue, nullptr);
    EXPECT_EQ(queue->port, u"TRK_10.0.0.7");
    EXPECT_EQ(queue->driver, u"Label 100 Driver");
    EXPECT_EQ(queue->attributes, 0x1040u);
    EXPECT_EQ(queue->data.size(), 9u);
    EXPECT_TRUE(queue->data.contains(u"Label Sizes\\266"));
    EXPECT_EQ(outcome.after.spooler.ports.back().ip_address, u"10.0.0.7");
    EXPECT_EQ(outcome.after.spooler.ports.back().port_number, 9100u);
    for (const char* const file : {"\\inf\\lbl.inf", "\\trk_remove.exe", "\\profiles\\label100.icm"})
        EXPECT_TRUE(outcome.files_after.contains(install_folder + std::string(file))) << file;
}

// With the driver in place and two queues of the model's name, the third one gets the first free number.
TEST(NetworkInstall, SecondQueuesAreNumbered) {
    Scenario scenario;
    scenario.add_driver(0x0001'0002'0003'0004);
    scenario.add_queue(u"Label 100 Series");
    scenario.actions = {"press 1014", "select 1", "press 1015", "tick 1011", "press 1"};
    Outcome outcome = scenario.run();
    expect_clean(outcome);
    EXPECT_EQ(changes_of(outcome), "+ port TRK_10.0.0.8, + queue Label 100 Series 2");
    EXPECT_EQ(boxes_of(outcome), success);
    EXPECT_EQ(status_of(outcome), "\r\nAdding port TRK_10.0.0.8\r\nAdding printer Label 100 Series 2");
    EXPECT_FALSE(has(outcome.log, "Install Driver..."));
    outcome = scenario.run();
    EXPECT_EQ(changes_of(outcome), "+ queue Label 100 Series 3") << "the port serves as it is";
    EXPECT_TRUE(has(outcome.log, "XcvData AddPort 1 0 b7 0 [TRK_10.0.0.8]\r\n"));
    EXPECT_TRUE(find_failures(outcome).empty());

    // Another spelling doesn't count as taken here, but the spooler takes the two for one.
    scenario.machine.spooler.queues.back().name = u"label 100 series 3";
    outcome = scenario.run();
    EXPECT_EQ(changes_of(outcome), "");
    EXPECT_TRUE(outcome.log.ends_with("Adding printer Label 100 Series 3\r\nAddPrinter 1802\r\n"));
    EXPECT_EQ(boxes_of(outcome), success);
}

TEST(NetworkInstall, ManyTakenNamesCostOneLook) {
    Scenario scenario;
    scenario.add_driver(0x0001'0002'0003'0004);
    scenario.add_queue(u"Label 100 Series");
    for (const std::string number : {"02", "0", "99999999999", " 2", "2x"})
        scenario.add_queue(u"Label 100 Series " + platform::to_utf16(number)); // none of the form
    for (int number = 2; number <= 300; ++number)
        if (number != 150)
            scenario.add_queue(u"Label 100 Series " + platform::to_utf16(std::to_string(number)));
    scenario.actions = {"press 1014", "select 1", "press 1015", "tick 1011", "press 1"};
    const Outcome outcome = scenario.run();
    EXPECT_EQ(changes_of(outcome), "+ port TRK_10.0.0.8, + queue Label 100 Series 150");
    EXPECT_EQ(calls_of(outcome, "EnumPrintersW"), 2u);
    EXPECT_LT(calls_of(outcome, "lstrcmpW"), 2 * 310u);
}

TEST(NetworkInstall, UsbRoadStopsBehindTheDriver) {
    Scenario scenario;
    scenario.actions = usb_install;
    const Outcome outcome = scenario.run();
    expect_clean(outcome);
    EXPECT_EQ(boxes_of(outcome),
              "Vorlane Inc: Driver successfully installed\r\nYou may now plug in the USB cable");
    EXPECT_EQ(changes_of(outcome), "+ driver Label 100 Driver, + package <store>\\lbl.inf");
    EXPECT_EQ(shown_controls(outcome), "usb- network- install- cancel");
    EXPECT_EQ(status_of(outcome), "Do not connect USB until prompted!\r\n\r\nInstall Printer");
    EXPECT_TRUE(has(outcome.log, "run_installer...\r\nUSB \r\nProgramFiles C:\\Program Files\r\n"));
    EXPECT_TRUE(outcome.log.ends_with("Printer Driver Installed\r\n"));
    EXPECT_FALSE(has(outcome.log, "Search for model"));
}

} // namespace
