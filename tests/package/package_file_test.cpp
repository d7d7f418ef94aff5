#include "package/package_file.h"

#include "harness/test_session.h"

#include <gtest/gtest.h>

#include <algorithm>

TEST(PackageFile, FailedReadLeavesAnEmptyText) {
    TestSession test;
    TestSession::write(test.drive_c / "a.inf", std::string(5000, 'a'));
    test.machine.faults = {{"ReadFile", 1, false, 23, ""}};
    test.start();
    Chunk chunk;
    std::ranges::fill(chunk, 'x');
    const HANDLE file = open_package_file(TEXT("C:\\a.inf"));
    EXPECT_EQ(read_chunk(file, chunk), 0u);
    EXPECT_STREQ(chunk, "");
    EXPECT_EQ(read_chunk(file, chunk), 4095u);
    EXPECT_EQ(std::string(chunk), std::string(4095, 'a'));
    EXPECT_EQ(read_chunk(file, chunk), 905u);
    EXPECT_EQ(std::string(chunk), std::string(905, 'a'));
    CloseHandle(file);
}

TEST(PackageFile, OthersMayReadButNotWrite) {
    TestSession test;
    TestSession::write(test.drive_c / "a.inf", "a");
    test.start();
    const auto open = [](DWORD access, DWORD share) {
        return CreateFileW(TEXT("C:\\a.inf"), access, share, nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL,
                           nullptr);
    };
    const HANDLE reader = open(GENERIC_READ, FILE_SHARE_READ);
    const HANDLE file = open_package_file(TEXT("C:\\a.inf"));
    EXPECT_NE(file, INVALID_HANDLE_VALUE);
    EXPECT_EQ(open(GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE), INVALID_HANDLE_VALUE);
    CloseHandle(reader);
    CloseHandle(file);
}

TEST(PackageFile, PathsAreWholeOrRefused) {
    const std::u16string name(100, u'n');
    const struct {
        std::size_t folder_length;
        std::size_t capacity;
        bool opened;
    } table[] = {
        {20, 122, true}, {20, 121, false}, {158, 1000, true}, {159, 1000, false}, {240, 1000, false}};
    for (const auto& row : table) {
        TestSession test;
        test.machine.current_folder = u"D:\\" + std::u16string(row.folder_length - 3, u'm');
        TestSession::write(test.medium / std::string(100, 'n'), "");
        test.start();
        const HANDLE file = open_below_current_folder(nullptr, name.c_str(), row.capacity);
        EXPECT_EQ(file != INVALID_HANDLE_VALUE, row.opened) << row.folder_length;
        if (file != INVALID_HANDLE_VALUE)
            CloseHandle(file);
    }
}
