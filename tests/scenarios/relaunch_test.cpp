// A 64-bit system: the sibling does the work.
#include "scenarios/scenario.h"

#include <gtest/gtest.h>

namespace {

using rehearsal::Outcome;

constexpr char child[] = "\"D:\\medium\\trk_setup64.exe\"";

Scenario& on_64_bits(Scenario& scenario) {
    scenario.program_bits = 32;
    TestSession::write(scenario.own_medium() / "trk_setup64.exe", "MZ");
    return scenario;
}

std::string started(const Outcome& outcome) {
    for (const platform::JournalEntry& entry : outcome.journal)
        if (entry.call == "CreateProcessW")
            return entry.argument;
    return "nothing";
}

TEST(Relaunch, HandsTheArgumentsOver) {
    const std::string long_argument(600, 'x');
    const struct {
        std::string arguments;
        std::string command;
    } table[] = {
        {"", child},
        {"/x", child + std::string(" /x")},
        {"  \"a b\"  /c\t\"d\" ", child + std::string(" \"a b\"  /c\t\"d\" ")},
        {long_argument, child + std::string(" ") + long_argument.substr(0, 510 - 1 - (std::size(child) - 1))},
    };
    for (const auto& row : table) {
        SCOPED_TRACE(row.command);
        Scenario scenario;
        on_64_bits(scenario).command_line = row.arguments;
        scenario.machine.child_programs = {{u"trk_setup64.exe", 3'600'000, 5}};
        const Outcome outcome = scenario.run();
        expect_clean(outcome); // exit code 0, whatever the child's was
        EXPECT_EQ(started(outcome), row.command);
        EXPECT_EQ(calls_of(outcome, "WaitForSingleObject"), 360u) << "an hour in steps of ten seconds";
        EXPECT_EQ(outcome.files_after, outcome.files_before) << "no log";
        EXPECT_TRUE(outcome.dialogs.empty());
    }
}

TEST(Relaunch, TheSystemsOwnProgramInstalls) {
    const struct {
        platform::System system;
        unsigned bits;
        const char* banner;
        const char16_t* environment;
        const char* folder;
        unsigned started;
    } table[] = {
        {platform::System::x64, 32, "Vorlane Installer 64", u"Windows x64", "lbl.inf_amd64_", 1},
        {platform::System::x64, 64, "Vorlane Installer 64", u"Windows x64", "lbl.inf_amd64_", 0},
        {platform::System::x86, 32, "Vorlane Installer 32", u"Windows NT x86", "lbl.inf_x86_", 0},
    };
    for (const auto& row : table) {
        SCOPED_TRACE(std::string(row.banner) + " from " + std::to_string(row.bits));
        Scenario scenario;
        scenario.use_system(row.system);
        scenario.program_bits = row.bits;
        scenario.hand_over = true;
        TestSession::write(scenario.own_medium() / "trk_setup64.exe", "MZ");
        scenario.actions = network_install;
        const Outcome outcome = scenario.run();
        expect_clean(outcome);
        EXPECT_EQ(boxes_of(outcome), success);
        EXPECT_EQ(calls_of(outcome, "CreateProcessW"), row.started);
        EXPECT_TRUE(has(outcome.log, row.banner)) << outcome.log;
        EXPECT_TRUE(has(outcome.log, row.folder));
        EXPECT_EQ(outcome.after.program_name, outcome.before.program_name);
        ASSERT_EQ(outcome.after.spooler.drivers.size(), 2u);
        EXPECT_EQ(outcome.after.spooler.drivers[1].environment, row.environment);
    }
}

// A package that has models for one of the two systems is taken by that one alone.
TEST(Relaunch, APackageForTheOtherSystemFails) {
    for (const platform::System system : {platform::System::x64, platform::System::x86}) {
        const bool x86 = system == platform::System::x86;
        Scenario scenario;
        scenario.use_system(system);
        scenario.actions = network_install;
        replace_in_file(scenario.own_medium() / "Drivers" / "lbl.inf", ",NTx86,NTamd64",
                        x86 ? ",NTamd64" : ",NTx86");
        EXPECT_NE(boxes_of(scenario.run()), success) << (x86 ? "x86" : "x64");
    }
}

TEST(Relaunch, FailuresAreShownUnlessSilent) {
    const struct {
        const char* name;
        const char* arguments;
        std::vector<platform::Fault> faults;
        int exit_code;
        const char* box;
    } table[] = {
        {"missing",
         "",
         {{"CreateProcessW", 1, false, 2, ""}},
         1,
         "!installer can't start: \"D:\\medium\\trk_setup64.exe\""},
        {"missing, silent", "/s", {{"CreateProcessW", 1, false, 2, ""}}, 1, ""},
        {"no path",
         "",
         {{"GetModuleFileNameW", 1, false, 5, ""}},
         1,
         "!installer can't start: \"trk_setup64.exe\""},
        {"no exit code", "", {{"GetExitCodeProcess", 1, false, 6, ""}}, 0, ""},
        {"no exit code once it runs", "", {{"GetExitCodeProcess", 2, false, 6, ""}}, 259, ""},
    };
    for (const auto& row : table) {
        SCOPED_TRACE(row.name);
        Scenario scenario;
        on_64_bits(scenario).command_line = row.arguments;
        scenario.machine.faults = row.faults;
        Outcome outcome = scenario.run();
        EXPECT_EQ(outcome.exit_code, row.exit_code);
        outcome.exit_code = 0;
        expect_clean(outcome);
        EXPECT_EQ(boxes_of(outcome), row.box);
    }
}

TEST(Relaunch, IsLeftOutWhereTheSystemCantTell) {
    Scenario scenario;
    on_64_bits(scenario).machine.missing_functions = {"IsWow64Process"};
    scenario.command_line = "/anything";
    scenario.actions = network_install;
    const Outcome outcome = scenario.run();
    expect_clean(outcome);
    EXPECT_EQ(started(outcome), "nothing");
    EXPECT_EQ(boxes_of(outcome), success) << "arguments silence nothing but the relaunch";
}

} // namespace
