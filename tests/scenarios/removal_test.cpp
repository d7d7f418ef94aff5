// Install and removal: what a machine is left with.
#include "rehearsal/difference.h"
#include "rehearsal/remover.h"
#include "scenarios/scenario.h"

#include <gtest/gtest.h>

namespace {

using rehearsal::Outcome;
using Lines = std::vector<std::string>;

constexpr char groups[] = "C:\\ProgramData\\Microsoft\\Windows\\Start Menu\\Programs\\Vorlane";
constexpr char store[] = "C:\\Windows\\System32\\DriverStore\\FileRepository\\";

class Removal : public testing::Test {
protected:
    Outcome install(const std::string& model = "Label_100_Series") {
        if (model != "Label_100_Series") {
            const std::filesystem::path inf = scenario.own_medium() / "Drivers/lbl.inf";
            replace_in_file(inf, "Label_100_Series", model);
            std::filesystem::rename(inf, inf.parent_path() / "other.inf");
        }
        scenario.entry = {};
        // With the driver in place only the queue is new.
        scenario.actions = {"press 1014", "press 1016", "type 1000 10.0.0.7", "press 1", "select 0",
                            "tick 1007",  "press 1015", "tick 1011",          "press 1"};
        Outcome outcome = scenario.run();
        expect_clean(outcome);
        EXPECT_EQ(boxes_of(outcome), success);
        if (installs_++ == 0)
            start_ = {outcome.before, outcome.files_before};
        return outcome;
    }

    Outcome remove() {
        scenario.actions.clear();
        scenario.entry = [this](HINSTANCE instance, char*) {
            removal = {};
            removal.model = u"Label 100 Series";
            return rehearsal::run_remover(instance, removal);
        };
        return scenario.run();
    }

    // What is different from before the first install.
    Lines left(const Outcome& outcome) const {
        Lines lines = difference(start_, {outcome.after, outcome.files_after});
        for (std::string& line : lines)
            line = mask_store(line);
        return lines;
    }

    Scenario scenario;
    rehearsal::Removal removal;

private:
    rehearsal::MachineState start_;
    int installs_ = 0;
};

TEST_F(Removal, LeavesTheMakersFolderTheLogAndTheDriver) {
    install();
    install();
    const Outcome outcome = remove();
    expect_clean(outcome);
    EXPECT_EQ(left(outcome), (Lines{"+ driver Label 100 Driver", "+ folder C:\\Program Files\\Vorlane",
                                    "+ file C:\\Windows\\Temp\\trk_install.log"}));
    EXPECT_TRUE(has(outcome.log, "Label 100 Series - Net - 0 jobs\r\nLabel 100 Series 2 - Net - 0 jobs\r\n"))
        << outcome.log;
    // A queue goes first, then the spooler starts anew, and then the port; the first time the other queue has
    // it still.
    const std::string anew =
        "DoStopSvc [Spooler]\r\nStopDependentServices\nNo dep services\nDoStartSvc [Spooler]\r\n"
        "Delete port TRK_10.0.0.7\r\n";
    EXPECT_TRUE(has(outcome.log, "Deleted Label 100 Series\r\n" + anew + "Deleted Label 100 Series 2\r\n" +
                                     anew + "get_store_inf_name "))
        << outcome.log;
}

TEST_F(Removal, AQueueThatRefusesStaysWithItsPort) {
    install();
    scenario.machine.spooler.queues.back().deny_open = true;
    const Outcome outcome = remove();
    EXPECT_EQ(outcome.exit_code, 1);
    Lines lines = left(outcome);
    lines.resize(7);
    EXPECT_EQ(lines, (Lines{"+ driver Label 100 Driver", "+ package <store>\\lbl.inf", "+ port TRK_10.0.0.7",
                            "+ queue Label 100 Series",
                            "* default printer \"Print to File\" -> \"Label 100 Series\"",
                            "+ folder C:\\Program Files\\Vorlane",
                            "+ folder C:\\Program Files\\Vorlane\\Label 100 Series"}))
        << "by the folder the rest can be removed later";
    EXPECT_TRUE(has(outcome.log, "failed to open printer Label 100 Series 5\r\n")) << outcome.log;
    EXPECT_FALSE(has(outcome.log, "DoStopSvc"));
}

TEST_F(Removal, ARefusedPackageEndsTheRepetition) {
    install();
    scenario.machine.spooler.packages.front().deny_delete = true;
    const Outcome outcome = remove();
    EXPECT_EQ(outcome.exit_code, 1);
    EXPECT_EQ(calls_of(outcome, "DeletePrinterDriverPackageW"), 1u);
    EXPECT_EQ(left(outcome)[1], "+ package <store>\\lbl.inf");
    EXPECT_TRUE(outcome.files_after.contains(install_folder)) << "it alone tells the package's name";
    EXPECT_TRUE(has(outcome.log, std::string("remove [") + store)) << outcome.log;
    EXPECT_TRUE(
        outcome.log.ends_with("error The specified printer driver package is currently in use.\r\n\r\n"))
        << outcome.log;
}

TEST_F(Removal, AnotherModelKeepsItsShareOfTheMaker) {
    install();
    install("Label_200_Series");
    const Outcome outcome = remove();
    EXPECT_TRUE(outcome.files_after.contains(groups + std::string("\\Label 200 Series")));
    EXPECT_FALSE(outcome.files_after.contains(groups + std::string("\\Label 100 Series")));
    EXPECT_TRUE(outcome.files_after.contains("C:\\Program Files\\Vorlane\\Label 200 Series\\inf\\other.inf"));
    EXPECT_FALSE(outcome.files_after.contains(install_folder));
}

TEST_F(Removal, FindsNothingTwice) {
    install();
    remove();
    const Outcome outcome = remove();
    EXPECT_EQ(outcome.exit_code, 2);
    EXPECT_TRUE(outcome.log.ends_with("\\inf\\*.inf\r\nFindFirstFile error 3\r\n")) << outcome.log;
    EXPECT_EQ(changes_of(outcome), "");
}

} // namespace
