#include "rehearsal/check/subject_test.h"

#include <gtest/gtest.h>

namespace {

const std::string monitor_inf = "name=Label Port\r\nprefix=LBL\r\nDLL32=lblmon.dll\r\nDLL64=lblmon64.dll\r\n";

// All that the layout has, with the given INF.
tests::MediumFiles monitor_medium(const std::string& inf) {
    return {{"trk_remove.exe", "x"},           {"trk_remove64.exe", "x"},
            {"monitor/lblmon.inf", inf},       {"monitor/x86/zelcore.dll", "x"},
            {"monitor/x86/zelmodel.dat", "x"}, {"monitor/x86/zelmodel.dll", "x"},
            {"monitor/x86/iconv.dll", "x"},    {"monitor/profiles/a.tkp", "x"}};
}

tests::MediumFiles changed(tests::MediumFiles files, std::size_t index, const std::string& path) {
    files[index].first = path;
    return files;
}

struct MonitorCase {
    const char* name;
    tests::MediumFiles files;
    std::vector<std::string> expected;
};

class MonitorCheck : public testing::TestWithParam<MonitorCase> {};

TEST_P(MonitorCheck, Finds) {
    EXPECT_EQ(tests::reasons_found(GetParam().files, rehearsal::check::check_monitor), GetParam().expected);
}

const MonitorCase monitor_cases[] = {
    {"None", {{"wrenchbay/media.inf", ""}}, {}},
    {"Good", monitor_medium(monitor_inf), {}},
    {"Beside", {{"monitor.inf", "name=x\r\n"}}, {"monitor-key: the reader finds no \"prefix=\""}},
    {"Order",
     monitor_medium("prefix=LBL\r\n" + monitor_inf.substr(0, 17) + monitor_inf.substr(29)),
     {"monitor-key: the reader finds no \"prefix=\" behind the value before: the keys have an order"}},
    {"Blanks",
     monitor_medium("name=Label Port\r\nprefix=LBL\r\nDLL32 = lblmon.dll\r\n"),
     {"monitor-key: the reader finds no \"DLL32=\"; this line reads \"DLL32 = lblmon.dll\""}},
    {"Beyond",
     monitor_medium("name=a\r\n" + std::string(4095, ';') + "\r\nprefix=b\r\n"),
     {"monitor-key: the reader finds no \"prefix=\" within the first 4,095 bytes"}},
    {"EmptyValue",
     monitor_medium("name=\r\nprefix=a\r\nDLL32=b\r\nDLL64=c"),
     {"monitor-key: no value follows \"name=\""}},
    {"Quotes",
     monitor_medium("name=\"Label Port\"\r\nprefix=a\r\nDLL32=b \r\nDLL64=c"),
     {"monitor-value: \"name=\"Label Port\"\": blanks and quotes are part of the value",
      "monitor-value: \"DLL32=b \": blanks and quotes are part of the value"}},
    {"LongValue",
     monitor_medium("name=" + std::string(64, 'n') + "\r\nprefix=a\r\nDLL32=b\r\nDLL64=c"),
     {"monitor-value: \"name=" + std::string(25, 'n') + "..." + std::string(15, 'n') +
      "\": only 63 bytes are taken"}},
    {"Wide",
     monitor_medium(tests::utf16(monitor_inf)),
     {"monitor-encoding: the file is UTF-16 or has a zero byte in it"}},
    {"NoInf",
     changed(monitor_medium(monitor_inf), 2, "monitor/lblmon.txt"),
     {"monitor-inf: no *.inf lies in the folder"}},
    {"SeveralInfs",
     changed(monitor_medium(monitor_inf), 3, "monitor/z.inf"),
     {"monitor-several: 2 *.inf files lie in the folder, and only the first is read",
      "monitor-file: monitor/x86/zelcore.dll isn't there"}},
    {"NoProfiles",
     changed(monitor_medium(monitor_inf), 7, "profiles/a.tkp"),
     {"monitor-profiles: no *.tkp lies in monitor/profiles"}},
};

INSTANTIATE_TEST_SUITE_P(, MonitorCheck, testing::ValuesIn(monitor_cases),
                         [](const auto& each) { return each.param.name; });

} // namespace
