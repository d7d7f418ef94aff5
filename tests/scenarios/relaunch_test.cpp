// A 64-bit system: the sibling does the work.
#include "scenarios/scenario.h"

#include <gtest/gtest.h>

namespace {

using rehearsal::Outcome;

constexpr char child[] = "\"D:\\medium\\trk_setup64.exe\"";

Scenario& on_64_bits(Scenario& scenario) {
    scenario.machine.wow64 = true;
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
