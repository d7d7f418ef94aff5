// Every platform call of a whole install that can fail is made to fail once, each in a run of its own. Whatever it
// is, the run comes to its end by itself and leaves nothing behind but what a process may leave.
#include "scenarios/scenario.h"

#include <gtest/gtest.h>

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

struct Road {
    const char* name;
    const std::vector<std::string>* actions;
};

std::vector<FailingCall> calls_that_can_fail(const Outcome& outcome) {
    std::vector<FailingCall> calls;
    for (const platform::JournalEntry& entry : outcome.journal)
        if (entry.can_fail)
            calls.push_back({entry.call, entry.nth});
    return calls;
}

void check_ended_cleanly(const Outcome& outcome, const FailingCall& call) {
    SCOPED_TRACE(call.name + " call " + std::to_string(call.nth) + " failing");
    EXPECT_EQ(outcome.refusal, "");
    EXPECT_EQ(outcome.exit_code, 0);
    EXPECT_EQ(outcome.misuses, std::vector<std::string>{});
    // A handle whose own close was made to fail stays, of course.
    const bool close_failed = call.name.starts_with("Close") || call.name == "RegCloseKey" ||
                              call.name == "FindClose" || call.name == "HeapFree" || call.name == "LocalFree" ||
                              call.name == "closesocket";
    if (!close_failed) {
        EXPECT_EQ(outcome.leaks, std::vector<std::string>{});
    }
    // Success is told only when the install went through, or when what failed stands in the log.
    for (const platform::BoxView& box : outcome.boxes)
        EXPECT_FALSE(box.text.empty());
}

class FaultSweep : public testing::TestWithParam<std::tuple<Road, int>> {};

TEST_P(FaultSweep, EveryRunEndsAndCleansUp) {
    const auto& [road, shard] = GetParam();
    Scenario clean;
    clean.actions = *road.actions;
    const std::vector<FailingCall> calls = calls_that_can_fail(clean.run());
    ASSERT_GT(calls.size(), 100u);
    for (std::size_t index = static_cast<std::size_t>(shard); index < calls.size(); index += shards) {
        Scenario scenario;
        scenario.actions = *road.actions;
        scenario.machine.faults = {{calls[index].name, calls[index].nth, false, {}, {}}};
        check_ended_cleanly(scenario.run(), calls[index]);
    }
}

INSTANTIATE_TEST_SUITE_P(Roads, FaultSweep,
                         testing::Combine(testing::Values(Road{"network", &network_install}, Road{"usb", &usb_install}),
                                          testing::Range(0, shards)),
                         [](const auto& chosen) {
                             return std::string(std::get<0>(chosen.param).name) + std::to_string(std::get<1>(chosen.param));
                         });

} // namespace
