// Logs that real rehearsals wrote, read back: what each run was, what failed in it and what it left.
#include "machine/machine_json.h"
#include "rehearsal/log/runs.h"
#include "scenarios/scenario.h"

#include <gtest/gtest.h>

namespace {

using namespace rehearsal::logs;

constexpr std::uint64_t package_version = 0x0001000200030004;
constexpr std::uint64_t older_version = 0x0001000200030003;

Run read_one(Scenario& scenario) {
    const Reading reading = read_log(scenario.run().log);
    EXPECT_EQ(reading.runs.size(), 1u);
    return reading.runs.empty() ? Run() : reading.runs[0];
}

// "area: ERROR_NAME (n)" of what failed, one behind the other.
std::string failures_of(const rehearsal::logs::Run& run) {
    std::string text;
    for (const Step& step : run.steps)
        text += (text.empty() ? "" : ", ") + std::string(area_name(step.line->area)) +
                (step.error ? ": " + shown_error(*step.error) : "");
    return text;
}

bool has_leftover(const rehearsal::logs::Run& run, const std::string& kind) {
    for (const Leftover& leftover : run.leftovers)
        if (leftover.kind == kind)
            return true;
    return false;
}

struct Case {
    const char* name;
    std::function<void(Scenario&)> prepare;
    std::vector<std::string> actions;
    char state;
    Verdict verdict;
    std::string failures;
    std::string left; // a kind that is there, or with '-' in front one that isn't
};

void fail(Scenario& scenario, const char* call, std::uint32_t error, const char* argument = "",
          bool from_then_on = false) {
    scenario.machine.faults = {{call, 1, from_then_on, error, argument}};
}

// Made at its first use, when the actions that it names are.
const std::vector<Case>& cases() {
    static const std::vector<Case> all = {
        {"all well", [](Scenario&) {}, network_install, 'D', Verdict::installed, "", "default printer"},
        {"by USB", [](Scenario&) {}, usb_install, 'D', Verdict::installed, "", "-queue"},
        {"nothing done", [](Scenario&) {}, {"close"}, 'D', Verdict::left, "", "-program folder"},
        {"driver there", [](Scenario& one) { one.add_driver(package_version); }, network_install, 'A',
         Verdict::installed, "", "queue"},
        {"older driver",
         [](Scenario& one) { one.add_driver(older_version); },
         {},
         'C',
         Verdict::blocked,
         "driver package and starting state",
         "-driver"},
        {"no USB in the package",
         [](Scenario& one) {
             replace_in_file(one.own_medium() / "Drivers" / "lbl.inf", "usbprint\\", "other\\");
         },
         {"select 0", "press 1015", "tick 1011", "press 1"},
         'E',
         Verdict::installed,
         "",
         "-default printer"},
        {"driver there, no USB in the package",
         [](Scenario& one) {
             one.add_driver(package_version);
             replace_in_file(one.own_medium() / "Drivers" / "lbl.inf", "usbprint\\", "other\\");
         },
         {"select 0", "press 1015", "tick 1011", "press 1"},
         'B',
         Verdict::installed,
         "",
         "-driver"},
        {"no INF",
         [](Scenario& one) { std::filesystem::remove(one.own_medium() / "Drivers" / "lbl.inf"); },
         {},
         0,
         Verdict::failed,
         "driver package and starting state",
         "-driver"},
        {"an INF in another form",
         [](Scenario& one) {
             replace_in_file(one.own_medium() / "Drivers" / "lbl.inf", "Class=P", "Class = P");
         },
         {},
         0,
         Verdict::failed,
         "",
         "-driver"},
        {"a file missing",
         [](Scenario& one) { std::filesystem::remove(one.own_medium() / "wrenchbay" / "portlynx.exe"); },
         network_install, 'D', Verdict::failed,
         "program files and shortcuts: ERROR_FILE_NOT_FOUND (2), program files and shortcuts",
         "program folder"},
        {"the optional file missing",
         [](Scenario& one) { std::filesystem::remove(one.own_medium() / "wrenchbay" / "profilenames.inf"); },
         network_install, 'D', Verdict::installed, "", "queue"},
        {"package refused", [](Scenario& one) { fail(one, "UploadPrinterDriverPackageW", 0xE000024B); },
         network_install, 'D', Verdict::failed, "driver: ERROR_FILE_HASH_NOT_IN_CATALOG (0xE000024B), driver",
         "-driver package"},
        {"driver refused", [](Scenario& one) { fail(one, "InstallPrinterDriverFromPackageW", 5); },
         network_install, 'D', Verdict::failed, "driver: E_ACCESSDENIED (0x80070005), driver",
         "driver package"},
        {"port refused", [](Scenario& one) { fail(one, "XcvDataW", 5, "AddPort"); }, network_install, 'D',
         Verdict::incomplete,
         "port: ERROR_ACCESS_DENIED (5), queue and label sizes: ERROR_UNKNOWN_PORT (1796)", "-port"},
        {"queue refused", [](Scenario& one) { fail(one, "AddPrinterW", 1801); }, network_install, 'D',
         Verdict::incomplete, "queue and label sizes: ERROR_INVALID_PRINTER_NAME (1801)", "-queue"},
        {"one label refused", [](Scenario& one) { fail(one, "SetPrinterDataExA", 5); }, network_install, 'D',
         Verdict::incomplete, "queue and label sizes", "queue"},
        {"no row in the media table",
         [](Scenario& one) {
             replace_in_file(one.own_medium() / "wrenchbay" / "media.inf", "[Media]", "[Meda]");
         },
         network_install, 'D', Verdict::incomplete, "", "queue"},
        {"no shortcut", [](Scenario& one) { fail(one, "CoCreateInstance", 0x80040154); }, network_install,
         'D', Verdict::incomplete, "program files and shortcuts", "Start-menu group"},
        {"no network",
         [](Scenario& one) { fail(one, "GetAdaptersInfo", 232, "", true); },
         {"press 1014"},
         'D',
         Verdict::failed,
         "network search, network search",
         "-port"},
        {"no printer",
         [](Scenario& one) { one.machine.adapters[0].searches.clear(); },
         {"press 1014"},
         'D',
         Verdict::failed,
         "",
         "-port"},
        {"a typed address",
         [](Scenario& one) { one.machine.adapters[0].searches.clear(); },
         {"press 1014", "press 1016", "type 1000 10.1.2.3", "press 1", "select 0", "press 1015", "tick 1011",
          "press 1"},
         'D',
         Verdict::installed,
         "",
         "port"},
    };
    return all;
}

} // namespace

TEST(RehearsedLog, TellsStateFailuresAndVerdict) {
    for (const Case& one : cases()) {
        Scenario scenario;
        one.prepare(scenario);
        scenario.actions = one.actions;
        const rehearsal::logs::Run run = read_one(scenario);
        EXPECT_EQ(run.state, one.state) << one.name;
        EXPECT_EQ(std::string(verdict_name(run.verdict)), verdict_name(one.verdict))
            << one.name << ": " << run.reason;
        EXPECT_EQ(failures_of(run), one.failures) << one.name;
        const bool there = one.left[0] != '-';
        EXPECT_EQ(has_leftover(run, one.left.substr(there ? 0 : 1)), there) << one.name << ": " << one.left;
        for (const ReadLine& line : run.lines)
            EXPECT_NE(line.known, nullptr) << one.name << ": " << line.text;
    }
}

TEST(RehearsedLog, TellsWhatWasInstalledFromWhere) {
    Scenario scenario;
    scenario.actions = network_install;
    const rehearsal::logs::Run run = read_one(scenario);
    EXPECT_EQ(run.bits, 64);
    EXPECT_EQ(language_text(run), "English, as the system has it");
    EXPECT_EQ(run.medium, "D:\\medium");
    EXPECT_EQ(run.driver + " " + run.version + " " + run.model, "Label 100 Driver 1.2.3.4 Label_100_Series");
    EXPECT_EQ(run.road + " " + run.chosen, "network 10.0.0.7");
    ASSERT_GE(run.printers.size(), 2u);
    EXPECT_EQ(run.printers[0].address + " " + run.printers[0].name, "10.0.0.7 Shelf A");
    std::string left;
    for (const Leftover& leftover : run.leftovers)
        left += leftover.kind + ": " + leftover.what + "\n";
    EXPECT_TRUE(has(left, std::string("program folder: ") + install_folder + " (13 files copied by name)\n"))
        << left;
    EXPECT_TRUE(has(left, "shortcut: Label 100 Driver Uninstall.lnk\n")) << left;
    EXPECT_TRUE(has(left, "queue: Label 100 Series with 9 label sizes\n")) << left;
}

// The machines of the samples, which people rehearse with.
TEST(RehearsedLog, IsReadFromEachSampleMachine) {
    const struct {
        const char* machine;
        std::vector<std::string> actions;
        Verdict verdict;
        std::size_t notices;
        const char* language;
    } rows[] = {
        {"two_printers.json", network_install, Verdict::installed, 0, "English, as the system has it"},
        {"german.json", usb_install, Verdict::installed, 0, "German, as the system has it"},
        {"older_driver.json", {}, Verdict::blocked, 0, "English, as the system has it"},
        {"faults.json", network_install, Verdict::incomplete, 0, "English, as the system has it"},
        {"no_adapter.json", {"press 1014"}, Verdict::failed, 0, "English, as the system has it"},
        {"port_taken.json", {"press 1014"}, Verdict::failed, 1, "English, as the system has it"},
    };
    const std::filesystem::path machines =
        std::filesystem::path(TRK_SAMPLE_MEDIUM).parent_path() / "machines";
    for (const auto& row : rows) {
        Scenario scenario;
        scenario.machine = platform::load_machine(machines / row.machine);
        scenario.actions = row.actions;
        const rehearsal::logs::Run run = read_one(scenario);
        EXPECT_EQ(std::string(verdict_name(run.verdict)), verdict_name(row.verdict))
            << row.machine << ": " << run.reason;
        EXPECT_EQ(run.notices.size(), row.notices) << row.machine;
        EXPECT_EQ(language_text(run), row.language) << row.machine;
    }
}

// Wherever the file ends, nothing is told that the lines don't say.
TEST(RehearsedLog, CutAnywhereIsNeverReadAsInstalled) {
    Scenario scenario;
    scenario.actions = network_install;
    const std::string log = scenario.run().log;
    const std::size_t first_label = log.find("\r\nAdd Label");
    ASSERT_NE(first_label, std::string::npos);
    const std::size_t begun = log.find("run_installer");
    for (std::size_t end = 0; end < first_label; end += 7) {
        const Reading reading = read_log(log.substr(0, end));
        for (const rehearsal::logs::Run& run : reading.runs) {
            EXPECT_NE(run.verdict, Verdict::installed) << end;
            EXPECT_TRUE(end <= begun || !is_good(run.verdict)) << end;
        }
    }
    // Nor does a missing beginning turn a failure good.
    scenario.machine.faults = {{"AddPrinterW", 1, false, 1797, ""}};
    const std::string failed = scenario.run().log;
    const Reading tail = read_log(failed.substr(failed.find("License accepted")));
    ASSERT_EQ(tail.runs.size(), 1u);
    EXPECT_FALSE(tail.runs[0].begins);
    EXPECT_FALSE(is_good(tail.runs[0].verdict));
}
