// What the machine's data decides in the base calls.
#include "calls/system/locale_state.h"
#include "harness/test_session.h"

#include <gtest/gtest.h>

#include <windows.h>

namespace {

class BaseCalls : public testing::Test {
protected:
    TestSession test;
};

} // namespace

TEST_F(BaseCalls, TheMachinesCodePageIsTheAnsiOne) {
    test.machine.code_page = 932;
    test.start();
    WCHAR text[4] = {};
    EXPECT_EQ(MultiByteToWideChar(CP_ACP, MB_PRECOMPOSED, "\x93\xFA", 2, text, 4), 1);
    EXPECT_EQ(text[0], u'日');
    EXPECT_TRUE(IsDBCSLeadByte(0x93));
    EXPECT_EQ(GetACP(), 932u);
}

TEST_F(BaseCalls, FunctionsThatTheMachineLacksAreNotFound) {
    test.machine.missing_functions = {"IsWow64Process"};
    test.start();
    const HMODULE kernel = GetModuleHandleW(u"kernel32");
    EXPECT_EQ(GetProcAddress(kernel, "IsWow64Process"), nullptr);
    EXPECT_NE(GetProcAddress(kernel, "SetThreadUILanguage"), nullptr);
}

TEST_F(BaseCalls, TheThreadsLanguageComesFromTheMachineUntilItIsSet) {
    test.machine.ui_language = 1031;
    test.start();
    EXPECT_EQ(platform::current_ui_language(), 1031);
    const FARPROC found = GetProcAddress(GetModuleHandleW(u"Kernel32.dll"), "SetThreadUILanguage");
    const auto set_language = reinterpret_cast<LANGID (*)(LANGID)>(reinterpret_cast<void (*)()>(found));
    EXPECT_EQ(set_language(1041), 1041);
    EXPECT_EQ(platform::current_ui_language(), 1041);
    platform::set_current_thread_number(1);
    EXPECT_EQ(platform::current_ui_language(), 1031) << "another thread";
    platform::set_current_thread_number(0);
}

TEST_F(BaseCalls, FaultsComeOutAsTheCallReportsThem) {
    test.machine.faults = {{"RegOpenKeyExW", 1, false, 1450u, "session manager"},
                           {"HeapAlloc", 1, false, {}, ""}};
    test.start();
    HKEY key = nullptr;
    EXPECT_EQ(RegOpenKeyExW(HKEY_LOCAL_MACHINE, u"SYSTEM\\CurrentControlSet\\Control\\Session Manager", 0,
                            KEY_READ, &key),
              1450);
    EXPECT_EQ(HeapAlloc(GetProcessHeap(), 0, 8), nullptr);
    EXPECT_EQ(GetLastError(), DWORD{ERROR_NOT_ENOUGH_MEMORY});
}

TEST_F(BaseCalls, WhatIsNotModelledStopsTheRun) {
    const platform::Session& session = test.start();
    HKEY key = nullptr;
    EXPECT_THROW(RegOpenKeyExW(HKEY_CURRENT_USER, u"Software", 0, KEY_READ, &key), platform::RunStopped);
    EXPECT_NE(session.gate.stop_reason().find("RegOpenKeyExW(Software)"), std::string::npos);
    EXPECT_THROW(GetTickCount(), platform::RunStopped);
}
