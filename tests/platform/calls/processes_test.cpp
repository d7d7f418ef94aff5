#include "harness/calls_fixture.h"

namespace {

class Processes : public CallsTest {
protected:
    // The error, or 0 when the child was started; it then has ended already.
    DWORD run(Text line, DWORD* exit_code = nullptr) {
        STARTUPINFOW startup = {};
        startup.cb = sizeof startup;
        PROCESS_INFORMATION child = {};
        if (!CreateProcessW(nullptr, line.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &startup,
                            &child))
            return GetLastError();
        EXPECT_EQ(WaitForSingleObject(child.hProcess, INFINITE), WAIT_OBJECT_0);
        DWORD code = 0;
        EXPECT_TRUE(GetExitCodeProcess(child.hProcess, &code));
        EXPECT_EQ(WaitForSingleObject(child.hProcess, 0), WAIT_OBJECT_0) << "it has ended for good";
        EXPECT_TRUE(CloseHandle(child.hThread));
        EXPECT_TRUE(CloseHandle(child.hProcess));
        if (exit_code != nullptr)
            *exit_code = code;
        return 0;
    }
};

TEST_F(Processes, AreStartedByTheirCommandLine) {
    const Text path = child_program();
    const Text without_extension = path.substr(0, path.size() - 4);
    const struct {
        const char* name;
        Text line;
        DWORD error;
    } cases[] = {
        {"quoted", TEXT("\"") + path + TEXT("\""), 0},
        {"with arguments", TEXT("\"") + path + TEXT("\" /a \"b c\""), 0},
        {"blanks without quotes", path + TEXT(" /a"), 0},
        {"without its extension", TEXT("\"") + without_extension + TEXT("\""), 0},
        {"missing", TEXT("\"") + path + TEXT("x\""), ERROR_FILE_NOT_FOUND},
        {"missing folder", TEXT("\"") + scratch_folder() + TEXT("\\gone\\child.exe\""), ERROR_FILE_NOT_FOUND},
    };
    for (const auto& one : cases) {
        DWORD code = 0;
        EXPECT_EQ(run(one.line, &code), one.error) << one.name;
        EXPECT_EQ(code, one.error == 0 ? child_exit_code : 0) << one.name;
    }
}

TEST_F(Processes, NeedAProgramsFile) {
    const Text path = scratch_folder() + TEXT("\\text.exe");
    const HANDLE file =
        CreateFileW(path.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
    DWORD written = 0;
    EXPECT_TRUE(WriteFile(file, "no program", 10, &written, nullptr));
    CloseHandle(file);
    EXPECT_EQ(run(TEXT("\"") + path + TEXT("\"")), DWORD{ERROR_BAD_EXE_FORMAT});
    EXPECT_TRUE(DeleteFileW(path.c_str()));
}

TEST_F(Processes, TheOwnOneIsStillActive) {
    DWORD code = 0;
    EXPECT_TRUE(GetExitCodeProcess(GetCurrentProcess(), &code));
    EXPECT_EQ(code, DWORD{STILL_ACTIVE});
}

} // namespace
