// A folder of its own on drive C for tests that make files, and short ways to write and read them.
#pragma once

#include "harness/calls_fixture.h"

#include <windows.h>

#include <shellapi.h>

#include <string>

using Text = std::basic_string<WCHAR>;

class FolderTest : public CallsTest {
protected:
    FolderTest() { CreateDirectoryW(folder.c_str(), nullptr); }

    ~FolderTest() override {
        SHFILEOPSTRUCTW operation{};
        const Text list = folder + WCHAR(0);
        operation.wFunc = FO_DELETE;
        operation.pFrom = list.c_str();
        operation.fFlags = FOF_SILENT | FOF_NOCONFIRMATION | FOF_NOERRORUI;
        SHFileOperationW(&operation);
    }

    Text path(const WCHAR* name) const { return folder + TEXT("\\") + name; }

    void write(const WCHAR* name, const std::string& bytes) const {
        const HANDLE file = CreateFileW(path(name).c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS,
                                        FILE_ATTRIBUTE_NORMAL, nullptr);
        DWORD written = 0;
        WriteFile(file, bytes.data(), static_cast<DWORD>(bytes.size()), &written, nullptr);
        CloseHandle(file);
    }

    // "(absent)" when it can't be opened.
    std::string read(const WCHAR* name) const {
        const HANDLE file = CreateFileW(path(name).c_str(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE,
                                        nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
        if (file == INVALID_HANDLE_VALUE)
            return "(absent)";
        char bytes[256];
        DWORD got = 0;
        ReadFile(file, bytes, sizeof bytes, &got, nullptr);
        CloseHandle(file);
        return std::string(bytes, got);
    }

    const Text folder = TEXT("C:\\Windows\\Temp\\trk-calls");
};
