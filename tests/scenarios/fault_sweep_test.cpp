// Every platform call of a road that can fail is made to fail once, each in a run of its own. Whatever it is,
// the run comes to its end by itself and leaves nothing behind but what a process may leave.
#include "rehearsal/judge.h"
#include "rehearsal/remover.h"
#include "scenarios/library_road.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <set>
#include <string>
#include <vector>

namespace {

using rehearsal::Outcome;

// The sweep is cut into parts that run side by side.
constexpr int shards = 6;

struct FailingCall {
    std::string name;
    unsigned nth = 0;
};

std::vector<std::string> paths_of(const Outcome& outcome) {
    std::vector<std::string> paths;
    for (const auto& [path, file] : outcome.files_after)
        paths.push_back(path);
    return paths;
}

// Calls by which the program chooses where the log goes and what shortcuts are called; without them it makes
// the same things in other places.
const std::set<std::string> choosing_places = {"GetVersionExW", "RegOpenKeyExW", "ExpandEnvironmentStringsW"};

// A verdict that all went well holds only for a machine like that of a run in which all did.
void expect_whole_or_told(const Scenario& scenario, const Outcome& clean, const Outcome& failed) {
    const rehearsal::Verdict verdict = judge_install(failed, scenario.medium(), scenario.drive_c());
    if (verdict.status != 0 || !failed.asked.install)
        return;
    EXPECT_EQ(changes_of(failed), changes_of(clean)) << verdict.line;
    const bool elsewhere = std::any_of(failed.journal.begin(), failed.journal.end(), [](const auto& entry) {
        return entry.failed && choosing_places.contains(entry.call);
    });
    if (!elsewhere) {
        EXPECT_EQ(paths_of(failed), paths_of(clean)) << verdict.line;
    }
}

void expect_deleted_as_told(const Scenario&, const Outcome&, const Outcome& outcome) {
    if (has(outcome.log, "Deleted Label 100 Series\r\n")) {
        EXPECT_EQ(queue_of(outcome, u"Label 100 Series"), nullptr);
    }
}

void prepare_removal(Scenario& scenario) {
    scenario.actions = network_install;
    scenario.run();
    scenario.actions.clear();
    scenario.entry = [](HINSTANCE instance, char*) {
        rehearsal::Removal removal;
        removal.model = u"Label 100 Series";
        return rehearsal::run_remover(instance, removal);
    };
}

struct Road {
    const char* name;
    void (*prepare)(Scenario&);
    void (*judge)(const Scenario& scenario, const Outcome& clean, const Outcome& failed);
};

// What a list of the tests shows; the record's bytes would be others in each run.
void PrintTo(const Road& road, std::ostream* out) {
    *out << road.name;
}

const Road roads[] = {
    {"network", [](Scenario& scenario) { scenario.actions = network_install; }, expect_whole_or_told},
    {"usb", [](Scenario& scenario) { scenario.actions = usb_install; }, expect_whole_or_told},
    {"removal", prepare_removal, expect_deleted_as_told},
    {"library", prepare_library_road, [](const Scenario&, const Outcome&, const Outcome&) {}},
};

std::vector<FailingCall> calls_that_can_fail(const Outcome& outcome) {
    std::vector<FailingCall> calls;
    for (const platform::JournalEntry& entry : outcome.journal)
        if (entry.can_fail)
            calls.push_back({entry.call, entry.nth});
    return calls;
}

// What such a call would have given back stays, of course.
bool gives_back(const std::string& call) {
    for (const char* const word : {"Close", "Free", "Destroy", "closesocket"})
        if (has(call, word))
            return true;
    return false;
}

void check_ended_cleanly(const Outcome& outcome, const FailingCall& call) {
    const bool struck = std::any_of(outcome.journal.begin(), outcome.journal.end(),
                                    [](const platform::JournalEntry& entry) { return entry.failed; });
    // How often the loop goes round while the worker lives depends on the threads.
    EXPECT_TRUE(struck || call.name == "GetMessageW");
    EXPECT_EQ(outcome.refusal, "");
    EXPECT_EQ(outcome.misuses, std::vector<std::string>{});
    if (!gives_back(call.name)) {
        EXPECT_EQ(outcome.leaks, std::vector<std::string>{});
    }
    EXPECT_EQ(app.log_handle, INVALID_HANDLE_VALUE);
    for (const platform::BoxView& box : outcome.boxes)
        EXPECT_FALSE(box.text.empty());
}

class FaultSweep : public testing::TestWithParam<std::tuple<Road, int>> {};

TEST_P(FaultSweep, EveryRunEndsAndCleansUp) {
    const auto& [road, shard] = GetParam();
    Scenario prepared;
    road.prepare(prepared);
    Scenario clean(prepared);
    const Outcome outcome = clean.run();
    expect_clean(outcome);
    const std::vector<FailingCall> calls = calls_that_can_fail(outcome);
    ASSERT_GT(calls.size(), 100u);
    for (std::size_t index = static_cast<std::size_t>(shard); index < calls.size(); index += shards) {
        const FailingCall& call = calls[index];
        SCOPED_TRACE(call.name + " call " + std::to_string(call.nth) + " failing");
        Scenario scenario(prepared);
        scenario.machine.faults = {{call.name, call.nth, false, {}, {}}};
        const Outcome failed = scenario.run();
        check_ended_cleanly(failed, call);
        road.judge(scenario, outcome, failed);
    }
}

INSTANTIATE_TEST_SUITE_P(Roads, FaultSweep,
                         testing::Combine(testing::ValuesIn(roads), testing::Range(0, shards)),
                         [](const auto& chosen) {
                             return std::string(std::get<0>(chosen.param).name) +
                                    std::to_string(std::get<1>(chosen.param));
                         });

} // namespace
