#include "harness/test_session.h"
#include "package/monitor_inf.h"

#include <gtest/gtest.h>

namespace {

std::string shown(const MonitorInfo& info) {
    std::string text;
    for (const WCHAR* field : {info.name, info.prefix, info.DLL32, info.DLL64})
        text += platform::to_utf8(field) + "|";
    return text;
}

} // namespace

TEST(MonitorInf, ScansTheKeysInTheirOrder) {
    const std::string long_value(100, 'x');
    const struct {
        const char* name;
        std::string text;
        std::string expected;
        std::string log;
    } cases[] = {
        {"all", "name=Label Port\r\nprefix=LBL\nDLL32=lblmon.dll\rDLL64=lblmon64.dll",
         "Label Port|LBL|lblmon.dll|lblmon64.dll|", "Label Port\r\n"},
        {"prefix first", "prefix=LBL\nname=N\nDLL32=a.dll", "N|old|old|old|", "N\r\n"},
        {"inside a word", "filename=abc \r\n", "abc |old|old|old|", "abc \r\n"},
        {"empty value", "name=\nprefix=P", "|P|old|old|", "\r\n"},
        {"no keys", "Name=N", "old|old|old|old|", ""},
        {"a value too long", "name=" + long_value + "\nprefix=P", std::string(63, 'x') + "|P|old|old|",
         std::string(63, 'x') + "\r\n"},
        {"a key in the part cut off", "name=" + long_value + "prefix=P",
         std::string(63, 'x') + "|old|old|old|", std::string(63, 'x') + "\r\n"},
    };
    for (const auto& item : cases) {
        TestSession session;
        session.start();
        MonitorInfo info = {u"", u"old", u"", u"old", u"old", u"old"};
        scan_monitor_info(item.text.c_str(), &info);
        EXPECT_EQ(shown(info), item.expected) << item.name;
        EXPECT_EQ(session.log(), item.log) << item.name;
    }
}

TEST(MonitorInf, ReadsTheFirstFileFound) {
    const struct {
        const char* name;
        std::vector<std::string> files;
        int use_monitor_folder;
        std::size_t folder_length;
        int result;
        const char* log; // behind its first line
        const char16_t* file;
    } cases[] = {
        {"own folder", {"monitor.inf", "a.inf"}, 0, 9, 1, "monitor.inf\r\n", u"monitor.inf"},
        {"missing", {"a.inf"}, 0, 9, 0, "FindFirstFile error!\r\n", u""},
        {"monitor folder", {"monitor/b.inf", "monitor/c.inf"}, 1, 9, 1, "monitor/b.inf\r\n", u"b.inf"},
        {"path too long",
         {"monitor/longer_than_that.inf"},
         1,
         235,
         0,
         "file open failed\r\n",
         u"longer_than_that.inf"},
        {"pattern too long", {"monitor.inf"}, 0, 244, 0, "FindFirstFile error!\r\n", u""},
        {"folder too long", {"monitor.inf"}, 0, 256, 0, "FindFirstFile error!\r\n", u""},
    };
    for (const auto& item : cases) {
        SCOPED_TRACE(item.name);
        TestSession session;
        session.machine.current_folder = u"D:\\" + std::u16string(item.folder_length - 3, u'm');
        for (const std::string& file : item.files)
            TestSession::write(session.medium / file, "name=" + file);
        platform::Session& run = session.start();
        const std::size_t handles = run.handles.open_kinds().size();
        MonitorInfo info = {};
        EXPECT_EQ(read_monitor_inf(&info, item.use_monitor_folder), item.result);
        EXPECT_EQ(session.log(), "Finding monitor name....\r\n" + std::string(item.log));
        EXPECT_EQ(std::u16string(info.file), item.file);
        if (item.result != 0) {
            EXPECT_EQ(std::u16string(info.folder),
                      item.use_monitor_folder ? u"D:\\mmmmmm\\monitor\\" : u"D:\\mmmmmm\\");
        }
        EXPECT_EQ(run.handles.open_kinds().size(), handles + (app.log_mutex != nullptr ? 1 : 0));
    }
}

TEST(MonitorInf, ReadsThePortNumber) {
    const struct {
        const char* name;
        std::string bytes;
        int result;
        int port; // 5: untouched
    } cases[] = {
        {"plain", "[x]\r\nPort=9100\r\n", 1, 9100},
        {"inside a word", "XPort= \r\n-12", 1, -12},
        {"no digits", "Port=abc", 1, 0},
        {"other case", "port=9100", 0, 5},
        {"empty", "", 0, 5},
        {"second piece", std::string(4095, '\n') + "Port=9100", 1, 9100},
        {"entry cut", std::string(4092, '\n') + "Port=9100", 0, 5},
        {"number cut", std::string(4088, '\n') + "Port=9100", 1, 91},
        {"behind a NUL", std::string(1, '\0') + "Port=9100", 0, 5},
    };
    for (const auto& item : cases) {
        TestSession session;
        TestSession::write(session.drive_c / "p.txt", item.bytes);
        session.start();
        int port = 5;
        EXPECT_EQ(read_port_number(u"C:\\p.txt", &port), item.result) << item.name;
        EXPECT_EQ(port, item.port) << item.name;
    }
    TestSession session;
    session.start();
    int port = 5;
    EXPECT_EQ(read_port_number(u"C:\\missing.txt", &port), 0);
    EXPECT_EQ(session.log(), "file open failed\r\n");
}
