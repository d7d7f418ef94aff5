#include "calls/shell/link_reader.h"
#include "harness/test_session.h"

#include <cstdio>
#include <cstring>
#include <gtest/gtest.h>
#include <shlobj.h>
#include <sys/inotify.h>
#include <sys/stat.h>
#include <unistd.h>
#include <windows.h>

#include <shellapi.h>

namespace fs = std::filesystem;

namespace {

class ShellModel : public testing::Test, protected TestSession {
protected:
    static int run(UINT operation, FILEOP_FLAGS flags, const WCHAR* from, const WCHAR* to) {
        SHFILEOPSTRUCTW what{};
        what.wFunc = operation;
        what.pFrom = from;
        what.pTo = to;
        what.fFlags = flags;
        return SHFileOperationW(&what);
    }
    static int remove(const WCHAR* list) { return run(FO_DELETE, 0x414, list, nullptr); }
    static int copy(const WCHAR* from, const WCHAR* to) { return run(FO_COPY, 0x1494, from, to); }
};

TEST_F(ShellModel, ResultsTellTheReason) {
    write(medium / "profiles" / "a.tkp", "a");
    write(drive_c / "out" / "a.tkp", "locked");
    write(drive_c / "tree" / "locked", "x");
    write(drive_c / "kept", "x");
    chmod((drive_c / "out" / "a.tkp").c_str(), 0444);
    chmod((drive_c / "tree" / "locked").c_str(), 0444);
    write(drive_c / "Users" / "kept", "x");
    fs::create_directory_symlink(drive_c / "Users", drive_c / "tree" / "link");
    start();
    EXPECT_EQ(copy(u"D:\\medium\\profiles\\*.tkp\0", u"C:\\out\\\0"), 0); // over a read-only file
    EXPECT_EQ(read(drive_c / "out" / "a.tkp"), "a");
    EXPECT_EQ(copy(u"D:\\medium\\profiles\\*.icm\0", u"C:\\out\\\0"), ERROR_FILE_NOT_FOUND);
    EXPECT_EQ(copy(u"D:\\medium\\gone\\*.tkp\0", u"C:\\out\\\0"), ERROR_PATH_NOT_FOUND);
    EXPECT_EQ(copy(u"D:\\medium\\profiles\\*.tkp\0", u"C:\\kept\\\0"), 0x80); // a file in the folder's place
    EXPECT_EQ(copy(u"D:\\medium\\profiles\\*.tkp\0", u"D:\\medium\\new\\\0"), ERROR_WRITE_PROTECT);
    EXPECT_EQ(copy((u"C:\\" + std::u16string(300, u'n') + u'\0').c_str(), u"C:\\out\\\0"), 0x79);
    EXPECT_EQ(remove(u"C:\\gone\0"), ERROR_FILE_NOT_FOUND);
    EXPECT_EQ(remove(u"D:\\medium\\profiles\0"), ERROR_WRITE_PROTECT);
    EXPECT_EQ(remove(u"C:\\Windows\\Temp\0"), ERROR_SHARING_VIOLATION); // the log in it is open
    EXPECT_EQ(remove(u"C:\\tree\0C:\\out\0"), 0);
    EXPECT_FALSE(fs::exists(drive_c / "tree") || fs::exists(drive_c / "out"));
    EXPECT_TRUE(fs::exists(drive_c / "Users" / "kept")); // what a link leads to stays
}

// Names without regard to case, also those that the same copying brought.
TEST_F(ShellModel, CopyingManyFilesListsTheirFolderOnce) {
    for (int number = 0; number < 40; ++number)
        write(medium / "profiles" / ("profile_" + std::to_string(number) + ".tkp"), "x");
    write(medium / "profiles" / "TWICE.tkp", "first");
    write(medium / "profiles" / "twice.tkp", "second");
    write(medium / "profiles" / "there.tkp", "new");
    write(drive_c / "out" / "There.TKP", "old");
    start();
    const int watcher = inotify_init1(IN_NONBLOCK | IN_CLOEXEC);
    ASSERT_GE(inotify_add_watch(watcher, (drive_c / "out").c_str(), IN_OPEN), 0);
    EXPECT_EQ(copy(u"D:\\medium\\profiles\\*.tkp\0", u"C:\\out\\\0"), 0);
    int listings = 0;
    alignas(inotify_event) char events[4096];
    for (ssize_t size = 0; (size = ::read(watcher, events, sizeof events)) > 0;)
        for (ssize_t at = 0; at < size;) {
            const auto* const event = reinterpret_cast<const inotify_event*>(events + at);
            listings += event->len == 0 ? 1 : 0; // of the folder itself, not of a file in it
            at += static_cast<ssize_t>(sizeof *event + event->len);
        }
    close(watcher);
    EXPECT_EQ(listings, 1);
    EXPECT_EQ(read(drive_c / "out" / "TWICE.tkp"), "second");
    EXPECT_EQ(read(drive_c / "out" / "There.TKP"), "new");
    EXPECT_FALSE(fs::exists(drive_c / "out" / "twice.tkp") || fs::exists(drive_c / "out" / "there.tkp"));
}

TEST_F(ShellModel, WhatIsntModelledStopsTheRun) {
    const struct {
        const char* name;
        UINT operation;
        FILEOP_FLAGS flags;
        std::u16string from;
    } cases[] = {
        {"no second terminator", FO_DELETE, 0x414, std::u16string(u"C:\\tree\0", 8)},
        {"empty list", FO_DELETE, 0x414, std::u16string(2, u'\0')},
        {"relative path", FO_DELETE, 0x414, std::u16string(u"tree\0\0", 6)},
        {"whole drive", FO_DELETE, 0x414, std::u16string(u"C:\\\0\0", 5)},
        {"recycle bin", FO_DELETE, 0x454, std::u16string(u"C:\\tree\0\0", 9)},
        {"moving", FO_MOVE, 0x414, std::u16string(u"C:\\tree\0\0", 9)},
    };
    for (const auto& one : cases) {
        SCOPED_TRACE(one.name);
        TestSession own;
        write(own.drive_c / "tree" / "file", "x");
        own.start();
        const std::size_t bytes = one.from.size() * sizeof(WCHAR);
        void* list = HeapAlloc(GetProcessHeap(), 0, bytes);
        std::memcpy(list, one.from.data(), bytes);
        EXPECT_THROW(run(one.operation, one.flags, static_cast<WCHAR*>(list), nullptr), platform::RunStopped);
        EXPECT_TRUE(fs::exists(own.drive_c / "tree" / "file"));
        app.log_handle = INVALID_HANDLE_VALUE; // nothing can be closed any more
    }
}

TEST_F(ShellModel, KnownFoldersFollowTheMachine) {
    machine.folders.program_files = u"C:\\Programme";
    machine.folders.common_programs = u"C:\\gone";
    fs::create_directories(drive_c / "Programme");
    machine.faults = {{"SHGetKnownFolderPath", 2, false, 0x80070005, "ProgramFiles"}};
    platform::Session& session = start();
    PWSTR path = nullptr;
    EXPECT_EQ(SHGetKnownFolderPath(FOLDERID_ProgramFiles, 0, nullptr, &path), S_OK);
    EXPECT_TRUE(std::u16string(path) == u"C:\\Programme");
    EXPECT_EQ(session.memory.live().size(), 1u);
    CoTaskMemFree(path);
    EXPECT_EQ(SHGetKnownFolderPath(FOLDERID_ProgramFiles, 0, nullptr, &path), E_ACCESSDENIED);
    EXPECT_EQ(path, nullptr);
    EXPECT_EQ(SHGetKnownFolderPath(FOLDERID_CommonPrograms, 0, nullptr, &path),
              HRESULT_FROM_WIN32(ERROR_FILE_NOT_FOUND));
    EXPECT_TRUE(session.memory.live().empty());
}

TEST_F(ShellModel, UnreleasedLinksShowInTheLedger) {
    platform::Session& session = start();
    CoInitialize(nullptr);
    void *link = nullptr, *file = nullptr;
    ASSERT_EQ(CoCreateInstance(CLSID_ShellLink, nullptr, CLSCTX_INPROC_SERVER, IID_IShellLinkW, &link), S_OK);
    ASSERT_EQ(static_cast<IShellLinkW*>(link)->QueryInterface(IID_IPersistFile, &file), S_OK);
    static_cast<IShellLinkW*>(link)->Release();
    EXPECT_EQ(session.handles.open_kinds(), (std::vector<std::string>{"file", "shell link"}));
    static_cast<IPersistFile*>(file)->Release();
    EXPECT_EQ(session.handles.open_kinds(), (std::vector<std::string>{"file"}));
}

// What the published form's outside reader makes of the file.
std::string judged(const fs::path& file) {
    std::string output;
    FILE* pipe = popen(("lnkinfo '" + file.string() + "' 2>&1").c_str(), "r");
    char chunk[512];
    for (std::size_t count = 0; pipe != nullptr && (count = std::fread(chunk, 1, sizeof chunk, pipe)) > 0;)
        output.append(chunk, count);
    EXPECT_EQ(pipe == nullptr ? -1 : pclose(pipe), 0);
    return output;
}

TEST_F(ShellModel, AnOutsideReaderUnderstandsTheLink) {
    write(drive_c / "Program Files" / "Vörlane" / "trk_remove.exe", "12345");
    start();
    CoInitialize(nullptr);
    void *object = nullptr, *file_object = nullptr;
    ASSERT_EQ(CoCreateInstance(CLSID_ShellLink, nullptr, CLSCTX_INPROC_SERVER, IID_IShellLinkW, &object),
              S_OK);
    auto* link = static_cast<IShellLinkW*>(object);
    link->SetPath(u"C:\\Program Files\\Vörlane\\\\trk_remove.exe");
    link->SetWorkingDirectory(u"C:\\Program Files\\Vörlane\\");
    link->SetDescription(u"Label 100 Driver Uninstall");
    ASSERT_EQ(link->QueryInterface(IID_IPersistFile, &file_object), S_OK);
    auto* file = static_cast<IPersistFile*>(file_object);
    EXPECT_EQ(file->Save(u"C:\\Uninstall.lnk", TRUE), S_OK);
    file->Release();
    link->Release();
    const std::string facts = judged(drive_c / "Uninstall.lnk");
    for (const char* line : {"Local path\t\t\t: C:\\Program Files\\Vörlane\\trk_remove.exe\n",
                             "Working directory\t\t: C:\\Program Files\\Vörlane\\\n",
                             "Description\t\t\t: Label 100 Driver Uninstall\n",
                             "Drive type\t\t\t: Fixed (3)\n", "File size\t\t\t: 5 bytes\n"})
        EXPECT_NE(facts.find(line), std::string::npos) << line << facts;
}

// A link as another writer makes it: a list of shell items, an 8-bit path in two pieces, 8-bit texts.
std::string foreign_link() {
    const auto zeros = [](std::size_t count) { return std::string(count, '\0'); };
    std::string link =
        std::string("L\0\0\0", 4) + std::string("\x01\x14\2\0\0\0\0\0\xC0\0\0\0\0\0\0\x46", 16);
    link += std::string("\x1F\0\0\0", 4) + zeros(52);                // everything but 16-bit texts
    link += std::string("\4\0\2\0", 4) + zeros(2);                   // items: four bytes
    link += std::string("\x2B\0\0\0\x1C\0\0\0\1\0\0\0", 12);         // info: 43 bytes, short header, local
    link += std::string("\0\0\0\0\x1C\0\0\0\0\0\0\0\x24\0\0\0", 16); // path at 28, its rest at 36
    link += std::string("C:\\Dir\\\0", 8) + std::string("\xE9.exe\0\0", 7);
    link += std::string("\4\0name\3\0rel\5\0C:\\wd", 18) + zeros(4);
    return link;
}

TEST_F(ShellModel, LinksOfOtherWritersAreRead) {
    std::string reason;
    const std::string whole = foreign_link();
    const auto link = platform::read_link(whole, 1252, reason);
    ASSERT_TRUE(link) << reason;
    EXPECT_TRUE(link->target == u"C:\\Dir\\é.exe");
    EXPECT_TRUE(link->description == u"name");
    EXPECT_TRUE(link->working_folder == u"C:\\wd");
    for (std::size_t size = 0; size + 4 < whole.size(); ++size) // without the last zeros it's still whole
        EXPECT_FALSE(platform::read_link(whole.substr(0, size), 1252, reason)) << size;
    EXPECT_FALSE(platform::read_link("M" + whole.substr(1), 1252, reason));
    std::string astray = whole;
    astray[82 + 16] = '\x7F'; // the path's offset, beyond the block
    EXPECT_TRUE(platform::read_link(astray, 1252, reason)->target == u"é.exe");
}

// Its bytes are counted, so that a text may end with the first half of a character.
TEST_F(ShellModel, LinkTextsMayEndInHalfALetter) {
    std::string reason;
    const std::string head =
        foreign_link().substr(0, 20) + std::string("\4\0\0\0", 4) + std::string(52, '\0');
    const auto link = platform::read_link(head + std::string("\2\0a\x83", 4), 932, reason);
    ASSERT_TRUE(link) << reason;
    EXPECT_TRUE(link->description == u"a・");
}

} // namespace
