#include "harness/calls_fixture.h"

#include <cstring>

namespace {

// Every system has the machine-wide variables here.
constexpr const WCHAR* environment_key =
    TEXT("System\\CurrentControlSet\\Control\\Session Manager\\Environment");

class RegistryCalls : public CallsTest {
protected:
    RegistryCalls() { EXPECT_EQ(RegOpenKeyExW(HKEY_LOCAL_MACHINE, environment_key, 0, KEY_READ, &key_), 0); }
    ~RegistryCalls() override { EXPECT_EQ(RegCloseKey(key_), 0); }
    HKEY key_ = nullptr;
};

} // namespace

TEST_F(RegistryCalls, AKeyIsFoundWithoutCaseAndBelowAnother) {
    const struct {
        const WCHAR* path;
        LSTATUS expected;
    } cases[] = {
        {TEXT("SYSTEM\\currentcontrolset\\CONTROL"), ERROR_SUCCESS},
        {TEXT("SYSTEM\\CurrentControlSet\\Contro"), ERROR_FILE_NOT_FOUND},
        {TEXT("SYSTEM\\No such key"), ERROR_FILE_NOT_FOUND},
    };
    for (const auto& test : cases) {
        HKEY key = nullptr;
        ASSERT_EQ(RegOpenKeyExW(HKEY_LOCAL_MACHINE, test.path, 0, KEY_READ, &key), test.expected);
        if (test.expected != ERROR_SUCCESS)
            continue;
        HKEY inner = nullptr;
        EXPECT_EQ(RegOpenKeyExW(key, TEXT("session manager\\ENVIRONMENT"), 0, KEY_READ, &inner), 0);
        DWORD size = 0;
        EXPECT_EQ(RegQueryValueExW(inner, TEXT("temp"), nullptr, nullptr, nullptr, &size), 0);
        EXPECT_EQ(RegCloseKey(inner), 0);
        EXPECT_EQ(RegCloseKey(key), 0);
    }
}

TEST_F(RegistryCalls, AValueComesWithTypeAndSize) {
    DWORD type = 0, size = 0;
    ASSERT_EQ(RegQueryValueExW(key_, TEXT("TEMP"), nullptr, &type, nullptr, &size), 0);
    EXPECT_EQ(type, DWORD{REG_EXPAND_SZ});
    const DWORD needed = size;
    BYTE data[512];
    std::memset(data, '*', sizeof data);
    size = sizeof data;
    ASSERT_EQ(RegQueryValueExW(key_, TEXT("TEMP"), nullptr, &type, data, &size), 0);
    EXPECT_EQ(size, needed);
    EXPECT_EQ(data[needed], '*');
    Text text(needed / sizeof(WCHAR), 0);
    std::memcpy(text.data(), data, needed);
    EXPECT_EQ(text[0], '%');

    WCHAR expanded[256];
    const DWORD length = ExpandEnvironmentStringsW(text.c_str(), expanded, 256);
    EXPECT_GT(length, 3u);
    EXPECT_EQ(expanded[1], ':');
}

TEST_F(RegistryCalls, RefusalsSetTheSize) {
    BYTE data[4];
    DWORD size = sizeof data;
    EXPECT_EQ(RegQueryValueExW(key_, TEXT("TEMP"), nullptr, nullptr, data, &size), ERROR_MORE_DATA);
    EXPECT_GT(size, sizeof data);
    EXPECT_EQ(RegQueryValueExW(key_, TEXT("TEMP"), nullptr, nullptr, data, nullptr), ERROR_INVALID_PARAMETER);
    size = sizeof data;
    EXPECT_EQ(RegQueryValueExW(key_, TEXT("No such value"), nullptr, nullptr, data, &size),
              ERROR_FILE_NOT_FOUND);
}

TEST_F(RegistryCalls, AClosedKeyIsNoKey) {
    will_misuse();
    HKEY key = nullptr;
    ASSERT_EQ(RegOpenKeyExW(HKEY_LOCAL_MACHINE, environment_key, 0, KEY_READ, &key), 0);
    ASSERT_EQ(RegCloseKey(key), 0);
    EXPECT_EQ(RegCloseKey(key), ERROR_INVALID_HANDLE);
    EXPECT_EQ(RegQueryValueExW(key, TEXT("TEMP"), nullptr, nullptr, nullptr, nullptr), ERROR_INVALID_HANDLE);
}
