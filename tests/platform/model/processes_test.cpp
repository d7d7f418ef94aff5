#include "harness/test_session.h"

#include "calls/system/processes.h"

#include <gtest/gtest.h>

#include <windows.h>

namespace {

class Processes : public testing::Test {
protected:
    Processes() {
        test.machine.child_programs = {{u"child.exe", 25'000, 5}};
        TestSession::write(test.drive_c / "tools" / "child.exe", "program");
        TestSession::write(test.drive_c / "tools" / "child.exe.old", "program");
        TestSession::write(test.drive_c / "with blank" / "Child.exe", "program");
        TestSession::write(test.drive_c / "tools" / "other.exe", "program");
        session = &test.start();
    }

    BOOL create(std::u16string line) {
        STARTUPINFOW startup = {};
        startup.cb = sizeof startup;
        return CreateProcessW(nullptr, line.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &startup,
                              &child);
    }

    void close_child() const {
        CloseHandle(child.hProcess);
        CloseHandle(child.hThread);
    }

    TestSession test;
    platform::Session* session = nullptr;
    PROCESS_INFORMATION child = {};
};

TEST_F(Processes, TheProgramIsFoundInTheCommandLine) {
    const struct {
        std::u16string line;
        DWORD error;
    } cases[] = {{u"\"C:\\tools\\child.exe\"", 0},
                 {u"\"C:\\with blank\\child.exe\" /a \"b c\"", 0},
                 {u"C:\\with blank\\child.exe /a", 0},
                 {u"C:\\tools\\CHILD /a", 0},
                 {u"\"C:\\tools\\child.exe", 0},
                 {u"\"C:\\tools\\missing.exe\"", ERROR_FILE_NOT_FOUND},
                 {u"\"C:\\tools\\other.exe\"", ERROR_BAD_EXE_FORMAT},
                 {u"C:\\tools child.exe", ERROR_FILE_NOT_FOUND},
                 {u"", ERROR_FILE_NOT_FOUND}};
    std::vector<std::u16string> started;
    for (const auto& entry : cases) {
        SCOPED_TRACE(platform::to_utf8(entry.line));
        EXPECT_EQ(create(entry.line) != FALSE, entry.error == 0);
        if (entry.error != 0) {
            EXPECT_EQ(GetLastError(), entry.error);
        } else {
            started.push_back(entry.line);
            close_child();
        }
    }
    EXPECT_EQ(platform::started_commands(), started);
}

TEST_F(Processes, AChildRunsOnTheMachinesClock) {
    test.looks_at_leftovers = false;
    ASSERT_TRUE(create(u"C:\\tools\\child.exe"));
    DWORD code = 0;
    EXPECT_TRUE(GetExitCodeProcess(child.hProcess, &code));
    EXPECT_EQ(code, STILL_ACTIVE);
    const DWORD start = GetTickCount();
    EXPECT_EQ(WaitForSingleObject(child.hProcess, 10'000), WAIT_TIMEOUT);
    EXPECT_EQ(WaitForSingleObject(child.hProcess, 10'000), WAIT_TIMEOUT);
    EXPECT_EQ(WaitForSingleObject(child.hProcess, 10'000), WAIT_OBJECT_0);
    EXPECT_EQ(GetTickCount() - start, 25'000u);
    EXPECT_TRUE(GetExitCodeProcess(child.hProcess, &code));
    EXPECT_EQ(code, 5u);
    EXPECT_EQ(WaitForSingleObject(child.hProcess, INFINITE), WAIT_OBJECT_0);
    EXPECT_TRUE(GetExitCodeProcess(GetCurrentProcess(), &code));
    EXPECT_EQ(code, STILL_ACTIVE);
    close_child();
    EXPECT_FALSE(GetExitCodeProcess(child.hProcess, &code)) << "its handle is closed";
}

TEST_F(Processes, TheStartUpRecordTellsItsSize) {
    std::u16string line = u"C:\\tools\\child.exe";
    STARTUPINFOW startup = {};
    SetLastError(0);
    EXPECT_FALSE(
        CreateProcessW(nullptr, line.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &startup, &child));
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INVALID_PARAMETER));
    EXPECT_TRUE(platform::started_commands().empty());
}

} // namespace
