// What trk new writes: the program's own readers take it, and once its maker's files are there it installs.
#include "rehearsal/new/new_medium.h"

#include "rehearsal/check/check.h"
#include "scenarios/scenario.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace fs = std::filesystem;

namespace {

using rehearsal::skeleton::Missing;
using rehearsal::skeleton::NewOptions;

NewOptions options_in(const fs::path& folder) {
    NewOptions options;
    options.folder = folder;
    options.model = "Label 300";
    options.driver = "Label 300 Driver";
    return options;
}

std::string reason_of(const NewOptions& options) {
    try {
        rehearsal::skeleton::write_skeleton(options);
    } catch (const std::runtime_error& error) {
        return error.what();
    }
    return "";
}

void supply(const NewOptions& options) {
    for (const Missing& missing : rehearsal::skeleton::missing_files(options)) {
        EXPECT_FALSE(fs::exists(options.folder / missing.path)) << missing.path;
        TestSession::write(options.folder / missing.path, "placeholder");
    }
}

} // namespace

TEST(NewMedium, InstallsOnceItsMakersFilesAreThere) {
    for (const bool usb : {false, true}) {
        TemporaryFolder folder;
        const NewOptions options = options_in(folder.path / "label300");
        rehearsal::skeleton::write_skeleton(options);
        supply(options);
        Scenario scenario;
        const fs::path medium = scenario.own_medium();
        fs::remove_all(medium);
        fs::copy(options.folder, medium, fs::copy_options::recursive);
        for (auto& search : scenario.machine.adapters[0].searches)
            search = {slp_reply("10.0.0.7", "(printer-name=A),(ieee1284-id=MDL:Label_300;)")};
        scenario.actions = usb ? usb_install : network_install;
        const rehearsal::Outcome outcome = scenario.run();
        expect_clean(outcome);
        EXPECT_EQ(rehearsal::find_failures(outcome), std::vector<std::string>());
        if (usb)
            continue;
        ASSERT_NE(queue_of(outcome, u"Label 300"), nullptr);
        EXPECT_EQ(queue_of(outcome, u"Label 300")->data.size(), 2u);
        EXPECT_TRUE(has(control_of(outcome, 101, 1010).text, "Replace this text"));
    }
}

// The check names nothing but what only the maker has.
TEST(NewMedium, PassesTheCheckButForItsMakersFiles) {
    TemporaryFolder folder;
    const NewOptions options = options_in(folder.path / "label300");
    rehearsal::skeleton::write_skeleton(options);
    const std::vector<Missing> missing = rehearsal::skeleton::missing_files(options);
    for (const rehearsal::check::Finding& finding : rehearsal::check::check_medium(options.folder)) {
        const std::string whole = finding.place.file + " " + finding.reason;
        const bool makers = std::any_of(missing.begin(), missing.end(), [&](const Missing& one) {
            return has(whole, fs::path(one.path).filename().string());
        });
        EXPECT_TRUE(makers || finding.severity == rehearsal::check::Severity::note)
            << finding.id << ": " << whole;
    }
    // Which it would, were there something to name.
    const auto findings_in = [&](const std::string& file) {
        const auto findings = rehearsal::check::check_medium(options.folder);
        return std::count_if(findings.begin(), findings.end(),
                             [&](const auto& finding) { return finding.place.file == file; });
    };
    EXPECT_EQ(findings_in("wrenchbay/media.inf"), 0);
    replace_in_file(options.folder / "wrenchbay" / "media.inf", "[Media]", "[Meda]");
    EXPECT_GT(findings_in("wrenchbay/media.inf"), 0);
}

TEST(NewMedium, HasTheLanguagesThatWereAskedFor) {
    TemporaryFolder folder;
    NewOptions options = options_in(folder.path / "m");
    options.languages = {"DEU", "JPN"};
    rehearsal::skeleton::write_skeleton(options);
    std::vector<std::string> names;
    for (const fs::directory_entry& entry : fs::directory_iterator(options.folder / "licenses"))
        names.push_back(entry.path().filename().string());
    std::sort(names.begin(), names.end());
    EXPECT_EQ(names, (std::vector<std::string>{"license.txt", "license_DEU.txt", "license_JPN.txt"}));
}

TEST(NewMedium, OverwritesNothing) {
    TemporaryFolder folder;
    const NewOptions options = options_in(folder.path / "m");
    fs::create_directory(options.folder);
    EXPECT_EQ(reason_of(options), "") << "an empty folder is taken";
    TestSession::write(options.folder / "wrenchbay" / "media.inf", "mine");
    EXPECT_EQ(reason_of(options), "is there already and not an empty folder");
    EXPECT_EQ(TestSession::read(options.folder / "wrenchbay" / "media.inf"), "mine");
    NewOptions below = options_in(folder.path / "m" / "wrenchbay" / "media.inf" / "x");
    EXPECT_NE(reason_of(below), "");
    EXPECT_EQ(std::distance(fs::directory_iterator(folder.path), fs::directory_iterator()), 1)
        << "nothing half-made";
}

TEST(NewMedium, RefusesNamesThatCannotWork) {
    const struct {
        const char* name;
        const char* model;
        const char* driver;
        std::vector<std::string> languages;
        bool good;
    } cases[] = {
        {"good", "Label 300", "Label 300 Driver", {"ENU"}, true},
        {"no model", "", "D", {}, false},
        {"an underscore", "Label_300", "D", {}, false},
        {"a folder's separator", "Label/300", "D", {}, false},
        {"a comma", "Label,300", "D", {}, false},
        {"a token", "L", "%D%", {}, false},
        {"a quote", "L", "D\"", {}, false},
        {"a letter of no code page", "L", "Dr\xC3\xBC", {}, false},
        {"a point at the end", "L.", "D", {}, false},
        {"no letter", "- -", "D", {}, false},
        {"another language", "L", "D", {"ITA"}, false},
    };
    for (const auto& one : cases) {
        NewOptions options;
        options.model = one.model;
        options.driver = one.driver;
        options.languages = one.languages;
        EXPECT_EQ(rehearsal::skeleton::refuse_names(options).empty(), one.good) << one.name;
    }
    NewOptions longest = options_in("m");
    longest.driver = std::string(65, 'D');
    EXPECT_NE(rehearsal::skeleton::refuse_names(longest), "");
}
