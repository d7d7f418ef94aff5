// Runs with several threads: faults, ends and stops.
#include "harness/test_session.h"

#include "calls/windows/user_input.h"

#include <gtest/gtest.h>

#include <windows.h>

#include <process.h>

#include <atomic>
#include <cerrno>
#include <thread>

namespace {

HWND receiver = nullptr;
HANDLE mutex = nullptr;
std::atomic<int> reached = 0;
std::atomic<LRESULT> answer = -1;

INT_PTR CALLBACK answering_procedure(HWND window, UINT message, WPARAM, LPARAM) {
    if (message != WM_USER + 1)
        return FALSE;
    SetWindowLongPtrW(window, DWLP_MSGRESULT, 7);
    return TRUE;
}

void send_message_to_main(void*) {
    answer = SendMessageW(receiver, WM_USER + 1, 0, 0);
    ++reached;
}

void take_mutex(void*) {
    WaitForSingleObject(mutex, INFINITE);
    ++reached;
}

void take_and_send(void*) {
    WaitForSingleObject(mutex, INFINITE);
    SendMessageW(receiver, WM_USER + 1, 0, 0);
    ++reached;
}

void ask_for_the_unknown(void*) {
    GetSystemMetrics(4711);
    ++reached;
}

class RunThreads : public testing::Test {
protected:
    RunThreads() {
        reached = 0;
        answer = -1;
        platform::SessionOptions options;
        options.drive_c = test.drive_c;
        options.resources = TRK_RESOURCE_FILE;
        session.emplace(test.machine, options, test.user);
        receiver = CreateDialogParamW(nullptr, MAKEINTRESOURCEW(104), nullptr, answering_procedure, 0);
        mutex = CreateMutexW(nullptr, FALSE, nullptr);
    }

    static bool start(void (*routine)(void*)) {
        return _beginthread(routine, 0, nullptr) != static_cast<std::uintptr_t>(-1);
    }

    TestSession test;
    std::optional<platform::Session> session;
};

TEST_F(RunThreads, AThreadThatCannotStartSaysSo) {
    test.machine.faults.push_back({"_beginthread", 1, false, {}, ""});
    errno = 0;
    EXPECT_FALSE(start(take_mutex));
    EXPECT_EQ(errno, EAGAIN);
    EXPECT_TRUE(start(take_mutex));
    session->join_threads();
    EXPECT_EQ(reached, 1);
}

TEST_F(RunThreads, GetMessageFailsOnDemand) {
    test.machine.faults.push_back({"GetMessageW", 1, false, {}, ""});
    MSG message;
    EXPECT_EQ(GetMessageW(&message, nullptr, 0, 0), -1);
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INVALID_WINDOW_HANDLE));
}

TEST_F(RunThreads, TheEndOfTheRunReleasesWaitingSenders) {
    EXPECT_TRUE(start(send_message_to_main));
    session->join_threads();
    EXPECT_EQ(reached, 1);
    EXPECT_EQ(answer, 0);
    WaitForSingleObject(mutex, INFINITE);
    EXPECT_TRUE(start(take_mutex));
    session->join_threads();
    EXPECT_EQ(reached, 2) << "what the main thread held is abandoned";
}

TEST_F(RunThreads, ABoxOnAnotherThreadIsShownAtOnce) {
    EXPECT_TRUE(start([](void*) { MessageBoxW(nullptr, TEXT("from the worker"), nullptr, MB_OK); }));
    session->join_threads();
    ASSERT_EQ(test.user.boxes.size(), 1u);
    EXPECT_EQ(test.user.boxes[0].caption, "Error");
}

TEST_F(RunThreads, ThreadsThatWaitForEachOtherStopTheRun) {
    WaitForSingleObject(mutex, INFINITE);
    EXPECT_TRUE(start(take_mutex));
    MSG message;
    EXPECT_THROW(GetMessageW(&message, nullptr, 0, 0), platform::RunStopped);
    EXPECT_EQ(session->gate.stop_reason(), "every thread of the run waits for another");
    session->join_threads();
    EXPECT_EQ(reached, 0);
}

TEST_F(RunThreads, ASenderThatHoldsWhatTheOwnerWantsStopsTheRun) {
    session->gate.on_call = [&](const platform::JournalEntry& entry) {
        // The worker has the mutex for certain once it sends; only then does the main thread ask for it.
        if (entry.call == "SendMessageW")
            ++reached;
    };
    EXPECT_TRUE(start(take_and_send));
    while (reached == 0)
        std::this_thread::yield();
    EXPECT_THROW(WaitForSingleObject(mutex, INFINITE), platform::RunStopped);
}

TEST_F(RunThreads, ARefusalOnAnotherThreadStopsTheMainThread) {
    ShowWindow(receiver, SW_SHOW);
    EXPECT_TRUE(start(ask_for_the_unknown));
    MSG message;
    EXPECT_THROW(
        {
            while (GetMessageW(&message, nullptr, 0, 0) > 0)
                DispatchMessageW(&message);
        },
        platform::RunStopped);
    EXPECT_NE(session->gate.stop_reason().find("GetSystemMetrics(4711)"), std::string::npos);
    EXPECT_EQ(reached, 0);
}

} // namespace
