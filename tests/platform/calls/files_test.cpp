#include "harness/folder_fixture.h"

namespace {

class Files : public FolderTest {};

struct OpenCase {
    const char* name;
    Text path;
    DWORD access;
    DWORD disposition;
    DWORD flags;
    DWORD error;
};

TEST_F(Files, OpenFindsWhatThePlatformFinds) {
    write(TEXT("Here.txt"), "here");
    CreateDirectoryW(path(TEXT("sub")).c_str(), nullptr);
    constexpr DWORD read = GENERIC_READ, normal = FILE_ATTRIBUTE_NORMAL;
    // Just within and just beyond the platform's limit for a path, its terminator counted.
    const Text fits = path(Text(MAX_PATH - 1 - folder.size() - 1, TEXT('n')).c_str());
    const OpenCase cases[] = {
        {"there", path(TEXT("Here.txt")), read, OPEN_EXISTING, normal, 0},
        {"other case", path(TEXT("hERE.TXT")), read, OPEN_EXISTING, normal, 0},
        {"slashes and doubled separators", TEXT("C:/Windows//Temp\\\\trk-calls/Here.txt"), read,
         OPEN_EXISTING, normal, 0},
        {"points in the path", path(TEXT("sub\\..\\.\\Here.txt")), read, OPEN_EXISTING, normal, 0},
        {"above the root", TEXT("C:\\..\\..\\Windows\\Temp\\trk-calls\\Here.txt"), read, OPEN_EXISTING,
         normal, 0},
        {"points and blanks at the end", path(TEXT("Here.txt. .")), read, OPEN_EXISTING, normal, 0},
        {"unparsed prefix", TEXT("\\\\?\\") + path(TEXT("Here.txt")), read, OPEN_EXISTING, normal, 0},
        {"slash behind the prefix", TEXT("\\\\?\\") + folder + TEXT("/Here.txt"), read, OPEN_EXISTING, normal,
         ERROR_INVALID_NAME},
        {"missing file", path(TEXT("gone.txt")), read, OPEN_EXISTING, normal, ERROR_FILE_NOT_FOUND},
        {"missing folder", path(TEXT("gone\\Here.txt")), read, OPEN_EXISTING, normal, ERROR_PATH_NOT_FOUND},
        {"file in place of a folder", path(TEXT("Here.txt\\x")), read, OPEN_EXISTING, normal,
         ERROR_PATH_NOT_FOUND},
        {"unknown drive", TEXT("Q:\\Here.txt"), read, OPEN_EXISTING, normal, ERROR_PATH_NOT_FOUND},
        {"empty path", TEXT(""), read, OPEN_EXISTING, normal, ERROR_PATH_NOT_FOUND},
        {"bar", path(TEXT("a|b")), GENERIC_WRITE, CREATE_ALWAYS, normal, ERROR_INVALID_NAME},
        {"wildcard", path(TEXT("*.txt")), read, OPEN_EXISTING, normal, ERROR_INVALID_NAME},
        {"longest path", fits, read, OPEN_EXISTING, normal, ERROR_FILE_NOT_FOUND},
        {"path too long", fits + TEXT("n"), read, OPEN_EXISTING, normal, ERROR_PATH_NOT_FOUND},
        {"long path behind the prefix", TEXT("\\\\?\\") + fits + TEXT("n"), read, OPEN_EXISTING, normal,
         ERROR_FILE_NOT_FOUND},
        {"folder", path(TEXT("sub")), read, OPEN_EXISTING, normal, ERROR_ACCESS_DENIED},
        {"folder with backup semantics", path(TEXT("sub")), read, OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS,
         0},
        {"new over old", path(TEXT("here.txt")), GENERIC_WRITE, CREATE_NEW, normal, ERROR_FILE_EXISTS},
        {"new", path(TEXT("fresh.txt")), GENERIC_WRITE, CREATE_NEW, normal, 0},
    };
    for (const OpenCase& one : cases) {
        SCOPED_TRACE(one.name);
        SetLastError(0);
        const HANDLE file = CreateFileW(one.path.c_str(), one.access, FILE_SHARE_READ, nullptr,
                                        one.disposition, one.flags, nullptr);
        EXPECT_EQ(file == INVALID_HANDLE_VALUE, one.error != 0);
        EXPECT_EQ(GetLastError(), one.error);
        if (file != INVALID_HANDLE_VALUE)
            CloseHandle(file);
    }
}

TEST_F(Files, AppendingHandlesWriteAtTheEnd) {
    const Text log = path(TEXT("run.log"));
    constexpr DWORD share = FILE_SHARE_READ | FILE_SHARE_WRITE;
    const auto open = [&] {
        return CreateFileW(log.c_str(), FILE_APPEND_DATA, share, nullptr, OPEN_ALWAYS, FILE_ATTRIBUTE_NORMAL,
                           nullptr);
    };
    const HANDLE first = open();
    EXPECT_EQ(GetLastError(), DWORD{ERROR_SUCCESS}); // made
    const HANDLE second = open();
    EXPECT_EQ(GetLastError(), DWORD{ERROR_ALREADY_EXISTS});
    DWORD written = 0;
    EXPECT_EQ(WriteFile(first, "one ", 4, &written, nullptr), TRUE);
    EXPECT_EQ(WriteFile(second, "two ", 4, &written, nullptr), TRUE);
    SetFilePointer(first, 0, nullptr, FILE_BEGIN);
    EXPECT_EQ(WriteFile(first, "three", 5, &written, nullptr), TRUE);
    EXPECT_EQ(written, 5u);
    EXPECT_EQ(FlushFileBuffers(first), TRUE);
    char byte = 0;
    EXPECT_EQ(ReadFile(first, &byte, 1, &written, nullptr), FALSE);
    EXPECT_EQ(GetLastError(), DWORD{ERROR_ACCESS_DENIED});
    CloseHandle(first);
    CloseHandle(second);
    EXPECT_EQ(read(TEXT("run.log")), "one two three");
}

TEST_F(Files, ShareModesHoldBothWays) {
    write(TEXT("shared"), "x");
    const struct {
        const char* name;
        DWORD first, first_share, second, second_share;
        bool opens;
    } cases[] = {
        {"two readers", GENERIC_READ, FILE_SHARE_READ, GENERIC_READ, FILE_SHARE_READ, true},
        {"writer against a reader that shares reading", GENERIC_READ, FILE_SHARE_READ, GENERIC_WRITE, 3,
         false},
        {"reader that doesn't share writing against a writer", FILE_APPEND_DATA, 3, GENERIC_READ,
         FILE_SHARE_READ, false},
        {"reader that shares all against a writer", FILE_APPEND_DATA, 3, GENERIC_READ, 3, true},
        {"nothing shared", GENERIC_READ, 0, GENERIC_READ, 3, false},
        {"attributes alone", GENERIC_READ, 0, FILE_READ_ATTRIBUTES, 0, true},
    };
    for (const auto& one : cases) {
        SCOPED_TRACE(one.name);
        const auto open = [&](DWORD access, DWORD share) {
            return CreateFileW(path(TEXT("shared")).c_str(), access, share, nullptr, OPEN_EXISTING,
                               FILE_ATTRIBUTE_NORMAL, nullptr);
        };
        const HANDLE first = open(one.first, one.first_share);
        ASSERT_NE(first, INVALID_HANDLE_VALUE);
        const HANDLE second = open(one.second, one.second_share);
        EXPECT_EQ(second != INVALID_HANDLE_VALUE, one.opens);
        if (second == INVALID_HANDLE_VALUE)
            EXPECT_EQ(GetLastError(), DWORD{ERROR_SHARING_VIOLATION});
        else
            CloseHandle(second);
        EXPECT_EQ(DeleteFileW(path(TEXT("shared")).c_str()), FALSE);
        EXPECT_EQ(GetLastError(), DWORD{ERROR_SHARING_VIOLATION});
        CloseHandle(first);
    }
    EXPECT_EQ(DeleteFileW(path(TEXT("shared")).c_str()), TRUE);
}

TEST_F(Files, ReadingGoesByThePosition) {
    write(TEXT("digits"), "0123456789");
    const HANDLE file = CreateFileW(path(TEXT("digits")).c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr,
                                    OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
    char bytes[8] = {};
    DWORD got = 0;
    EXPECT_EQ(ReadFile(file, bytes, 4, &got, nullptr), TRUE);
    EXPECT_EQ(std::string(bytes, got), "0123");
    EXPECT_EQ(SetFilePointer(file, 0, nullptr, FILE_CURRENT), 4u);
    EXPECT_EQ(SetFilePointer(file, -2, nullptr, FILE_END), 8u);
    EXPECT_EQ(ReadFile(file, bytes, 8, &got, nullptr), TRUE);
    EXPECT_EQ(std::string(bytes, got), "89");
    EXPECT_EQ(ReadFile(file, bytes, 8, &got, nullptr), TRUE); // the end is no failure
    EXPECT_EQ(got, 0u);
    EXPECT_EQ(SetFilePointer(file, -1, nullptr, FILE_BEGIN), INVALID_SET_FILE_POINTER);
    EXPECT_EQ(GetLastError(), DWORD{ERROR_NEGATIVE_SEEK});
    EXPECT_EQ(SetFilePointer(file, 0, nullptr, FILE_CURRENT), 10u);
    EXPECT_EQ(GetFileSize(file, nullptr), 10u);
    DWORD written = 0;
    EXPECT_EQ(WriteFile(file, "x", 1, &written, nullptr), FALSE);
    EXPECT_EQ(GetLastError(), DWORD{ERROR_ACCESS_DENIED});
    CloseHandle(file);
}

TEST_F(Files, FoldersAreMadeAndRemoved) {
    const auto make = [](const Text& name) { return CreateDirectoryW(name.c_str(), nullptr); };
    const auto remove = [](const Text& name) { return RemoveDirectoryW(name.c_str()); };
    const auto erase = [](const Text& name) { return DeleteFileW(name.c_str()); };
    write(TEXT("file"), "x");
    const Text sub = path(TEXT("sub")), deep = path(TEXT("sub\\deep")),
               long_name = path(Text(MAX_PATH - 12, TEXT('n')).c_str());
    const struct {
        const char* name;
        BOOL (*call)(const Text&);
        Text path;
        DWORD error;
    } steps[] = {
        {"parent missing", make, deep, ERROR_PATH_NOT_FOUND},
        {"made", make, sub + TEXT("\\"), 0},
        {"there", make, path(TEXT("SUB")), ERROR_ALREADY_EXISTS},
        {"a file there", make, path(TEXT("file")), ERROR_ALREADY_EXISTS},
        {"too long", make, long_name, ERROR_FILENAME_EXCED_RANGE},
        {"below", make, deep, 0},
        {"not empty", remove, sub, ERROR_DIR_NOT_EMPTY},
        {"not a file", erase, sub, ERROR_ACCESS_DENIED},
        {"empty", remove, deep, 0},
        {"gone", remove, deep, ERROR_FILE_NOT_FOUND},
        {"not a folder", remove, path(TEXT("file")), ERROR_DIRECTORY},
        {"file deleted", erase, path(TEXT("FILE")), 0},
        {"file gone", erase, path(TEXT("file")), ERROR_FILE_NOT_FOUND},
    };
    for (const auto& step : steps) {
        SCOPED_TRACE(step.name);
        SetLastError(0);
        EXPECT_EQ(step.call(step.path) != FALSE, step.error == 0);
        EXPECT_EQ(GetLastError(), step.error);
    }
    // Where it could be made, names within it are too long for the shell, which then deletes elsewhere.
    RemoveDirectoryW(long_name.c_str());
    EXPECT_EQ(GetFileAttributesW(sub.c_str()), DWORD{FILE_ATTRIBUTE_DIRECTORY});
    EXPECT_EQ(GetFileAttributesW(path(TEXT("file")).c_str()), INVALID_FILE_ATTRIBUTES);
}

TEST_F(Files, CopyReplacesUnlessItMayNot) {
    write(TEXT("source"), "new");
    write(TEXT("target"), "old, and longer");
    CreateDirectoryW(path(TEXT("sub")).c_str(), nullptr);
    const struct {
        const char* name;
        const WCHAR *source, *target;
        BOOL fail_if_exists;
        DWORD error;
    } cases[] = {
        {"existing target kept", TEXT("source"), TEXT("target"), TRUE, ERROR_FILE_EXISTS},
        {"missing source", TEXT("gone"), TEXT("target"), FALSE, ERROR_FILE_NOT_FOUND},
        {"missing source folder", TEXT("gone\\x"), TEXT("target"), FALSE, ERROR_PATH_NOT_FOUND},
        {"missing target folder", TEXT("source"), TEXT("gone\\x"), FALSE, ERROR_PATH_NOT_FOUND},
        {"folder as source", TEXT("sub"), TEXT("target"), FALSE, ERROR_ACCESS_DENIED},
        {"folder as target", TEXT("source"), TEXT("sub"), FALSE, ERROR_ACCESS_DENIED},
        {"onto itself", TEXT("source"), TEXT("SOURCE"), FALSE, ERROR_SHARING_VIOLATION},
    };
    for (const auto& one : cases) {
        SCOPED_TRACE(one.name);
        EXPECT_EQ(CopyFileW(path(one.source).c_str(), path(one.target).c_str(), one.fail_if_exists), FALSE);
        EXPECT_EQ(GetLastError(), one.error);
        EXPECT_EQ(read(TEXT("target")), "old, and longer");
    }
    EXPECT_EQ(CopyFileW(path(TEXT("source")).c_str(), path(TEXT("TARGET")).c_str(), FALSE), TRUE);
    EXPECT_EQ(CopyFileW(path(TEXT("source")).c_str(), path(TEXT("sub\\copy")).c_str(), TRUE), TRUE);
    EXPECT_EQ(read(TEXT("target")), "new");
    EXPECT_EQ(read(TEXT("sub\\copy")), "new");
}

TEST_F(Files, HandlesTellWhatTheyLeadTo) {
    write(TEXT("Named.txt"), "12345");
    const HANDLE file = CreateFileW(path(TEXT("NAMED.TXT")).c_str(), FILE_APPEND_DATA, 3, nullptr,
                                    OPEN_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
    BY_HANDLE_FILE_INFORMATION facts{};
    EXPECT_EQ(GetFileInformationByHandle(file, &facts), TRUE);
    EXPECT_EQ(facts.dwFileAttributes & (FILE_ATTRIBUTE_DIRECTORY | FILE_ATTRIBUTE_REPARSE_POINT), 0u);
    EXPECT_EQ(facts.nFileSizeLow, 5u);
    EXPECT_EQ(facts.nNumberOfLinks, 1u);
    EXPECT_EQ(GetFileType(file), DWORD{FILE_TYPE_DISK});
    const Text expected = TEXT("\\\\?\\") + path(TEXT("Named.txt"));
    const DWORD length = static_cast<DWORD>(expected.size());
    WCHAR name[MAX_PATH] = {};
    EXPECT_EQ(GetFinalPathNameByHandleW(file, name, length, FILE_NAME_NORMALIZED), length + 1);
    EXPECT_EQ(GetFinalPathNameByHandleW(file, name, length + 1, FILE_NAME_NORMALIZED), length);
    // Folders that the system made may be written in capitals or not.
    EXPECT_TRUE(Text(name).starts_with(TEXT("\\\\?\\C:\\")));
    EXPECT_TRUE(Text(name).ends_with(TEXT("\\trk-calls\\Named.txt")));
    CloseHandle(file);
}

TEST_F(Files, CurrentFolderAsksForRoom) {
    WCHAR whole[MAX_PATH] = {};
    const DWORD length = GetCurrentDirectoryW(MAX_PATH, whole);
    EXPECT_EQ(Text(whole).size(), length);
    WCHAR exact[MAX_PATH] = {};
    EXPECT_EQ(GetCurrentDirectoryW(length, exact), length + 1);
    EXPECT_EQ(GetCurrentDirectoryW(length + 1, exact), length);
    EXPECT_TRUE(Text(exact) == whole);
}

} // namespace
