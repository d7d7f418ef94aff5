// What a test of the platform's calls stands on: a machine to call. Here it is a session of the layer, which
// the tests don't see, so that the same sources can be judged by another implementation of the platform.
#pragma once

#include <windows.h>

#include <gtest/gtest.h>

#include <memory>
#include <string>

using Text = std::basic_string<WCHAR>;

class TestSession;

inline constexpr DWORD child_exit_code = 5;

// Each test has a fresh machine. At its end nothing may be open, allocated or misused that it didn't
// announce.
class CallsTest : public testing::Test {
protected:
    CallsTest();
    ~CallsTest() override;

    // The test uses something in a way that the platform forbids, to see it refused.
    void will_misuse() { misuse_expected_ = true; }
    // An existing, empty folder on drive C, without a backslash at its end.
    static Text scratch_folder();
    // An existing program that ends at once with `child_exit_code`; there are blanks in its path.
    Text child_program() const;

private:
    std::unique_ptr<TestSession> session_;
    bool misuse_expected_ = false;
};
