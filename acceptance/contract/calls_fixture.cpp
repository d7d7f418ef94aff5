// The machine that the tests of the calls stand on here is the system that runs them.
#include "harness/calls_fixture.h"

#include "judge.h"

class TestSession {};

CallsTest::CallsTest() {
    CreateDirectoryW(scratch_folder().c_str(), nullptr);
    SetLastError(0);
}

CallsTest::~CallsTest() {
    DeleteFileW((scratch_folder() + L"\\" + child_name).c_str());
    RemoveDirectoryW(scratch_folder().c_str());
}

Text CallsTest::scratch_folder() {
    return L"C:\\Scratch";
}

// This very program; by its copy's name it knows that it is to be the child.
Text CallsTest::child_program() const {
    const Text path = scratch_folder() + L"\\" + child_name;
    WCHAR own[MAX_PATH] = {};
    GetModuleFileNameW(nullptr, own, MAX_PATH);
    EXPECT_TRUE(CopyFileW(own, path.c_str(), FALSE));
    return path;
}
