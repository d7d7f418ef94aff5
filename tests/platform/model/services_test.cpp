#include "harness/test_session.h"

#include <gtest/gtest.h>

#include <windows.h>

namespace {

platform::Service named(const char16_t* name, std::vector<platform::ServicePhase> now) {
    platform::Service service;
    service.name = name;
    service.now = std::move(now);
    return service;
}

class ServicePhases : public testing::Test {
protected:
    SC_HANDLE open(const WCHAR* name) { return OpenServiceW(manager_, name, SERVICE_ALL_ACCESS); }
    void start() {
        test.looks_at_leftovers = false;
        session_ = &test.start();
        manager_ = OpenSCManagerW(nullptr, nullptr, SC_MANAGER_ALL_ACCESS);
    }
    static SERVICE_STATUS_PROCESS status_of(SC_HANDLE service) {
        SERVICE_STATUS_PROCESS status{};
        DWORD needed = 0;
        EXPECT_TRUE(QueryServiceStatusEx(service, SC_STATUS_PROCESS_INFO, reinterpret_cast<BYTE*>(&status),
                                         sizeof(status), &needed));
        return status;
    }

    TestSession test;
    platform::Session* session_ = nullptr;
    SC_HANDLE manager_ = nullptr;
};

TEST_F(ServicePhases, PassWithTheMachinesClock) {
    auto service = named(u"Slow", {{SERVICE_RUNNING}});
    service.on_stop = {{SERVICE_STOP_PENDING, 3000, 20000, 1},
                       {SERVICE_STOP_PENDING, 2000, 5000, 2},
                       {SERVICE_STOPPED, 0, 0, 0, 7}};
    test.machine.services = {service};
    start();
    SC_HANDLE slow = open(TEXT("slow"));
    SERVICE_STATUS status{};
    ASSERT_TRUE(ControlService(slow, SERVICE_CONTROL_STOP, &status));
    EXPECT_EQ(status.dwCurrentState, DWORD{SERVICE_STOP_PENDING});
    EXPECT_FALSE(ControlService(slow, SERVICE_CONTROL_STOP, &status));
    EXPECT_EQ(platform::last_error(), DWORD{ERROR_SERVICE_CANNOT_ACCEPT_CTRL});

    const struct {
        DWORD passing, state, wait_hint, checkpoint, exit_code;
    } steps[] = {{2999, SERVICE_STOP_PENDING, 20000, 1, 0},
                 {1, SERVICE_STOP_PENDING, 5000, 2, 0},
                 {2000, SERVICE_STOPPED, 0, 0, 7},
                 {100000, SERVICE_STOPPED, 0, 0, 7}};
    for (const auto& step : steps) {
        SCOPED_TRACE(step.passing);
        session_->clock.pass(step.passing);
        const SERVICE_STATUS_PROCESS now = status_of(slow);
        EXPECT_EQ(now.dwCurrentState, step.state);
        EXPECT_EQ(now.dwWaitHint, step.wait_hint);
        EXPECT_EQ(now.dwCheckPoint, step.checkpoint);
        EXPECT_EQ(now.dwWin32ExitCode, step.exit_code);
    }
    EXPECT_EQ(test.machine.services[0].now.size(), 1u) << "the machine is left in the state that was reached";
    EXPECT_EQ(test.machine.services[0].now[0].state, DWORD{SERVICE_STOPPED});
}

TEST_F(ServicePhases, DependentsStopFirst) {
    auto base = named(u"Base", {}), middle = named(u"Middle", {}), top = named(u"Top", {}),
         idle = named(u"Idle", {{SERVICE_STOPPED}});
    base.dependents = {u"Middle", u"Idle", u"Top", u"Unknown"};
    middle.dependents = {u"Top"};
    test.machine.services = {base, middle, top, idle};
    start();
    SC_HANDLE service = open(TEXT("Base"));
    SERVICE_STATUS status{};
    EXPECT_FALSE(ControlService(service, SERVICE_CONTROL_STOP, &status));
    EXPECT_EQ(platform::last_error(), DWORD{ERROR_DEPENDENT_SERVICES_RUNNING});

    DWORD needed = 0, count = 99;
    EXPECT_FALSE(EnumDependentServicesW(service, SERVICE_ACTIVE, nullptr, 0, &needed, &count));
    EXPECT_EQ(platform::last_error(), DWORD{ERROR_MORE_DATA});
    EXPECT_EQ(count, 0u);
    std::vector<ENUM_SERVICE_STATUSW> records(needed / sizeof(ENUM_SERVICE_STATUSW) + 1);
    ASSERT_TRUE(EnumDependentServicesW(service, SERVICE_ACTIVE, records.data(), needed, &needed, &count));
    ASSERT_EQ(count, 2u);
    EXPECT_EQ(std::u16string(records[0].lpServiceName), u"Top");
    EXPECT_EQ(std::u16string(records[1].lpServiceName), u"Middle");

    for (const WCHAR* name : {TEXT("Top"), TEXT("Middle"), TEXT("Base")})
        EXPECT_TRUE(ControlService(open(name), SERVICE_CONTROL_STOP, &status));
    EXPECT_TRUE(EnumDependentServicesW(service, SERVICE_ACTIVE, nullptr, 0, &needed, &count));
}

TEST_F(ServicePhases, ControlsMayFail) {
    auto service = named(u"Stubborn", {{SERVICE_RUNNING}});
    service.stop_error = ERROR_SERVICE_REQUEST_TIMEOUT;
    auto broken = named(u"Broken", {{SERVICE_STOPPED}});
    broken.start_error = ERROR_SERVICE_DISABLED;
    test.machine.services = {service, broken};
    start();
    SERVICE_STATUS status{};
    EXPECT_FALSE(ControlService(open(TEXT("Stubborn")), SERVICE_CONTROL_STOP, &status));
    EXPECT_EQ(platform::last_error(), DWORD{ERROR_SERVICE_REQUEST_TIMEOUT});
    EXPECT_FALSE(StartServiceW(open(TEXT("Broken")), 0, nullptr));
    EXPECT_EQ(platform::last_error(), DWORD{ERROR_SERVICE_DISABLED});
    EXPECT_EQ(status_of(open(TEXT("Broken"))).dwCurrentState, DWORD{SERVICE_STOPPED});
}

} // namespace
