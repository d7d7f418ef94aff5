// Messages between threads and their order in the queue.
#include "harness/calls_fixture.h"

#include <windows.h>

#include <process.h>

#include <vector>

namespace {

constexpr UINT sent_message = WM_USER + 5;
constexpr UINT posted_message = WM_USER + 6;

HWND receiver = nullptr;
std::vector<UINT> handled; // on the main thread
DWORD owner_thread = 0;
DWORD handling_thread = 0;
LRESULT answer = 0;  // what the worker got
WCHAR text_seen[16]; // by the worker

INT_PTR CALLBACK answering_procedure(HWND window, UINT message, WPARAM wparam, LPARAM lparam) {
    if (message < WM_USER)
        return FALSE;
    handled.push_back(message);
    handling_thread = GetCurrentThreadId();
    SetWindowLongPtrW(window, DWLP_MSGRESULT, static_cast<LONG_PTR>(wparam) + lparam);
    return TRUE;
}

void send_then_post(void*) {
    answer = SendMessageW(receiver, sent_message, 20, 3);
    PostMessageW(receiver, posted_message, 0, 0);
}

void change_texts(void*) {
    const HWND edit = GetDlgItem(receiver, 1000);
    SetWindowTextW(edit, TEXT("10.0.0.7"));
    answer = GetWindowTextW(edit, text_seen, 16);
    answer += SendDlgItemMessageW(receiver, 1000, WM_GETTEXTLENGTH, 0, 0);
    PostMessageW(receiver, posted_message, 0, 0);
}

class Messages : public CallsTest {
protected:
    Messages() {
        handled.clear();
        answer = 0;
        owner_thread = GetCurrentThreadId();
        receiver = CreateDialogParamW(GetModuleHandleW(nullptr), MAKEINTRESOURCEW(104), nullptr,
                                      answering_procedure, 0);
    }
    ~Messages() override { DestroyWindow(receiver); }

    // What one GetMessageW gives while the worker runs. Posting is the worker's last act.
    static MSG message_beside(void (*worker)(void*)) {
        MSG message = {};
        EXPECT_NE(_beginthread(worker, 0, nullptr), static_cast<std::uintptr_t>(-1));
        EXPECT_GT(GetMessageW(&message, nullptr, 0, 0), 0);
        return message;
    }
};

TEST_F(Messages, ASentMessageIsServedAndDoesNotReturn) {
    const MSG message = message_beside(send_then_post);
    EXPECT_EQ(message.message, posted_message);
    EXPECT_EQ(message.hwnd, receiver);
    EXPECT_EQ(handled, std::vector<UINT>{sent_message}) << "the posted one waits for its dispatch";
    EXPECT_EQ(handling_thread, owner_thread);
    EXPECT_EQ(answer, 23);
}

TEST_F(Messages, AnotherThreadReadsAndWritesTextsThroughTheOwner) {
    const MSG message = message_beside(change_texts);
    EXPECT_EQ(message.message, posted_message);
    EXPECT_EQ(lstrcmpW(text_seen, TEXT("10.0.0.7")), 0);
    EXPECT_EQ(answer, 16);
}

TEST_F(Messages, PostedMessagesKeepTheirOrderAndQuitComesLast) {
    PostQuitMessage(7);
    PostMessageW(receiver, posted_message, 1, 0);
    PostMessageW(nullptr, posted_message, 2, 0);
    MSG message = {};
    for (const WPARAM expected : {1u, 2u}) {
        ASSERT_GT(GetMessageW(&message, nullptr, 0, 0), 0);
        EXPECT_EQ(message.wParam, expected);
    }
    EXPECT_EQ(DispatchMessageW(&message), 0) << "a thread's message goes to no window";
    EXPECT_TRUE(handled.empty());
    EXPECT_EQ(GetMessageW(&message, nullptr, 0, 0), 0);
    EXPECT_EQ(message.message, static_cast<UINT>(WM_QUIT));
    EXPECT_EQ(message.wParam, 7u);
    EXPECT_FALSE(PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE));
}

TEST_F(Messages, PeekingLeavesAMessageUnlessItIsTakenOut) {
    PostMessageW(receiver, posted_message, 0, 0);
    MSG message = {};
    EXPECT_TRUE(PeekMessageW(&message, nullptr, 0, 0, PM_NOREMOVE));
    EXPECT_TRUE(PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE));
    EXPECT_EQ(message.message, posted_message);
    EXPECT_FALSE(PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE));
}

TEST_F(Messages, AWindowThatIsGoneTakesNoMessages) {
    const HWND gone =
        CreateDialogParamW(GetModuleHandleW(nullptr), MAKEINTRESOURCEW(104), nullptr, answering_procedure, 0);
    PostMessageW(gone, posted_message, 0, 0);
    DestroyWindow(gone);
    MSG message = {};
    EXPECT_FALSE(PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) << "its messages went with it";
    SetLastError(0);
    EXPECT_FALSE(PostMessageW(gone, posted_message, 0, 0));
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INVALID_WINDOW_HANDLE));
    SetLastError(0);
    EXPECT_EQ(SendMessageW(gone, sent_message, 1, 1), 0);
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INVALID_WINDOW_HANDLE));
}

} // namespace
