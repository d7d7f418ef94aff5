// The line that closes a run: it comes from what happened to the machine and from what the program says
// failed.
#include "rehearsal/judge.h"
#include "rehearsal/remover.h"
#include "scenarios/scenario.h"

#include <gtest/gtest.h>

namespace {

using rehearsal::Verdict;

constexpr char good_line[] =
    "OK: queue \"Label 100 Series\" on TRK_10.0.0.7, driver 1.2.3.4, 9 label sizes, default";

Verdict verdict_of(Scenario& scenario) {
    return judge_install(scenario.run(), scenario.medium(), scenario.drive_c());
}

TEST(Verdict, TellsWhatAnInstallMade) {
    Scenario scenario;
    scenario.actions = network_install;
    const Verdict network = verdict_of(scenario);
    EXPECT_EQ(network.line, good_line);
    EXPECT_EQ(network.status, 0);
    Scenario usb;
    usb.actions = usb_install;
    EXPECT_EQ(verdict_of(usb).line, "OK: driver \"Label 100 Driver\" 1.2.3.4, waiting for its USB device");
    Scenario nothing;
    nothing.actions = {"press 1014"};
    EXPECT_EQ(verdict_of(nothing).line, "OK: nothing was installed");
}

TEST(Verdict, NamesWhatFailedOrIsMissingBehindASuccessBox) {
    const struct {
        const char* name;
        platform::Fault fault;
        const char* expected; // in the line
    } cases[] = {
        {"a link", {"IPersistFile::Save", 2, false, {}, {}}, "FAIL: no shortcut \"Wrenchbay\"; failed: C:\\"},
        {"profiles", {"SHFileOperationW", 1, false, {}, {}}, "no file \"profiles\\label100_draft.tkp\""},
        {"the queue",
         {"AddPrinterW", 1, false, 1797, {}},
         "FAIL: no queue with driver \"Label 100 Driver\"; log: AddPrinter 1797"},
        {"the port", {"XcvDataW", 1, false, 5, {}}, "FAIL: no queue with driver"},
        {"a label size",
         {"SetPrinterDataExA", 1, false, 5, {}},
         "FAIL: 8 of 9 label sizes; log: Error adding label"},
        {"the media table",
         {"CreateFileW", 1, false, 5, "media.inf"},
         "FAIL: 0 of 9 label sizes; log: failed to open"},
        {"the default printer",
         {"SetDefaultPrinterW", 1, false, {}, {}},
         "FAIL: queue \"Label 100 Series\" isn't the default printer; failed: SetDefaultPrinter"},
        {"an optional file that is there",
         {"CopyFileW", 1, false, 5, "profilenames.inf"},
         "FAIL: no file \"profilenames.inf\"; log: copy file failed"},
        {"the log", {"CreateFileW", 1, false, 5, "trk_install.log"}, "FAIL: failed: opening the log"},
        {"the log's lines", {"WriteFile", 9, true, 112, {}}, "FAIL: failed: writing the log"},
        {"an INF", {"CreateFileW", 1, false, 5, "aaa.inf"}, "FAIL: log: file open failed"},
        {"the start of the sockets", {"WSAStartup", 1, false, {}, {}}, "FAIL: failed: WSAStartup"},
        {"a fault that never strikes",
         {"AddPrinterW", 7, false, {}, {}},
         "the fault of AddPrinterW never struck"},
    };
    for (const auto& item : cases) {
        SCOPED_TRACE(item.name);
        Scenario scenario;
        scenario.actions = network_install;
        scenario.machine.faults = {item.fault};
        TestSession::write(scenario.own_medium() / "Drivers/aaa.inf", "no driver's INF\r\n");
        const rehearsal::Outcome outcome = scenario.run();
        EXPECT_EQ(boxes_of(outcome), success);
        const Verdict verdict = judge_install(outcome, scenario.medium(), scenario.drive_c());
        EXPECT_EQ(verdict.status, 1);
        EXPECT_TRUE(verdict.line.starts_with("FAIL: ") && has(verdict.line, item.expected)) << verdict.line;
    }
}

TEST(Verdict, TakesNoWordOfThePrintersForAFailure) {
    Scenario scenario;
    scenario.actions = network_install;
    for (auto& search : scenario.machine.adapters.front().searches)
        search.front() =
            slp_reply("10.0.0.7", "(printer-name=x\r\nAddPrinter 1797\r\nfailed),(id=MDL:Label_100_Series;)");
    scenario.machine.faults = {{"AddPrinterW", 7, false, {}, {}, true}};
    EXPECT_EQ(verdict_of(scenario).line, good_line) << "and the fault may miss";
    std::filesystem::remove(scenario.own_medium() / "wrenchbay/profilenames.inf");
    scenario.actions = {"press 1014", "select 0", "press 1015", "tick 1011", "press 1"};
    EXPECT_EQ(verdict_of(scenario).line,
              "OK: queue \"Label 100 Series 2\" on TRK_10.0.0.7, driver 1.2.3.4, 9 label sizes");
}

TEST(Verdict, LooksAtThePortUnderTheQueue) {
    Scenario scenario;
    scenario.actions = network_install;
    scenario.run();
    scenario.machine.spooler.ports.back().host_address = u"10.0.0.99";
    const Verdict verdict = verdict_of(scenario);
    EXPECT_EQ(verdict.line, "FAIL: no port to 10.0.0.7, 9100 under queue \"Label 100 Series 2\"");
}

TEST(Verdict, OfARemovalTellsWhatStayed) {
    const struct {
        const char* name;
        void (*prepare)(platform::Machine&);
        const char* expected;
        bool folder_stays;
    } cases[] = {
        {"nothing in the way", [](auto&) {}, "OK: \"Label 100 Series\" is removed", false},
        {"the list is refused",
         [](auto& machine) {
             machine.faults = {{"EnumPrintersW", 1, true, 1722, {}}};
         },
         "queue \"Label 100 Series\" stayed; port \"TRK_10.0.0.7\" stayed; driver package", true},
        {"the first list is refused",
         [](auto& machine) {
             machine.faults = {{"EnumPrintersW", 1, false, 5, {}}};
         },
         "FAIL: failed: asking the spooler for a list", false},
        {"a waiting job", [](auto& machine) { machine.spooler.queues.back().jobs = 2; },
         "queue \"Label 100 Series\" stayed with 2 jobs", true},
        {"a refused queue", [](auto& machine) { machine.spooler.queues.back().deny_delete = true; },
         "queue \"Label 100 Series\" stayed", true},
        {"a refused package", [](auto& machine) { machine.spooler.packages.back().deny_delete = true; },
         "FAIL: driver package ", true},
        {"a refused port",
         [](auto& machine) {
             machine.faults = {{"XcvDataW", 1, false, 5, "DeletePort"}};
         },
         "FAIL: port \"TRK_10.0.0.7\" stayed; log: Error in XcvData", false},
        {"a refused folder",
         [](auto& machine) {
             machine.faults = {{"SHFileOperationW", 1, false, 5, "Program Files"}};
         },
         "FAIL: folder \"C:\\Program Files\\Vorlane\\Label 100 Series\" stayed", true},
    };
    for (const auto& item : cases) {
        SCOPED_TRACE(item.name);
        Scenario scenario;
        scenario.actions = network_install;
        scenario.run();
        item.prepare(scenario.machine);
        scenario.actions.clear();
        rehearsal::Removal removal;
        removal.model = u"Label 100 Series";
        scenario.entry = [&removal](HINSTANCE instance, char*) { return run_remover(instance, removal); };
        const rehearsal::Outcome outcome = scenario.run();
        const Verdict verdict = judge_removal(outcome, removal);
        EXPECT_TRUE(has(verdict.line, item.expected)) << verdict.line;
        EXPECT_EQ(verdict.status, verdict.line.starts_with("OK") ? 0 : 1);
        EXPECT_EQ(outcome.files_after.contains(install_folder), item.folder_stays);
    }
}

TEST(Verdict, AUserWhoLeavesClosesTheDialogThatCanBeClosed) {
    Scenario scenario;
    scenario.actions = {"press 1014", "press 1016", "select 0", "press 1015", "tick 1011", "press 1"};
    const rehearsal::Outcome outcome = scenario.run();
    EXPECT_EQ(outcome.refusal, "");
    EXPECT_EQ(boxes_of(outcome), success);
}

} // namespace
