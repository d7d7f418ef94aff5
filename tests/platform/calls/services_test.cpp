#include "harness/calls_fixture.h"

#include <windows.h>

#include <vector>

namespace {

class Services : public CallsTest {
protected:
    void SetUp() override {
        manager_ = OpenSCManagerW(nullptr, nullptr, SC_MANAGER_ALL_ACCESS);
        ASSERT_NE(manager_, nullptr);
    }
    void TearDown() override { EXPECT_TRUE(CloseServiceHandle(manager_)); }

    static DWORD state_of(SC_HANDLE service) {
        SERVICE_STATUS_PROCESS status{};
        DWORD needed = 0;
        EXPECT_TRUE(QueryServiceStatusEx(service, SC_STATUS_PROCESS_INFO, reinterpret_cast<BYTE*>(&status),
                                         sizeof(status), &needed));
        return status.dwCurrentState;
    }
    // Waits in short steps, at most as long as a person would.
    static void wait_for(SC_HANDLE service, DWORD state) {
        for (int i = 0; i < 100 && state_of(service) != state; ++i)
            Sleep(100);
        EXPECT_EQ(state_of(service), state);
    }

    SC_HANDLE manager_ = nullptr;
};

TEST_F(Services, AreOpenedByName) {
    SC_HANDLE service = OpenServiceW(manager_, TEXT("SPOOLER"), SERVICE_QUERY_STATUS);
    EXPECT_NE(service, nullptr);
    EXPECT_TRUE(CloseServiceHandle(service));
    EXPECT_EQ(OpenServiceW(manager_, TEXT("NoSuchService"), SERVICE_QUERY_STATUS), nullptr);
    EXPECT_EQ(GetLastError(), DWORD{ERROR_SERVICE_DOES_NOT_EXIST});
    EXPECT_EQ(OpenServiceW(manager_, TEXT("a/b"), SERVICE_QUERY_STATUS), nullptr);
    EXPECT_EQ(GetLastError(), DWORD{ERROR_INVALID_NAME});
}

TEST_F(Services, NeedTheRightForEachUse) {
    SC_HANDLE service = OpenServiceW(manager_, TEXT("Spooler"), SERVICE_QUERY_STATUS);
    ASSERT_NE(service, nullptr);
    SERVICE_STATUS status{};
    DWORD needed = 0, count = 0;
    EXPECT_FALSE(ControlService(service, SERVICE_CONTROL_STOP, &status));
    EXPECT_EQ(GetLastError(), DWORD{ERROR_ACCESS_DENIED});
    EXPECT_FALSE(StartServiceW(service, 0, nullptr));
    EXPECT_EQ(GetLastError(), DWORD{ERROR_ACCESS_DENIED});
    EXPECT_FALSE(EnumDependentServicesW(service, SERVICE_ACTIVE, nullptr, 0, &needed, &count));
    EXPECT_EQ(GetLastError(), DWORD{ERROR_ACCESS_DENIED});

    BYTE small[sizeof(SERVICE_STATUS_PROCESS) - 1];
    EXPECT_FALSE(QueryServiceStatusEx(service, SC_STATUS_PROCESS_INFO, small, sizeof(small), &needed));
    EXPECT_EQ(GetLastError(), DWORD{ERROR_INSUFFICIENT_BUFFER});
    EXPECT_EQ(needed, 36u);
    EXPECT_EQ(state_of(service), DWORD{SERVICE_RUNNING});
    EXPECT_TRUE(CloseServiceHandle(service));
}

TEST_F(Services, StopAndStartAgain) {
    SC_HANDLE service = OpenServiceW(manager_, TEXT("Spooler"), SERVICE_ALL_ACCESS);
    ASSERT_NE(service, nullptr);
    DWORD needed = 99, count = 99;
    EXPECT_TRUE(EnumDependentServicesW(service, SERVICE_ACTIVE, nullptr, 0, &needed, &count))
        << "none at all";
    EXPECT_EQ(count, 0u);
    EXPECT_FALSE(StartServiceW(service, 0, nullptr));
    EXPECT_EQ(GetLastError(), DWORD{ERROR_SERVICE_ALREADY_RUNNING});

    SERVICE_STATUS status{};
    EXPECT_TRUE(ControlService(service, SERVICE_CONTROL_STOP, &status));
    EXPECT_TRUE(status.dwCurrentState == SERVICE_STOP_PENDING || status.dwCurrentState == SERVICE_STOPPED);
    wait_for(service, SERVICE_STOPPED);
    status.dwCurrentState = 99;
    EXPECT_FALSE(ControlService(service, SERVICE_CONTROL_STOP, &status));
    EXPECT_EQ(GetLastError(), DWORD{ERROR_SERVICE_NOT_ACTIVE});
    EXPECT_EQ(status.dwCurrentState, DWORD{SERVICE_STOPPED}) << "this refusal fills the record";

    EXPECT_TRUE(StartServiceW(service, 0, nullptr));
    wait_for(service, SERVICE_RUNNING);
    EXPECT_TRUE(CloseServiceHandle(service));
}

TEST_F(Services, AreClosedOnce) {
    will_misuse();
    SC_HANDLE service = OpenServiceW(manager_, TEXT("Spooler"), SERVICE_QUERY_STATUS);
    EXPECT_TRUE(CloseServiceHandle(service));
    EXPECT_FALSE(CloseServiceHandle(service));
    EXPECT_EQ(GetLastError(), DWORD{ERROR_INVALID_HANDLE});
}

} // namespace
