// Threads, mutexes and waits.
#include "harness/calls_fixture.h"

#include <windows.h>

#include <process.h>

namespace {

HANDLE mutex = nullptr;
int counter = 0; // guarded by the mutex
DWORD first_result = 0;
DWORD second_result = 0;

HANDLE start(unsigned(WINAPI* routine)(void*)) {
    return reinterpret_cast<HANDLE>(_beginthreadex(nullptr, 0, routine, nullptr, 0, nullptr));
}

void finish(HANDLE thread) {
    EXPECT_EQ(WaitForSingleObject(thread, INFINITE), WAIT_OBJECT_0);
    EXPECT_TRUE(CloseHandle(thread));
}

unsigned WINAPI count_up(void*) {
    for (int step = 0; step < 200; ++step) {
        WaitForSingleObject(mutex, INFINITE);
        ++counter;
        ReleaseMutex(mutex);
    }
    return 0;
}

unsigned WINAPI try_foreign_mutex(void*) {
    first_result = WaitForSingleObject(mutex, 0);
    SetLastError(0);
    second_result = ReleaseMutex(mutex) ? 0 : GetLastError();
    return 0;
}

unsigned WINAPI end_as_owner(void*) {
    first_result = WaitForSingleObject(mutex, INFINITE);
    return 0;
}

class Threads : public CallsTest {
protected:
    Threads() {
        mutex = CreateMutexW(nullptr, FALSE, nullptr);
        counter = 0;
    }
    ~Threads() override { EXPECT_TRUE(CloseHandle(mutex)); }
};

TEST_F(Threads, OneThreadAtATimeHoldsAMutex) {
    const HANDLE first = start(count_up);
    const HANDLE second = start(count_up);
    finish(first);
    finish(second);
    EXPECT_EQ(counter, 400);
}

TEST_F(Threads, OnlyTheOwnerReleasesAMutexAsOftenAsItTookIt) {
    EXPECT_EQ(WaitForSingleObject(mutex, INFINITE), WAIT_OBJECT_0);
    EXPECT_EQ(WaitForSingleObject(mutex, 0), WAIT_OBJECT_0);
    EXPECT_TRUE(ReleaseMutex(mutex));
    finish(start(try_foreign_mutex));
    EXPECT_EQ(first_result, WAIT_TIMEOUT) << "it is held once more";
    EXPECT_EQ(second_result, static_cast<DWORD>(ERROR_NOT_OWNER));
    EXPECT_TRUE(ReleaseMutex(mutex));
    SetLastError(0);
    EXPECT_FALSE(ReleaseMutex(mutex));
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_NOT_OWNER));
}

TEST_F(Threads, AMutexOfAnEndedThreadIsAbandonedOnce) {
    finish(start(end_as_owner));
    EXPECT_EQ(first_result, WAIT_OBJECT_0);
    EXPECT_EQ(WaitForSingleObject(mutex, INFINITE), WAIT_ABANDONED);
    EXPECT_EQ(WaitForSingleObject(mutex, INFINITE), WAIT_OBJECT_0);
    EXPECT_TRUE(ReleaseMutex(mutex));
    EXPECT_TRUE(ReleaseMutex(mutex));
}

TEST_F(Threads, AMutexCanBeMadeOwned) {
    const HANDLE owned = CreateMutexW(nullptr, TRUE, nullptr);
    EXPECT_TRUE(ReleaseMutex(owned));
    EXPECT_FALSE(ReleaseMutex(owned));
    EXPECT_TRUE(CloseHandle(owned));
    SetLastError(0);
    EXPECT_EQ(WaitForSingleObject(nullptr, 0), WAIT_FAILED);
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INVALID_HANDLE));
}

} // namespace
