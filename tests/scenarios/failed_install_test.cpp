// Steps of an install that fail: what the log tells, which box ends the run, and what stays behind.
#include "scenarios/scenario.h"

#include <gtest/gtest.h>

namespace {

using platform::Fault;
using rehearsal::Outcome;

constexpr char driver_and_package[] = "+ driver Label 100 Driver, + package <store>\\lbl.inf";
constexpr char all_but_the_queue[] =
    "+ driver Label 100 Driver, + package <store>\\lbl.inf, + port TRK_10.0.0.7";
constexpr char default_too[] =
    "+ driver Label 100 Driver, + package <store>\\lbl.inf, + port TRK_10.0.0.7, + queue Label "
    "100 Series, * default printer \"Print to File\" -> \"Label 100 Series\"";

struct Row {
    const char* name;
    Fault fault;
    std::string log; // in one piece somewhere in the log
    const char* box;
    const char* changes;
    bool to_the_end = false; // the run went on to the label sizes
};

const Row failing_steps[] = {
    {"upload",
     {"UploadPrinterDriverPackageW", 1, false, 5, ""},
     "lbl.inf\r\nUploadPrinterDriverPackage error 80070005 Access is denied.\r\nPrinter Driver install "
     "fail\r\n",
     failure,
     ""},
    {"install from the package",
     {"InstallPrinterDriverFromPackageW", 1, false, 0xE0000219, ""},
     "InstallPrinterDriverFromPackage error e0000219 ",
     failure,
     "+ package <store>\\lbl.inf"},
    {"queue",
     {"AddPrinterW", 1, false, 1801, ""},
     "Adding printer Label 100 Series\r\nAddPrinter 1801\r\n",
     success,
     all_but_the_queue},
    // A queue on a port that isn't there is refused too.
    {"port",
     {"XcvDataW", 1, false, 5, "AddPort"},
     "XcvData AddPort 0 0 0 5 [TRK_10.0.0.7]\r\nAdding printer Label 100 Series\r\nAddPrinter 1796\r\n",
     success,
     driver_and_package},
    {"port monitor",
     {"OpenPrinterW", 1, false, 5, ",XcvMonitor"},
     "failed to open printer for port TRK_10.0.0.7\r\nAdding printer Label 100 Series\r\nAddPrinter 1796\r\n",
     success,
     driver_and_package},
    {"label sizes",
     {"SetPrinterDataExA", 1, true, 5, ""},
     "Add Label 100x50 100.0 50.0 0\r\nError adding label to registry!Add Label 100x75",
     success,
     default_too,
     true},
    {"media failing_steps",
     {"CreateFileW", 1, false, 2, "media.inf"},
     "Adding printer Label 100 Series\r\nfailed to open media.inf\r\n",
     success,
     default_too},
    {"a file",
     {"CopyFileW", 1, false, 5, "zelcore.dll"},
     "copy file failed 0 5 D:\\medium\\Drivers\\32-bit\\zelcore.dll\r\nError setting up driver files!\r\n",
     failure,
     ""},
    {"an optional file",
     {"CopyFileW", 1, false, 5, "profilenames.inf"},
     "copy file failed 0 5 D:\\medium\\wrenchbay\\profilenames.inf\r\nCopy "
     "D:\\medium\\Drivers\\32-bit\\zelcore.dll",
     success,
     default_too,
     true},
    {"Program Files",
     {"SHGetKnownFolderPath", 1, false, {}, ""},
     "Net 10.0.0.7\r\nGet ProgramFiles failed -",
     failure,
     ""},
    {"Start menu",
     {"SHGetKnownFolderPath", 2, false, {}, ""},
     "*.icm to C:\\Program Files\\Vorlane\\Label 100 Series\\profiles\\\r\nGet CommonPrograms failed -",
     failure,
     ""},
    {"shortcuts",
     {"CoCreateInstance", 1, true, {}, ""},
     "CoCreateInstance failed!\r\n",
     success,
     default_too,
     true},
    {"list of queues",
     {"EnumPrintersW", 1, true, 1722, ""},
     "Adding printer Label 100 Series\r\nAdd Label 100x50",
     success,
     default_too,
     true},
    {"thread",
     {"_beginthread", 1, false, 8, ""},
     "License accepted\r\nInstall thread failed\r\n",
     failure,
     ""},
};

TEST(FailedInstall, IsToldAndLeavesWhatWasMade) {
    for (const Row& row : failing_steps) {
        SCOPED_TRACE(row.name);
        Scenario scenario;
        scenario.actions = network_install;
        scenario.machine.faults = {row.fault};
        const Outcome outcome = scenario.run();
        expect_clean(outcome);
        EXPECT_TRUE(has(outcome.log, row.log)) << outcome.log;
        EXPECT_EQ(boxes_of(outcome), row.box);
        EXPECT_EQ(changes_of(outcome), row.changes);
        EXPECT_EQ(outcome.log.ends_with("Add Label 2x1 2.00 1.00 1\r\n") ||
                      outcome.log.ends_with("Error adding label to registry!"),
                  row.to_the_end);
    }
}

TEST(FailedInstall, MissingFilesAreToldInTheStatusToo) {
    Scenario scenario;
    scenario.actions = network_install;
    std::filesystem::remove(scenario.own_medium() / "wrenchbay/settings.inf");
    const Outcome outcome = scenario.run();
    expect_clean(outcome);
    EXPECT_EQ(status_of(outcome), "\r\nError setting up driver files!\r\nCheck permissions!");
    EXPECT_TRUE(outcome.log.ends_with("copy file failed 0 2 D:\\medium\\wrenchbay\\settings.inf\r\n"
                                      "Error setting up driver files!\r\n"));
    EXPECT_EQ(boxes_of(outcome), failure);
    EXPECT_TRUE(outcome.files_after.contains(std::string(install_folder) + "\\media.inf"));
    EXPECT_FALSE(outcome.files_after.contains(std::string(install_folder) + "\\zelcore.dll"));
}

// A package must not choose where an administrator's files go.
TEST(FailedInstall, HostileModelNamesMakeNothing) {
    for (const std::string model : {"..", "..\\..\\Windows", "C:", "a/b", "x."}) {
        SCOPED_TRACE(model);
        Scenario scenario;
        replace_in_file(scenario.own_medium() / "Drivers/lbl.inf", "= Label_100_Series", "= " + model);
        scenario.actions = usb_install;
        const Outcome outcome = scenario.run();
        expect_clean(outcome);
        EXPECT_TRUE(outcome.log.ends_with("ProgramFiles C:\\Program Files\r\nnot a folder name: " + model +
                                          "\r\nError setting up driver files!\r\n"))
            << outcome.log;
        EXPECT_EQ(boxes_of(outcome), failure);
        EXPECT_EQ(changes_of(outcome), "");
        for (const auto& [path, file] : outcome.files_after)
            EXPECT_TRUE(outcome.files_before.contains(path) || path.ends_with("trk_install.log")) << path;
    }
}

// The message loop breaks down before and in the middle of an install.
TEST(FailedInstall, AnEndOfMessagesEndsTheRun) {
    Scenario clean;
    clean.actions = network_install;
    unsigned before_the_worker = 0;
    for (const platform::JournalEntry& entry : clean.run().journal) {
        before_the_worker += entry.call == "GetMessageW";
        if (entry.call == "_beginthread")
            break;
    }
    for (const unsigned nth : {1u, before_the_worker + 1}) {
        SCOPED_TRACE(nth);
        Scenario scenario;
        scenario.actions = network_install;
        scenario.machine.faults = {{"GetMessageW", nth, false, {}, ""}};
        const Outcome outcome = scenario.run();
        expect_clean(outcome);
        EXPECT_EQ(boxes_of(outcome), nth == 1 ? "" : failure);
    }
}

} // namespace
