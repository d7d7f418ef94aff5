#include "harness/calls_fixture.h"

#include <cstring>

namespace {

using SystemCalls = CallsTest;

Text windows_folder() {
    WCHAR path[MAX_PATH];
    const UINT length = GetWindowsDirectoryW(path, MAX_PATH);
    return Text(path, length);
}

} // namespace

TEST_F(SystemCalls, TheVersionRecordsSizeIsChecked) {
    OSVERSIONINFOEXW version{};
    version.dwOSVersionInfoSize = sizeof version;
    ASSERT_TRUE(GetVersionExW(reinterpret_cast<LPOSVERSIONINFOW>(&version)));
    EXPECT_GE(version.dwMajorVersion, 6u);
    EXPECT_EQ(version.dwPlatformId, DWORD{VER_PLATFORM_WIN32_NT});
    EXPECT_NE(version.wProductType, 0);
    version.dwOSVersionInfoSize = sizeof version - 4;
    EXPECT_FALSE(GetVersionExW(reinterpret_cast<LPOSVERSIONINFOW>(&version)));
    EXPECT_EQ(GetLastError(), DWORD{ERROR_INSUFFICIENT_BUFFER});
}

TEST_F(SystemCalls, VariablesTellTheSizeTheyNeed) {
    const Text folder = windows_folder();
    const auto length = static_cast<DWORD>(folder.size());
    WCHAR value[MAX_PATH];
    EXPECT_EQ(GetEnvironmentVariableW(TEXT("SYSTEMROOT"), value, MAX_PATH), length);
    EXPECT_EQ(Text(value).size(), length);
    EXPECT_EQ(GetEnvironmentVariableW(TEXT("SystemRoot"), value, length), length + 1);
    EXPECT_EQ(GetEnvironmentVariableW(TEXT("SystemRoot"), nullptr, 0), length + 1);
    EXPECT_EQ(GetWindowsDirectoryW(value, length), length + 1);
    EXPECT_EQ(GetSystemDirectoryW(value, 2), length + 10);
    SetLastError(0);
    EXPECT_EQ(GetEnvironmentVariableW(TEXT("NO_SUCH_VARIABLE"), value, MAX_PATH), 0u);
    EXPECT_EQ(GetLastError(), DWORD{ERROR_ENVVAR_NOT_FOUND});
}

TEST_F(SystemCalls, ReferencesToVariablesAreExpanded) {
    WCHAR root_text[MAX_PATH];
    const DWORD root_length = GetEnvironmentVariableW(TEXT("SystemRoot"), root_text, MAX_PATH);
    const Text root(root_text, root_length);
    const struct {
        const WCHAR* source;
        Text expected;
    } cases[] = {
        {TEXT("%SystemRoot%\\TEMP"), root + TEXT("\\TEMP")},
        {TEXT("a%systemroot%b%SYSTEMROOT%"), TEXT("a") + root + TEXT("b") + root},
        {TEXT("%NO_SUCH_VARIABLE%\\x"), TEXT("%NO_SUCH_VARIABLE%\\x")},
        {TEXT("100%"), TEXT("100%")},
        {TEXT(""), TEXT("")},
    };
    for (const auto& test : cases) {
        WCHAR target[600];
        const auto needed = static_cast<DWORD>(test.expected.size() + 1);
        EXPECT_EQ(ExpandEnvironmentStringsW(test.source, target, 600), needed);
        EXPECT_TRUE(Text(target) == test.expected);
        EXPECT_EQ(ExpandEnvironmentStringsW(test.source, nullptr, 0), needed);
        EXPECT_EQ(ExpandEnvironmentStringsW(test.source, target, needed - 1), needed);
    }
}

TEST_F(SystemCalls, TheProgramsPathStandsInTheCommandLine) {
    WCHAR path[512];
    const DWORD length = GetModuleFileNameW(nullptr, path, 512);
    ASSERT_GT(length, 4u);
    const Text whole(path, length);
    EXPECT_NE(Text(GetCommandLineW()).find(whole.substr(whole.rfind('\\') + 1)), Text::npos);
    WCHAR part[5] = {};
    EXPECT_EQ(GetModuleFileNameW(nullptr, part, 4), 4u);
    EXPECT_EQ(GetLastError(), DWORD{ERROR_INSUFFICIENT_BUFFER});
    EXPECT_TRUE(Text(part) == whole.substr(0, 3));
}

TEST_F(SystemCalls, FunctionsAreLookedUpInModulesOfAnySpelling) {
    const HMODULE kernel = GetModuleHandleW(TEXT("kernel32"));
    ASSERT_NE(kernel, nullptr);
    EXPECT_EQ(GetModuleHandleW(TEXT("KERNEL32.DLL")), kernel);
    using IsWow64 = BOOL(WINAPI*)(HANDLE, BOOL*);
    const FARPROC found = GetProcAddress(kernel, "IsWow64Process");
    ASSERT_NE(found, nullptr);
    BOOL wow64 = 7;
    EXPECT_TRUE(reinterpret_cast<IsWow64>(reinterpret_cast<void (*)()>(found))(GetCurrentProcess(), &wow64));
    EXPECT_TRUE(wow64 == TRUE || wow64 == FALSE);

    EXPECT_EQ(GetProcAddress(kernel, "iswow64process"), nullptr);
    EXPECT_EQ(GetLastError(), DWORD{ERROR_PROC_NOT_FOUND});
    EXPECT_EQ(GetModuleHandleW(TEXT("nosuchlibrary")), nullptr);
    EXPECT_EQ(GetLastError(), DWORD{ERROR_MOD_NOT_FOUND});
}

TEST_F(SystemCalls, SystemTextsOfCodes) {
    constexpr DWORD flags = FORMAT_MESSAGE_ALLOCATE_BUFFER | FORMAT_MESSAGE_FROM_SYSTEM;
    const struct {
        DWORD code;
        const WCHAR* expected; // null: there is no text
        DWORD error;
    } cases[] = {
        {ERROR_ACCESS_DENIED, TEXT("Access is denied.\r\n"), 0},
        {0x80070005u, TEXT("Access is denied.\r\n"), 0},
        {ERROR_UNKNOWN_PRINTER_DRIVER, TEXT("The printer driver is unknown.\r\n"), 0},
        {0x20001234u, nullptr, ERROR_MR_MID_NOT_FOUND},
    };
    for (const auto& test : cases) {
        WCHAR* text = nullptr;
        const DWORD length =
            FormatMessageW(flags, nullptr, test.code, 0x400, reinterpret_cast<LPWSTR>(&text), 0, nullptr);
        if (test.expected == nullptr) {
            EXPECT_EQ(length, 0u);
            EXPECT_EQ(GetLastError(), test.error);
            EXPECT_EQ(text, nullptr);
            continue;
        }
        ASSERT_NE(text, nullptr) << test.code;
        EXPECT_EQ(Text(text, length), test.expected) << test.code;
        EXPECT_EQ(LocalFree(text), nullptr);
    }
    WCHAR small[8];
    EXPECT_EQ(FormatMessageW(FORMAT_MESSAGE_FROM_SYSTEM, nullptr, 5, 0, small, 8, nullptr), 0u);
    EXPECT_EQ(GetLastError(), DWORD{ERROR_INSUFFICIENT_BUFFER});
}

TEST_F(SystemCalls, LocaleTextChecksTheSize) {
    WCHAR text[10];
    const int size = GetLocaleInfoW(LOCALE_SYSTEM_DEFAULT, LOCALE_SABBREVLANGNAME, text, 10);
    ASSERT_EQ(size, 4);
    EXPECT_EQ(Text(text).size(), 3u);
    EXPECT_EQ(GetLocaleInfoW(LOCALE_SYSTEM_DEFAULT, LOCALE_SABBREVLANGNAME, nullptr, 0), 4);
    EXPECT_EQ(GetLocaleInfoW(LOCALE_SYSTEM_DEFAULT, LOCALE_SABBREVLANGNAME, text, 3), 0);
    EXPECT_EQ(GetLastError(), DWORD{ERROR_INSUFFICIENT_BUFFER});
}

TEST_F(SystemCalls, AllocatedMemoryIsZeroWhenAskedForIt) {
    auto* block = static_cast<BYTE*>(HeapAlloc(GetProcessHeap(), HEAP_ZERO_MEMORY, 100));
    ASSERT_NE(block, nullptr);
    const BYTE zeros[100] = {};
    EXPECT_EQ(std::memcmp(block, zeros, sizeof zeros), 0);
    EXPECT_TRUE(HeapFree(GetProcessHeap(), 0, block));
    EXPECT_TRUE(HeapFree(GetProcessHeap(), 0, nullptr));
    EXPECT_EQ(LocalFree(nullptr), nullptr);
}

TEST_F(SystemCalls, ASecondCloseFails) {
    will_misuse();
    const HANDLE mutex = CreateMutexW(nullptr, FALSE, nullptr);
    ASSERT_NE(mutex, nullptr);
    EXPECT_TRUE(CloseHandle(mutex));
    EXPECT_FALSE(CloseHandle(mutex));
    EXPECT_EQ(GetLastError(), DWORD{ERROR_INVALID_HANDLE});
}

// The count may lag behind on a busy machine; in the end it tells of each sleep.
TEST_F(SystemCalls, SleepMovesTheTickCount) {
    const struct {
        DWORD sleep, passing;
        int most; // sleeps until the count has moved so far
    } cases[] = {{50, 50, 200}, {0, 20, 50'000'000}};
    for (const auto& test : cases) {
        const DWORD before = GetTickCount();
        for (int left = test.most; left > 0 && GetTickCount() - before < test.passing; --left)
            Sleep(test.sleep);
        EXPECT_GE(GetTickCount() - before, test.passing) << test.sleep;
    }
}
