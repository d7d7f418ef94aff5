// The machines that come with the tool: each line of their list is held against a whole run.
#include "rehearsal/judge.h"
#include "rehearsal/profiles.h"
#include "scenarios/scenario.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <stdexcept>

namespace {

using rehearsal::profile_machine;

const std::vector<std::string> typed_install = {"press 1014", "press 1016", "type 1000 10.0.0.99", "press 1",
                                                "select 0",   "press 1015", "tick 1011",           "press 1"};
const std::vector<std::string> leave = {};
const char installed[] =
    "OK: queue \"Label 100 Series\" on TRK_10.0.0.7, driver 1.2.3.4, 9 label sizes, default";

struct Promise {
    std::string name;
    const std::vector<std::string>& actions;
    int status;
    std::string verdict; // in its line
    std::string shown;   // on a control or box
};

const Promise promises[] = {
    {"clean-x64", network_install, 0, installed, "Available Network Printers"},
    {"clean-x86", network_install, 0, installed, "Available Network Printers"},
    {"english-us", network_install, 0, installed, "I accept the terms"},
    {"english-uk", network_install, 0, installed, "I accept the terms"},
    {"french", network_install, 0, installed, "J'accepte les termes"},
    {"german", network_install, 0, installed, "Ich stimme den Bedingungen"},
    {"spanish", network_install, 0, installed, "Acepto los t\u00e9rminos"},
    {"chinese", network_install, 0, installed, "\u53ef\u7528\u7684\u7f51\u7edc\u6253\u5370\u673a"},
    {"japanese", network_install, 0, installed, "\u4f7f\u7528\u8a31\u8afe\u5951\u7d04"},
    {"driver-older", leave, 0, "OK: ", "1.2.3.3<>1.2.3.4"},
    {"driver-same", network_install, 0, installed, ""},
    {"driver-newer", leave, 0, "OK: ", "1.2.3.5<>1.2.3.4"},
    {"name-taken", network_install, 0, "OK: queue \"Label 100 Series 2\" on TRK_10.0.0.7", ""},
    {"spooler-stopped", network_install, 1, "log: UploadPrinterDriverPackage error 800706ba",
     "failed to install"},
    {"no-right-to-write", network_install, 1, "log: Error setting up driver files!", "failed to install"},
    {"port-taken", network_install, 0, installed, ""},
    {"discovery-port-taken", network_install, 0, installed, ""},
    {"no-network", typed_install, 1, "log: No active networks found!", "successfully installed"},
    {"two-adapters", network_install, 0, installed, "192.168.1.9"},
    {"slow-service", network_install, 0, installed, ""},
    {"no-room", network_install, 1, "log: copy file failed 0 112", "failed to install"},
    {"driver-refused", network_install, 1, "log: UploadPrinterDriverPackage error 800f0248",
     "failed to install"},
};

bool showed(const rehearsal::Outcome& outcome, const std::string& text) {
    std::string all;
    for (const platform::BoxView& box : outcome.boxes)
        all += box.text + "\n";
    for (const platform::DialogView& dialog : outcome.dialogs)
        for (const platform::ControlView& control : dialog.controls) {
            all += control.text + "\n";
            for (const std::string& row : control.rows)
                all += row + "\n";
        }
    return has(all, text);
}

TEST(Profiles, EndAsTheirLinesSay) {
    std::vector<std::string> listed;
    for (const rehearsal::Profile& profile : rehearsal::profiles())
        listed.push_back(profile.name);
    std::vector<std::string> promised;
    for (const Promise& promise : promises) {
        SCOPED_TRACE(promise.name);
        promised.push_back(promise.name);
        Scenario scenario;
        scenario.machine = profile_machine(promise.name, scenario.medium());
        scenario.actions = promise.actions;
        const rehearsal::Outcome outcome = scenario.run();
        const rehearsal::Verdict verdict =
            rehearsal::judge_install(outcome, scenario.medium(), scenario.drive_c());
        EXPECT_EQ(verdict.status, promise.status) << verdict.line;
        EXPECT_TRUE(has(verdict.line, promise.verdict)) << verdict.line;
        EXPECT_TRUE(showed(outcome, promise.shown));
        if (promise.status == 0) {
            EXPECT_EQ(outcome.problem, "");
        }
    }
    EXPECT_EQ(listed, promised);
}

// What is a queue's or a service's alone shows on the machine, not in the verdict.
TEST(Profiles, AreTheMachinesThatTheySay) {
    Scenario scenario;
    const auto named = [&](const char* name) { return profile_machine(name, scenario.medium()); };
    EXPECT_EQ(named("name-taken").spooler.queues.at(0).name, u"Label 100 Series");
    EXPECT_EQ(named("port-taken").spooler.ports.at(1).name, u"TRK_10.0.0.7");
    EXPECT_EQ(named("slow-service").services.at(0).on_stop.at(0).milliseconds, 60'000u);
    scenario.machine = named("discovery-port-taken");
    scenario.actions = network_install;
    EXPECT_EQ(scenario.run().warnings, 1u);
    Scenario same;
    same.machine = named("driver-same");
    same.actions = network_install;
    EXPECT_TRUE(same.run().after.spooler.packages.empty()) << "the driver serves as it is";
}

TEST(Profiles, TakeDriverAndModelFromTheMedium) {
    Scenario scenario;
    const std::filesystem::path inf = scenario.own_medium() / "Drivers/lbl.inf";
    const std::string text = TestSession::read(inf);
    TestSession::write(inf,
                       replaced(replaced(text, "1.2.3.4", "7.0.0.0"), "Label 100 Driver", "Other Driver"));
    const auto driver = [&](const char* name) {
        return profile_machine(name, scenario.medium()).spooler.drivers.at(0);
    };
    EXPECT_EQ(driver("driver-older").name, u"Other Driver");
    EXPECT_EQ(driver("driver-older").version, 0x0006'ffff'ffff'ffffu);
    EXPECT_EQ(driver("driver-same").version, 0x0007'0000'0000'0000u);
    EXPECT_EQ(driver("driver-newer").version, 0x0007'0000'0000'0001u);
    std::filesystem::remove(inf);
    EXPECT_EQ(driver("driver-same").name, u"Label Driver") << "made up";
}

TEST(Profiles, AskWhatAMistypedNameMeant) {
    try {
        profile_machine("germn", TRK_SAMPLE_MEDIUM);
        FAIL();
    } catch (const std::runtime_error& error) {
        EXPECT_STREQ(error.what(),
                     "there is no profile \"germn\" (did you mean german?); trk profiles lists them");
    }
}

} // namespace
