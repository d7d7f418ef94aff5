#include "calls/run/failed_steps.h"
#include "harness/test_session.h"
#include "machine/little_endian.h"
#include "support/install_log.h"

#include <gtest/gtest.h>

namespace fs = std::filesystem;

namespace {

constexpr const char16_t* environment_key =
    u"SYSTEM\\CurrentControlSet\\Control\\Session Manager\\Environment";

platform::RegistryValue text_value(const std::u16string& text, std::size_t terminators = 1,
                                   std::uint32_t type = 2) {
    return {type, platform::utf16_bytes(text + std::u16string(terminators, 0))};
}

// A log in the folder that the test prepared, opened the way the program does.
class OpenedLog {
public:
    explicit OpenedLog(DWORD size = 256) : handle(open_log(u"trk_install", u".log", path_, size)) {}
    ~OpenedLog() {
        if (handle != INVALID_HANDLE_VALUE)
            CloseHandle(handle);
    }
    bool opened() const { return handle != INVALID_HANDLE_VALUE; }
    std::string path() const { return platform::to_utf8(path_); }

private:
    WCHAR path_[256] = {};

public:
    const HANDLE handle;
};

struct LogFolder : TestSession {
    // The registry's TEMP is a folder of its own, so that the harness's log doesn't lie in it.
    explicit LogFolder(const std::u16string& temp = u"C:\\Temp") {
        machine.registry[environment_key] = {{u"TEMP", text_value(temp, 1)}};
        fs::create_directories(drive_c / "Temp");
    }
    fs::path file = drive_c / "Temp" / "trk_install.log";
};

} // namespace

TEST(InstallLog, AsksTheSourcesInTheirOrder) {
    const std::u16string over_512_bytes(300, u'x');
    const std::u16string exactly_512_bytes(256, u'%');
    const struct {
        const char* name;
        const char16_t* temp; // of the machine; null: none
        const char16_t* tmp;
        std::size_t terminators;
        int use_environment;
        DWORD size;
        const char* expected; // null: none
    } cases[] = {
        {"TEMP first", u"C:\\T", u"C:\\M", 1, 0, 64, "C:\\T"},
        {"own variable on request", u"C:\\T", nullptr, 1, 1, 64, "C:\\Own"},
        {"own variables too long", u"T", nullptr, 1, 1, 3, "T"},
        {"expanded", u"%SystemRoot%\\Temp", nullptr, 1, 0, 64, "C:\\Windows\\Temp"},
        {"TMP without TEMP", nullptr, u"C:\\M", 1, 0, 64, "C:\\M"},
        {"no terminator", u"C:\\T", nullptr, 0, 0, 64, "C:\\T"},
        {"no terminator, no room", exactly_512_bytes.c_str(), u"C:\\M", 0, 0, 64, "C:\\M"},
        {"over 512 bytes counts as absent", over_512_bytes.c_str(), u"C:\\M", 1, 0, 400, "C:\\M"},
        {"longer than the buffer", u"C:\\Longer", u"C:\\M", 1, 0, 9, "C:\\M"},
        {"fills the buffer", u"C:\\T", nullptr, 1, 0, 5, "C:\\T"},
        {"empty text", u"", u"C:\\M", 1, 0, 64, ""},
        {"no bytes", u"", u"C:\\M", 0, 0, 64, "C:\\M"},
        {"neither", nullptr, nullptr, 1, 0, 64, "C:\\Windows"},
        {"nothing fits", nullptr, nullptr, 1, 0, 10, nullptr},
    };
    for (const auto& item : cases) {
        SCOPED_TRACE(item.name);
        TestSession session;
        auto& values = session.machine.registry[environment_key];
        values.clear();
        if (item.temp != nullptr)
            values[u"TEMP"] = text_value(item.temp, item.terminators);
        if (item.tmp != nullptr)
            values[u"TMP"] = text_value(item.tmp, item.terminators);
        session.machine.environment = {
            {u"TEMP", u"C:\\Own"}, {u"TMP", u"C:\\Other"}, {u"SystemRoot", u"C:\\Windows"}};
        session.start();
        std::vector<WCHAR> buffer(item.size, u'?');
        EXPECT_EQ(find_temp_dir(buffer.data(), item.size, item.use_environment), item.expected != nullptr);
        EXPECT_EQ(platform::to_utf8(buffer.data()), item.expected != nullptr ? item.expected : "");
    }
}

TEST(InstallLog, AppendsToWhatEarlierRunsLeft) {
    for (const char16_t* temp : {u"C:\\Temp", u"C:\\Temp\\"}) {
        LogFolder session(temp);
        TestSession::write(session.file, "earlier\r\n");
        session.start();
        OpenedLog log;
        EXPECT_EQ(log.path(), "C:\\Temp\\trk_install.log");
        log_write(log.handle, u"now\r\n");
        EXPECT_EQ(TestSession::read(session.file), "earlier\r\nnow\r\n");
    }
}

TEST(InstallLog, OpensNothingUnderACutName) {
    LogFolder session;
    platform::Session& run = session.start();
    const unsigned before = run.gate.count("CreateFileW");
    EXPECT_FALSE(OpenedLog(23).opened()); // one less than the path and its terminator need
    EXPECT_EQ(run.gate.count("CreateFileW"), before);
    EXPECT_TRUE(OpenedLog(24).opened());
}

// Whoever may write to the temp folder could plant a name there that leads an administrator's writes
// elsewhere.
TEST(InstallLog, RefusesAPlantedFile) {
    const struct {
        const char* name;
        void (*plant)(const LogFolder&);
        bool opened;
    } cases[] = {
        {"other case",
         [](const LogFolder& s) { TestSession::write(s.drive_c / "Temp/TRK_Install.LOG", "x"); }, true},
        {"second name", [](const LogFolder& s) { fs::create_hard_link(s.drive_c / "victim", s.file); },
         false},
        {"link", [](const LogFolder& s) { fs::create_symlink(s.drive_c / "victim", s.file); }, false},
        {"link to nothing", [](const LogFolder& s) { fs::create_symlink(s.drive_c / "new", s.file); }, false},
        {"link to its name elsewhere",
         [](const LogFolder& s) {
             TestSession::write(s.drive_c / "Evil/trk_install.log", "x");
             fs::create_symlink(s.drive_c / "Evil/trk_install.log", s.file);
         },
         false},
        {"link beside itself",
         [](const LogFolder& s) {
             TestSession::write(s.drive_c / "Temp/other.log", "x");
             fs::create_symlink(s.drive_c / "Temp/other.log", s.file);
         },
         false},
        {"folder that lies elsewhere",
         [](const LogFolder& s) {
             fs::remove(s.drive_c / "Temp");
             fs::create_directories(s.drive_c / "Elsewhere");
             fs::create_directory_symlink(s.drive_c / "Elsewhere", s.drive_c / "Temp");
         },
         true},
    };
    for (const auto& item : cases) {
        SCOPED_TRACE(item.name);
        LogFolder session;
        TestSession::write(session.drive_c / "victim", "kept");
        item.plant(session);
        platform::Session& run = session.start();
        const std::size_t handles = run.handles.open_kinds().size();
        {
            OpenedLog log;
            EXPECT_EQ(log.opened(), item.opened);
            log_write(log.handle, u"line\r\n");
        }
        EXPECT_EQ(TestSession::read(session.drive_c / "victim"), "kept");
        EXPECT_FALSE(fs::exists(session.drive_c / "new"));
        EXPECT_EQ(run.handles.open_kinds().size(), handles + (app.log_mutex != nullptr ? 1 : 0));
    }
}

// Some memory disks know no final paths; their files have identities all the same.
TEST(InstallLog, KnowsAFileWithoutItsPath) {
    for (const bool planted : {false, true}) {
        LogFolder session;
        session.machine.faults = {{.call = "GetFinalPathNameByHandleW", .from_then_on = true, .error = 1}};
        if (planted)
            fs::create_symlink(session.drive_c / "new", session.file);
        session.start();
        EXPECT_EQ(OpenedLog().opened(), !planted);
        EXPECT_FALSE(fs::exists(session.drive_c / "new"));
    }
    // A second file of the name, which came between the two looks, is another one.
    LogFolder session;
    session.machine.faults = {{.call = "GetFinalPathNameByHandleW", .from_then_on = true, .error = 1},
                              {.call = "CreateFileW", .nth = 3, .error = 2}};
    session.start();
    EXPECT_FALSE(OpenedLog().opened());
}

TEST(InstallLog, WritesALineOfSeveralTextsAtOnce) {
    TestSession session;
    session.machine.code_page = 65001;
    platform::Session& run = session.start();
    log_texts(u"Copy ", u"C:\\a", nullptr, u"b");
    EXPECT_EQ(run.gate.count("WriteFile"), 1u);
    EXPECT_EQ(run.gate.count("FlushFileBuffers"), 1u);
    const std::u16string pair = u"😀"; // its halves lie in two chunks, which a line's texts share
    log_texts(std::u16string(254, u'x').c_str(), u"y", pair.c_str(), std::u16string(300, u'z').c_str());
    log_text(u"");
    EXPECT_EQ(session.log(),
              "Copy C:\\ab\r\n" + std::string(254, 'x') + "y😀" + std::string(300, 'z') + "\r\n\r\n");
}

// Nobody reads it, so it isn't composed either: the argument isn't looked at.
TEST(InstallLog, ComposesNothingForAClosedLog) {
    TestSession session;
    platform::Session& run = session.start();
    close_log();
    const unsigned before = run.gate.count("MultiByteToWideChar");
    log_line(u"%S\r\n", "text");
    EXPECT_EQ(run.gate.count("MultiByteToWideChar"), before);
}

TEST(InstallLog, WritesInChunksAndFlushesOnce) {
    TestSession session;
    platform::Session& run = session.start();
    log_write(INVALID_HANDLE_VALUE, u"lost");
    EXPECT_EQ(app.log_mutex, nullptr);
    log_write(app.log_handle, u"");
    EXPECT_EQ(run.gate.count("WriteFile"), 0u);
    EXPECT_EQ(run.gate.count("FlushFileBuffers"), 1u);
    const std::u16string text =
        std::u16string(256, u'a') + std::u16string(256, u'b') + std::u16string(88, u'c');
    log_write(app.log_handle, text.c_str());
    EXPECT_EQ(run.gate.count("WriteFile"), 3u);
    EXPECT_EQ(run.gate.count("FlushFileBuffers"), 2u);
    EXPECT_EQ(session.log(), platform::to_utf8(text));
}

TEST(InstallLog, WritesAnyCodePageWhole) {
    const struct {
        const char* name;
        unsigned code_page;
        std::u16string text;
        std::string expected;
    } cases[] = {
        {"no counterpart", 1252, u"é テ", "\xe9 ?"},
        {"two bytes each", 932, std::u16string(300, u'テ'),
         [] {
             std::string bytes;
             for (int i = 0; i < 300; ++i)
                 bytes += "\x83\x65";
             return bytes;
         }()},
        {"a pair across the chunks", 65001, std::u16string(255, u'a') + u"😀b", std::string(255, 'a') + "😀b"},
    };
    for (const auto& item : cases) {
        TestSession session;
        session.machine.code_page = item.code_page;
        session.start();
        log_write(app.log_handle, item.text.c_str());
        EXPECT_EQ(session.log(), item.expected) << item.name;
    }
}

TEST(InstallLog, WritesWithoutAMutexToo) {
    TestSession session;
    session.machine.faults = {{.call = "CreateMutexW"}};
    platform::Session& run = session.start();
    log_write(app.log_handle, u"one\r\n");
    EXPECT_EQ(app.log_mutex, nullptr);
    log_write(app.log_handle, u"two\r\n");
    EXPECT_NE(app.log_mutex, nullptr);
    EXPECT_EQ(session.log(), "one\r\ntwo\r\n");
    EXPECT_TRUE(run.gate.misuses().empty());
}

TEST(InstallLog, KeepsTheLineEndOfACutLine) {
    const std::u16string filler(2000, u'x');
    const struct {
        const char* name;
        std::size_t capacity;
        const char16_t* format;
        std::string expected;
    } cases[] = {
        {"CR LF", 10, u"<%s>\r\n", "<xxxxxx\r\n"},
        {"LF", 10, u"<%s>\n", "<xxxxxxx\n"},
        {"no line end", 10, u"<%s>", "<xxxxxxxx"},
        {"no more room than a line holds", 5000, u"%s\r\n", std::string(1021, 'x') + "\r\n"},
    };
    for (const auto& item : cases) {
        TestSession session;
        session.start();
        log_line_within(item.capacity, item.format, filler.c_str());
        EXPECT_EQ(session.log(), item.expected) << item.name;
    }
    TestSession session;
    session.start();
    log_line_within(10, u"%s\r\n", u"1234567"); // fits to the last place
    log_line_within(10, u"%s\r\n", u"12345678");
    log_line(u"%s\r\n", filler.substr(0, 1021).c_str());
    EXPECT_EQ(session.log(), "1234567\r\n1234567\r\n" + std::string(1021, 'x') + "\r\n");
}

TEST(InstallLog, TellsWhichStepsFailed) {
    TestSession test;
    test.start();
    log_line(u"AddPrinter %d\r\n", 1797); // a line like any other: how it is spelt tells nothing
    log_failure(u"AddPrinter %d\r\n", 5);
    log_failure(u"AddPrinter %d\r\n", 5);
    log_failure_within(9, u"a long line\r\n");
    EXPECT_EQ(test.log(), "AddPrinter 1797\r\nAddPrinter 5\r\nAddPrinter 5\r\na long\r\n");
    const std::vector<platform::FailedStep> expected = {{u"AddPrinter 5", true}, {u"a long", true}};
    EXPECT_EQ(platform::failed_steps(), expected);
}

TEST(InstallLog, TellsThatItCouldNotBeWritten) {
    TestSession test;
    test.machine.faults = {{"WriteFile", 2, false, 112, {}}};
    test.start();
    log_line(u"first\r\n");
    log_line(u"second\r\n");
    const std::vector<platform::FailedStep> expected = {{u"writing the log", false}};
    EXPECT_EQ(platform::failed_steps(), expected);
    // Without a log a failed step is heard all the same.
    close_log();
    log_failure(u"third\r\n");
    EXPECT_EQ(platform::failed_steps().back().text, u"third");
}

TEST(InstallLog, IsClosedBetweenTwoLines) {
    TestSession test;
    platform::Session& session = test.start();
    log_line(u"first\r\n");
    const HANDLE closed = app.log_handle;
    const std::size_t before = session.gate.journal().size();
    close_log();
    std::string calls;
    for (std::size_t i = before; i < session.gate.journal().size(); ++i)
        calls += session.gate.journal()[i].call + " ";
    EXPECT_EQ(calls, "WaitForSingleObject CloseHandle ReleaseMutex ");
    const unsigned written = session.gate.count("WriteFile");
    log_write(closed, u"late\r\n"); // of a thread that took the handle before
    close_log();
    EXPECT_EQ(session.gate.count("WriteFile"), written);
    WCHAR path[256];
    app.log_handle = open_log(u"again", u".log", path, 256); // perhaps under the same value
    EXPECT_EQ(app.closed_log, INVALID_HANDLE_VALUE);
}
