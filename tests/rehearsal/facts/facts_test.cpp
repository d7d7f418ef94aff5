// The facts of a medium: names and places as an installation makes them.
#include "rehearsal/facts.h"

#include "harness/test_session.h"

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include <algorithm>

namespace fs = std::filesystem;

namespace {

bool has_item(const std::vector<std::string>& list, const std::string& item) {
    return std::find(list.begin(), list.end(), item) != list.end();
}

struct OwnMedium {
    OwnMedium() { fs::copy(TRK_SAMPLE_MEDIUM, path, fs::copy_options::recursive); }
    void replace_in_inf(const std::string& from, const std::string& to) const {
        std::string text = TestSession::read(path / "Drivers" / "lbl.inf");
        for (std::size_t place = 0; (place = text.find(from, place)) != std::string::npos; place += to.size())
            text.replace(place, from.size(), to);
        TestSession::write(path / "Drivers" / "lbl.inf", text);
    }
    TemporaryFolder folder;
    fs::path path = folder.path / "medium";
};

} // namespace

TEST(MediumFacts, AreThoseOfAnInstallation) {
    const rehearsal::MediumFacts facts = rehearsal::collect_facts(TRK_SAMPLE_MEDIUM);
    EXPECT_EQ(facts.failures, std::vector<std::string>());
    EXPECT_EQ(facts.driver + " " + facts.version + " " + facts.inf, "Label 100 Driver 1.2.3.4 lbl.inf");
    EXPECT_EQ(facts.model, "Label_100_Series");
    EXPECT_TRUE(facts.usb);
    ASSERT_EQ(facts.models.size(), 2u);
    EXPECT_EQ(facts.models[1].environment + " " + facts.models[1].hardware_id,
              "Windows x64 usbprint\\label100");
    EXPECT_EQ(facts.queue, "Label 100 Series");
    EXPECT_EQ(facts.label_sizes, 9u);
    EXPECT_EQ(facts.port, "TRK_<address>");
    EXPECT_EQ(facts.tcp_port, 9100u);
    EXPECT_EQ(facts.package, "%SystemRoot%\\System32\\DriverStore\\FileRepository\\lbl.inf_*\\lbl.inf");
    EXPECT_TRUE(has_item(facts.folders, "%ProgramFiles%\\Vorlane\\Label 100 Series"));
    EXPECT_TRUE(has_item(
        facts.folders, "%ProgramData%\\Microsoft\\Windows\\Start Menu\\Programs\\Vorlane\\Label 100 Series"));
    EXPECT_TRUE(has_item(facts.files, "%ProgramFiles%\\Vorlane\\Label 100 Series\\inf\\lbl.inf"));
    ASSERT_EQ(facts.shortcuts.size(), 2u);
    EXPECT_TRUE(facts.shortcuts[0].file.ends_with("\\Label 100 Driver Uninstall.lnk"));
    EXPECT_EQ(facts.shortcuts[0].target, "%ProgramFiles%\\Vorlane\\Label 100 Series\\trk_remove.exe");
    EXPECT_EQ(facts.log, "%SystemRoot%\\Temp\\trk_install.log");
}

TEST(MediumFacts, FollowTheMedium) {
    const OwnMedium medium;
    medium.replace_in_inf("Label 100 Driver", "Other Driver");
    medium.replace_in_inf("Label_100_Series", "Other_Series");
    medium.replace_in_inf("usbprint\\label100", "other\\label100");
    const rehearsal::MediumFacts facts = rehearsal::collect_facts(medium.path);
    EXPECT_EQ(facts.failures, std::vector<std::string>());
    EXPECT_FALSE(facts.usb);
    EXPECT_EQ(facts.driver + " " + facts.queue, "Other Driver Other Series");
    EXPECT_TRUE(has_item(facts.folders, "%ProgramFiles%\\Vorlane\\Other Series"));
    const nlohmann::json json = nlohmann::json::parse(rehearsal::facts_as_json(facts));
    EXPECT_EQ(json["queue"]["name"], "Other Series");
    EXPECT_NE(rehearsal::facts_as_text(facts).find("queue           Other Series, or"), std::string::npos);
}

TEST(MediumFacts, TellWhyThereIsNoInstallation) {
    const OwnMedium medium;
    fs::remove(medium.path / "wrenchbay" / "portlynx.exe");
    const rehearsal::MediumFacts facts = rehearsal::collect_facts(medium.path);
    EXPECT_EQ(facts.driver, "Label 100 Driver");
    EXPECT_FALSE(facts.failures.empty());
    EXPECT_EQ(facts.queue, "");
    EXPECT_EQ(nlohmann::json::parse(rehearsal::facts_as_json(facts))["queue"], nullptr);
    fs::remove(medium.path / "Drivers" / "lbl.inf");
    EXPECT_THROW(rehearsal::collect_facts(medium.path), std::runtime_error);
}
