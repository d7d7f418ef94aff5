// trk_contract DEVIATIONS [OPTION OF GOOGLETEST]...: runs the tests of the platform's calls on the system
// that it is started on. DEVIATIONS is the Markdown file whose table names where that system is known to
// deviate from the documented platform. 0 when all else is as the tests have it.
#include "judge.h"

#include "harness/calls_fixture.h"

#include <windows.h>

#include <cstdio>
#include <cwchar>

namespace {

bool is_child() {
    wchar_t path[MAX_PATH] = {};
    GetModuleFileNameW(nullptr, path, MAX_PATH);
    const wchar_t* name = std::wcsrchr(path, L'\\');
    return name != nullptr && std::wcscmp(name + 1, child_name) == 0;
}

// On the documented platform the print spooler runs from the start. 0, or the error.
DWORD start_spooler() {
    const SC_HANDLE manager = OpenSCManagerW(nullptr, nullptr, SC_MANAGER_CONNECT);
    const SC_HANDLE service = OpenServiceW(manager, L"Spooler", SERVICE_START);
    const DWORD error = StartServiceW(service, 0, nullptr) ? 0 : GetLastError();
    CloseServiceHandle(service);
    CloseServiceHandle(manager);
    return error == ERROR_SERVICE_ALREADY_RUNNING ? 0 : error;
}

} // namespace

int main(int count, char** arguments) {
    if (is_child())
        return child_exit_code;
    testing::InitGoogleTest(&count, arguments);
    if (count != 2) {
        std::fprintf(stderr, "usage: trk_contract DEVIATIONS [OPTION OF GOOGLETEST]...\n");
        return 2;
    }
    if (const DWORD error = start_spooler(); error != 0) {
        std::fprintf(stderr, "trk_contract: the spooler's service doesn't start: error %lu\n", error);
        return 2;
    }
    testing::TestEventListeners& listeners = testing::UnitTest::GetInstance()->listeners();
    delete listeners.Release(listeners.default_result_printer());
    auto* judge = new Judge(read_deviations(arguments[1]));
    listeners.Append(judge); // which owns it from now on
    const int broken = RUN_ALL_TESTS();
    static_cast<void>(broken); // the judge knows better
    return judge->give_verdict() ? 0 : 1;
}
