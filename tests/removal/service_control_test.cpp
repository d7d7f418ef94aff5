#include "removal/service_control.h"

#include "harness/test_session.h"

#include <gtest/gtest.h>

namespace {

using Phases = std::vector<platform::ServicePhase>;

constexpr std::uint32_t stopped = 1;
constexpr std::uint32_t starting = 2;
constexpr std::uint32_t stopping = 3;
constexpr std::uint32_t running = 4;

struct Outcome {
    std::string log; // behind the opening line
    std::string output;
    std::uint32_t milliseconds = 0;
};

// A row of the table: phases are {state, milliseconds, wait hint, checkpoint, exit code}.
struct Row {
    const char* name;
    Phases now;
    Phases on_control; // after a stop or a start
    Outcome expected;
    std::uint32_t refusal = 0; // of that control
    platform::Fault fault = {};
};

class Services : public testing::Test {
protected:
    platform::Service& add(const std::u16string& name, Phases now, Phases on_stop) {
        platform::Service service;
        service.name = name;
        service.now = std::move(now);
        service.on_stop = std::move(on_stop);
        test.machine.services.push_back(service);
        return test.machine.services.back();
    }

    // Every operation lives through the wrap of the tick count.
    void expect(void (*operation)(const WCHAR*), const std::string& opening, const Row& row) {
        platform::Session& session = test.start();
        Sleep(0xffffffffu - session.clock.ticks() - 1500);
        const std::uint32_t start = session.clock.ticks();
        const std::size_t before = test.log().size();
        testing::internal::CaptureStdout();
        operation(u"Spooler");
        EXPECT_EQ(testing::internal::GetCapturedStdout(), row.expected.output) << row.name;
        EXPECT_EQ(test.log().substr(before), opening + row.expected.log) << row.name;
        EXPECT_EQ(session.clock.ticks() - start, row.expected.milliseconds) << row.name;
        expect_all_closed();
        test.stop();
    }

    static void expect_all_closed() {
        for (const std::string& kind : platform::session().handles.open_kinds())
            EXPECT_FALSE(kind.starts_with("service")) << kind;
        EXPECT_TRUE(platform::session().memory.live().empty());
    }

    TestSession test;
};

const std::string no_dependents = "StopDependentServices\nNo dep services\n";
const std::string pending = "Service stop pending...\n";

TEST_F(Services, AreStoppedWithinTheirLimit) {
    const platform::Fault first_query = {"QueryServiceStatusEx", 1, true, 6, "Spooler"};
    const platform::Fault second_query = {"QueryServiceStatusEx", 2, true, 6, "Spooler"};
    const Row table[] = {
        {"stopped already", {{stopped}}, {}, {"Service is already stopped.\n", "", 0}},
        {"prompt",
         {{running}},
         {{stopping, 500, 700}, {stopped}},
         {no_dependents, "Service stopped successfully\n", 700}},
        {"at once", {{running}}, {{stopped}}, {no_dependents, "Service stopped successfully\n", 0}},
        {"limit not yet exceeded at 30 s",
         {{running}},
         {{stopping, 0, 10000}},
         {no_dependents, "Wait timed out\n", 40000}},
        {"no hint, for ever", {{running}}, {{stopping}}, {no_dependents, "Wait timed out\n", 30001}},
        {"short hint while pending",
         {{stopping, 1500, 50}, {stopped}},
         {},
         {pending + pending, "Service stopped successfully.\n", 2000}},
        {"a tenth of the hint",
         {{stopping, 1, 45000}, {stopped}},
         {},
         {pending, "Service stopped successfully.\n", 4500}},
        {"long hint while pending",
         {{stopping, 0, 900000}},
         {},
         {pending + pending + pending + pending, "Service stop timed out.\n", 40000}},
        {"pending turns into running",
         {{stopping, 800}, {running}},
         {{stopped}},
         {pending + no_dependents, "Service stopped successfully\n", 1000}},
        {"one clock for both waits",
         {{stopping, 15000, 100000}, {running}},
         {{stopping, 0, 6000}},
         {pending + pending + no_dependents, "Wait timed out\n", 32000}},
        {"refused", {{running}}, {}, {no_dependents, "ControlService failed (1061)\n", 0}, 1061},
        {"first query", {{running}}, {}, {"QueryServiceStatusEx failed (6)\n", "", 0}, 0, first_query},
        {"query while pending",
         {{stopping}},
         {},
         {pending, "QueryServiceStatusEx failed (6)\n", 1000},
         0,
         second_query},
        {"query while stopping",
         {{running}},
         {{stopping, 0, 500}},
         {no_dependents, "QueryServiceStatusEx failed (6)\n", 500},
         0,
         second_query},
        {"no manager",
         {{running}},
         {},
         {"OpenSCManager failed (5)\n", "", 0},
         0,
         {"OpenSCManagerW", 1, true, 5, ""}},
        {"no service",
         {{running}},
         {},
         {"OpenService failed (1060)\n", "", 0},
         0,
         {"OpenServiceW", 1, true, 1060, ""}},
    };
    for (const Row& row : table) {
        test.machine.services.clear();
        add(u"Spooler", row.now, row.on_control).stop_error = row.refusal;
        test.machine.faults = {row.fault};
        expect(DoStopSvc, "DoStopSvc [Spooler]\r\n", row);
    }
}

TEST_F(Services, AreStartedWhileTheyMakeProgress) {
    const std::string started = "Service start pending...\nService started successfully.\n";
    const auto not_started = [](int state, int code, int checkpoint, int hint) {
        return "Service not started. \n  Current State: " + std::to_string(state) +
               "\n  Exit Code: " + std::to_string(code) + "\n  Check Point: " + std::to_string(checkpoint) +
               "\n  Wait Hint: " + std::to_string(hint) + "\n";
    };
    const std::string refusal = "Cannot start the service because it is already running\n";
    const auto query = [](unsigned nth) {
        return platform::Fault{"QueryServiceStatusEx", nth, true, 6, "Spooler"};
    };
    const platform::Fault third_query = query(3);
    const Row table[] = {
        {"prompt", {{stopped}}, {{starting, 500, 2000, 1}, {running}}, {"", started, 1000}},
        {"running already", {{running}}, {}, {"", refusal, 0}},
        {"starting already", {{starting}}, {}, {"", refusal, 0}},
        {"first query", {{stopped}}, {}, {"", "QueryServiceStatusEx failed (6)\n", 0}, 0, query(1)},
        {"query while stopping",
         {{stopping, 0, 30000}},
         {},
         {"", "QueryServiceStatusEx failed (6)\n", 3000},
         0,
         query(2)},
        {"query behind the start",
         {{stopped}},
         {{starting, 500, 2000, 1}, {running}},
         {"", "Service start pending...\nQueryServiceStatusEx failed (6)\n", 0},
         0,
         query(2)},
        {"stops first", {{stopping, 1, 30000, 1}, {stopped}}, {{running}}, {"", started, 3000}},
        {"stopped after its hint ran out",
         {{stopping, 5500, 5000, 1}, {stopped}},
         {{running}},
         {"", started, 6000}},
        {"stuck while stopping",
         {{stopping, 0, 5000, 1}},
         {},
         {"", "Timeout waiting for service to stop\n", 6000}},
        {"rising checkpoints while stopping",
         {{stopping, 2500, 2000, 1}, {stopping, 2500, 2000, 2}, {stopping, 2500, 2000, 3}, {stopped}},
         {{running}},
         {"", started, 8000}},
        {"stuck after some progress",
         {{stopping, 2500, 2000, 1}, {stopping, 0, 2000, 2}},
         {},
         {"", "Timeout waiting for service to stop\n", 6000}},
        {"beyond half a minute with progress",
         {{stopped}},
         {{starting, 20000, 20000, 1}, {starting, 20000, 20000, 2}, {running}},
         {"", started, 40000}},
        {"stuck while starting",
         {{stopped}},
         {{starting, 0, 3000, 1}},
         {"", "Service start pending...\n" + not_started(2, 0, 1, 3000), 4000}},
        {"ends with a code",
         {{stopped}},
         {{starting, 500, 0, 0, 0}, {stopped, 0, 0, 0, 1067}},
         {"", "Service start pending...\n" + not_started(1, 1067, 0, 0), 1000}},
        {"refused", {{stopped}}, {}, {"", "StartService failed (1058)\n", 0}, 1058},
        {"last query",
         {{stopped}},
         {{starting, 0, 3000, 1}},
         {"", "Service start pending...\nQueryServiceStatusEx failed (6)\n" + not_started(2, 0, 1, 3000),
          1000},
         0,
         third_query},
        {"no manager",
         {{stopped}},
         {},
         {"", "OpenSCManager failed (5)\n", 0},
         0,
         {"OpenSCManagerW", 1, true, 5, ""}},
        {"no service",
         {{stopped}},
         {},
         {"", "OpenService failed (1060)\n", 0},
         0,
         {"OpenServiceW", 1, true, 1060, ""}},
    };
    for (const Row& row : table) {
        test.machine.services.clear();
        platform::Service& service = add(u"Spooler", row.now, {{stopped}});
        service.on_start = row.on_control;
        service.start_error = row.refusal;
        test.machine.faults = {row.fault};
        expect(DoStartSvc, "DoStartSvc [Spooler]\r\n", row);
    }
}

TEST_F(Services, DependentsStopFirst) {
    const std::string two = "StopDependentServices\nstop service...\nstop service...\n";
    const std::string one = "StopDependentServices\nstop service...\n";
    const struct {
        const char* name;
        Phases first;
        Outcome expected;
        std::uint32_t first_state; // afterwards
        platform::Fault fault = {};
    } table[] = {
        {"both", {{stopping, 900, 500}, {stopped}}, {two, "Service stopped successfully\n", 1000}, stopped},
        {"first takes too long",
         {{stopping, 0, 8000}},
         {one, "ControlService failed (1051)\n", 32000},
         stopping},
        {"first can't be opened",
         {{stopped}},
         {one, "ControlService failed (1051)\n", 0},
         running,
         {"OpenServiceW", 1, true, 5, "First"}},
        {"first refuses",
         {{stopped}},
         {one, "ControlService failed (1051)\n", 0},
         running,
         {"ControlService", 1, true, 5, "First"}},
        {"first can't be asked",
         {{stopping, 900, 500}, {stopped}},
         {one, "ControlService failed (1051)\n", 500},
         stopping,
         {"QueryServiceStatusEx", 1, true, 5, "First"}},
        {"list can't be had",
         {{stopped}},
         {"StopDependentServices\n", "ControlService failed (1051)\n", 0},
         running,
         {"EnumDependentServicesW", 1, true, 5, ""}},
        {"list can't be had twice",
         {{stopped}},
         {"StopDependentServices\n", "ControlService failed (1051)\n", 0},
         running,
         {"EnumDependentServicesW", 2, true, 5, ""}},
    };
    for (const auto& row : table) {
        test.machine.services.clear();
        add(u"Spooler", {{running}}, {{stopped}}).dependents = {u"First", u"Second"};
        add(u"First", {{running}}, row.first);
        add(u"Second", {{running}}, {{stopped}});
        test.machine.faults = {row.fault};
        expect(DoStopSvc, "DoStopSvc [Spooler]\r\n", {row.name, {}, {}, row.expected});
        EXPECT_EQ(test.machine.services[1].now.front().state, row.first_state) << row.name;
    }
}

TEST_F(Services, DependentsAreNoMoreThanTheListHolds) {
    test.machine.services.clear();
    add(u"Spooler", {{running}}, {{stopped}}).dependents = {u"First"};
    add(u"First", {{running}}, {{stopped}});
    platform::Session& session = test.start();
    session.gate.on_size = [](const auto&, std::uint32_t, platform::ToldSize& size) { size.more = 1000; };
    testing::internal::CaptureStdout();
    DoStopSvc(u"Spooler");
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "Service stopped successfully\n");
    EXPECT_EQ(test.log(), "DoStopSvc [Spooler]\r\nStopDependentServices\nstop service...\n");
}

} // namespace
