#include "harness/test_session.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <windows.h>

namespace fs = std::filesystem;

namespace {

using Text = std::u16string;

class FilesModel : public testing::Test, protected TestSession {
protected:
    FilesModel() { write(medium / "Drivers" / "lbl.inf", "inf"); }

    static HANDLE open(const Text& path, DWORD access, DWORD disposition,
                       DWORD flags = FILE_ATTRIBUTE_NORMAL) {
        return CreateFileW(path.c_str(), access, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, disposition,
                           flags, nullptr);
    }

    static Text final_path(HANDLE file) {
        WCHAR path[512] = {};
        EXPECT_NE(GetFinalPathNameByHandleW(file, path, 512, FILE_NAME_NORMALIZED), 0u);
        return path;
    }

    static Text final_path(const Text& path) {
        const HANDLE file = open(path, FILE_READ_ATTRIBUTES, OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS);
        EXPECT_NE(file, INVALID_HANDLE_VALUE);
        const Text found = final_path(file);
        CloseHandle(file);
        return found;
    }
};

// 0 when the call succeeded.
DWORD error_of(BOOL result) {
    return result != FALSE ? 0 : GetLastError();
}
DWORD error_of(HANDLE handle) {
    if (handle == INVALID_HANDLE_VALUE)
        return GetLastError();
    CloseHandle(handle);
    return 0;
}

TEST_F(FilesModel, MediumCanOnlyBeRead) {
    start();
    const Text inf = u"D:\\medium\\drivers\\LBL.inf";
    EXPECT_EQ(error_of(open(u"Drivers\\lbl.inf", GENERIC_READ, OPEN_EXISTING)), 0u);
    EXPECT_EQ(error_of(open(u"\\medium\\Drivers\\lbl.inf", GENERIC_READ, OPEN_EXISTING)), 0u);
    EXPECT_EQ(error_of(open(u"D:Drivers\\lbl.inf", GENERIC_READ, OPEN_EXISTING)), 0u);
    EXPECT_EQ(error_of(CopyFileW(inf.c_str(), u"C:\\lbl.inf", TRUE)), 0u);
    EXPECT_EQ(error_of(open(inf, GENERIC_WRITE, OPEN_EXISTING)), DWORD{ERROR_WRITE_PROTECT});
    EXPECT_EQ(error_of(open(u"new", FILE_APPEND_DATA, OPEN_ALWAYS)), DWORD{ERROR_WRITE_PROTECT});
    EXPECT_EQ(error_of(open(u"D:\\new", GENERIC_WRITE, CREATE_ALWAYS)), DWORD{ERROR_WRITE_PROTECT});
    EXPECT_EQ(error_of(CopyFileW(u"C:\\lbl.inf", inf.c_str(), FALSE)), DWORD{ERROR_WRITE_PROTECT});
    EXPECT_EQ(error_of(DeleteFileW(inf.c_str())), DWORD{ERROR_WRITE_PROTECT});
    EXPECT_EQ(error_of(CreateDirectoryW(u"new", nullptr)), DWORD{ERROR_WRITE_PROTECT});
    EXPECT_EQ(error_of(RemoveDirectoryW(u"Drivers")), DWORD{ERROR_WRITE_PROTECT});
    EXPECT_EQ(read(medium / "Drivers" / "lbl.inf"), "inf");
}

TEST_F(FilesModel, FoldersAboveTheMediumHoldTheWayDown) {
    machine.current_folder = u"D:\\discs\\Label 100";
    start();
    EXPECT_EQ(GetFileAttributesW(u"d:\\DISCS"), DWORD{FILE_ATTRIBUTE_DIRECTORY});
    EXPECT_EQ(error_of(open(u"D:\\discs\\gone", GENERIC_READ, OPEN_EXISTING)), DWORD{ERROR_FILE_NOT_FOUND});
    EXPECT_EQ(error_of(open(u"D:\\gone\\x", GENERIC_READ, OPEN_EXISTING)), DWORD{ERROR_PATH_NOT_FOUND});
    EXPECT_EQ(error_of(open(u"E:\\x", GENERIC_READ, OPEN_EXISTING)), DWORD{ERROR_PATH_NOT_FOUND});
    WIN32_FIND_DATAW entry;
    const HANDLE search = FindFirstFileW(u"D:\\*", &entry); // a root has no "." and ".."
    EXPECT_TRUE(Text(entry.cFileName) == u"discs");
    EXPECT_EQ(FindNextFileW(search, &entry), FALSE);
    FindClose(search);
    EXPECT_TRUE(final_path(u"..\\label 100\\drivers") == u"\\\\?\\D:\\discs\\Label 100\\Drivers");
}

TEST_F(FilesModel, ShortNamesAreNumberedByTheOrderOfTheNames) {
    for (const char* name :
         {"Label Printer 2.info", "label printer 1.info", "LABELP~3.INF", "Label.Printer.inf", "Größe+.cpp",
          "a,b[c].d e", ".profile", "x.info", "series 100.info", "serie 100.info"})
        write(drive_c / "S" / name, name);
    for (char letter = 'a'; letter <= 'l'; ++letter)
        write(drive_c / "S" / (std::string("series ") + letter + ".info"), "x");
    start();
    const struct {
        const WCHAR *short_name, *name;
    } cases[] = {
        {u"LABELP~1.INF", u"label printer 1.info"},
        {u"labelp~2.inf", u"Label Printer 2.info"},
        {u"LABELP~4.INF", u"Label.Printer.inf"},
        {u"GR__E_~1.CPP", u"Größe+.cpp"},
        {u"A_B_C_~1.DE", u"a,b[c].d e"},
        {u"PROFIL~1", u".profile"},
        {u"X~1.INF", u"x.info"},
        {u"SERIES~1.INF", u"series 100.info"},
        {u"SERIE1~1.INF", u"serie 100.info"},
        {u"SERIES~9.INF", u"series h.info"},
        {u"SERIE~10.INF", u"series i.info"},
        {u"SERIE~13.INF", u"series l.info"},
    };
    for (const auto& one : cases) {
        WIN32_FIND_DATAW entry{};
        FindClose(FindFirstFileW((Text(u"C:\\S\\") + one.short_name).c_str(), &entry));
        EXPECT_TRUE(Text(entry.cFileName) == one.name) << testing::PrintToString(Text(one.short_name));
        EXPECT_TRUE(final_path(Text(u"C:\\S\\") + one.short_name) == Text(u"\\\\?\\C:\\S\\") + one.name);
    }
    EXPECT_EQ(GetFileAttributesW(u"C:\\S\\LABELP~5.INF"), INVALID_FILE_ATTRIBUTES);
}

TEST_F(FilesModel, LinksShowWhereTheyLead) {
    write(drive_c / "Users" / "Guest" / "target.txt", "guest");
    write(folder.path / "outside.txt", "outside");
    const fs::path temp = drive_c / "Windows" / "Temp";
    fs::create_symlink(drive_c / "Users" / "Guest" / "target.txt", temp / "planted.log");
    fs::create_symlink(folder.path / "outside.txt", temp / "outside.log");
    fs::create_directory_symlink(drive_c / "Users" / "Guest", temp / "Moved");
    fs::create_hard_link(drive_c / "Users" / "Guest" / "target.txt", temp / "second.log");
    start();
    EXPECT_TRUE(final_path(u"C:\\windows\\TEMP\\planted.log") == u"\\\\?\\C:\\Users\\Guest\\target.txt");
    EXPECT_TRUE(final_path(u"C:\\Windows\\Temp\\Moved") == u"\\\\?\\C:\\Users\\Guest");
    EXPECT_TRUE(final_path(u"C:\\Windows\\Temp\\outside.log").starts_with(u"\\\\?\\X:\\"));
    EXPECT_EQ(GetFileAttributesW(u"C:\\Windows\\Temp\\planted.log"), DWORD{FILE_ATTRIBUTE_REPARSE_POINT});

    BY_HANDLE_FILE_INFORMATION facts{};
    HANDLE file = open(u"C:\\Windows\\Temp\\second.log", FILE_APPEND_DATA, OPEN_ALWAYS);
    EXPECT_EQ(GetFileInformationByHandle(file, &facts), TRUE);
    EXPECT_EQ(facts.nNumberOfLinks, 2u);
    CloseHandle(file);
    file =
        open(u"C:\\Windows\\Temp\\planted.log", FILE_APPEND_DATA, OPEN_ALWAYS, FILE_FLAG_OPEN_REPARSE_POINT);
    EXPECT_EQ(GetFileInformationByHandle(file, &facts), TRUE);
    EXPECT_EQ(facts.dwFileAttributes, DWORD{FILE_ATTRIBUTE_REPARSE_POINT});
    EXPECT_TRUE(final_path(file) == u"\\\\?\\C:\\Windows\\Temp\\planted.log");
    CloseHandle(file);
}

TEST_F(FilesModel, ReadOnlyFilesKeepOthersOut) {
    write(drive_c / "locked", "locked");
    chmod((drive_c / "locked").c_str(), 0444);
    start();
    EXPECT_EQ(GetFileAttributesW(u"C:\\locked"), DWORD{FILE_ATTRIBUTE_ARCHIVE | FILE_ATTRIBUTE_READONLY});
    EXPECT_EQ(error_of(open(u"C:\\locked", FILE_APPEND_DATA, OPEN_EXISTING)), DWORD{ERROR_ACCESS_DENIED});
    EXPECT_EQ(error_of(CopyFileW(u"Drivers\\lbl.inf", u"C:\\locked", FALSE)), DWORD{ERROR_ACCESS_DENIED});
    EXPECT_EQ(error_of(DeleteFileW(u"C:\\locked")), DWORD{ERROR_ACCESS_DENIED});
    EXPECT_EQ(error_of(CopyFileW(u"C:\\locked", u"C:\\copy", FALSE)), 0u);
    EXPECT_EQ(error_of(CopyFileW(u"C:\\locked", u"C:\\copy", FALSE)),
              DWORD{ERROR_ACCESS_DENIED}); // the copy is so too
}

TEST_F(FilesModel, FaultsGoByTheFile) {
    machine.faults = {{"ReadFile", 1, false, 23, "LBL.INF"}, {"CopyFileW", 2, true, {}, "C:\\"}};
    platform::Session& session = start();
    char bytes[8];
    DWORD got = 9;
    const HANDLE file = open(u"Drivers\\lbl.inf", GENERIC_READ, OPEN_EXISTING);
    EXPECT_EQ(error_of(ReadFile(file, bytes, 8, &got, nullptr)), 23u);
    EXPECT_EQ(got, 0u);
    EXPECT_EQ(error_of(ReadFile(file, bytes, 8, &got, nullptr)), 0u);
    EXPECT_EQ(session.handles.open_kinds(), (std::vector<std::string>{"file", "file"})); // the log is one
    CloseHandle(file);
    EXPECT_EQ(error_of(CopyFileW(u"Drivers\\lbl.inf", u"C:\\one", FALSE)), 0u);
    EXPECT_EQ(error_of(CopyFileW(u"Drivers\\lbl.inf", u"C:\\two", FALSE)), DWORD{ERROR_ACCESS_DENIED});
    EXPECT_FALSE(fs::exists(drive_c / "two"));
}

TEST_F(FilesModel, UnmodelledNamesStopTheRun) {
    for (const char16_t* path : {u"C:\\nul", u"C:\\Windows\\COM1.txt", u"\\\\.\\C:", u"C:\\file:stream"}) {
        TestSession own;
        own.start();
        EXPECT_THROW(CreateFileW(path, GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr),
                     platform::RunStopped);
        app.log_handle = INVALID_HANDLE_VALUE; // nothing can be closed any more
    }
}

TEST_F(FilesModel, ClosedHandlesAreNoted) {
    looks_at_leftovers = false;
    platform::Session& session = start();
    const HANDLE file = open(u"Drivers\\lbl.inf", GENERIC_READ, OPEN_EXISTING);
    CloseHandle(file);
    EXPECT_EQ(GetFileSize(file, nullptr), INVALID_FILE_SIZE);
    EXPECT_EQ(GetLastError(), DWORD{ERROR_INVALID_HANDLE});
    EXPECT_EQ(FindClose(file), FALSE);
    EXPECT_EQ(session.gate.misuses().size(), 2u);
}

TEST_F(FilesModel, CurrentFolderPoisonsWhatItLeavesUnset) {
    start();
    WCHAR small[9] = {};
    EXPECT_EQ(GetCurrentDirectoryW(9, small), 10u); // D:\medium
    EXPECT_EQ(small[0], 0xCDCD);
    EXPECT_EQ(small[8], 0xCDCD);
}

} // namespace
