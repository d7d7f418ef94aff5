// What printers make of findings, and how a run ends.
#include "rehearsal/check/check.h"
#include "rehearsal/check/print.h"
#include "rehearsal/check/subjects.h"
#include "rehearsal/check/trial_medium.h"
#include "rehearsal/exit_status.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <sstream>

using namespace rehearsal::check;

namespace {

Report sample_report() {
    Report report;
    report.medium = "the medium";
    report.files = 41;
    report.rules = {{"inf-class", Severity::error, "Title", "Cause.", "Remedy.", "Class = Printer"},
                    {"files-empty", Severity::warning, "Empty", "Cause.", "Remedy.", "x"},
                    {"files-case", Severity::warning, "Case", "Cause.", "Remedy.", "x"}};
    report.findings = {
        {"inf-class", Severity::error, {"Drivers/a b.inf", 12, 1}, "\"<x>\" & isn't\x01 found", "Do it."},
        {"files-empty", Severity::warning, {"wrenchbay/media.inf"}, "it is empty", "Fill it."},
        {"files-case", Severity::note, {}, "who knows", "Look."},
    };
    return report;
}

template<class Printer, class... More>
std::string printed(Printer printer, const More&... more) {
    std::ostringstream out;
    printer(out, sample_report(), more...);
    return out.str();
}

// What the whole sub-command does with the options.
struct Ended {
    int status = 0;
    std::string out, complaints;
};

Ended run(const CheckOptions& options) {
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    const int status = run_check(options);
    return {status, testing::internal::GetCapturedStdout(), testing::internal::GetCapturedStderr()};
}

CheckOptions options_for(const std::filesystem::path& medium) {
    CheckOptions options;
    options.medium = medium;
    options.brief = true;
    return options;
}

} // namespace

TEST(CheckText, HasPlaceReasonAndId) {
    EXPECT_EQ(printed(print_text, TextStyle{}),
              "Drivers/a b.inf:12:1: error: \"<x>\" & isn't? found [inf-class]\n    Do it.\n"
              "wrenchbay/media.inf: warning: it is empty [files-empty]\n    Fill it.\n"
              ".: unjudged: who knows [files-case]\n    Look.\n"
              "1 error, 1 warning, 1 unjudged in 41 files\n");
    EXPECT_EQ(printed(print_text, TextStyle{true, true}).substr(0, 43),
              "Drivers/a b.inf:12:1: \x1b[1;31merror\x1b[0m: \"<x");
}

TEST(CheckJson, HasEveryField) {
    const nlohmann::json json = nlohmann::json::parse(printed(print_json));
    EXPECT_EQ(json["errors"], 1);
    EXPECT_EQ(json["unjudged"], 1);
    EXPECT_EQ(json["findings"][0]["line"], 12);
    EXPECT_EQ(json["findings"][0]["reason"], "\"<x>\" & isn't\x01 found");
    EXPECT_FALSE(json["findings"][1].contains("line"));
}

// The properties that the format requires, and what servers show findings by.
TEST(CheckSarif, LeadsToTheLine) {
    const nlohmann::json json = nlohmann::json::parse(printed(print_sarif));
    EXPECT_EQ(json["version"], "2.1.0");
    const nlohmann::json& result = json["runs"][0]["results"][0];
    const nlohmann::json& place = result["locations"][0]["physicalLocation"];
    EXPECT_EQ(place["artifactLocation"]["uri"], "Drivers/a%20b.inf");
    EXPECT_EQ(place["region"]["startLine"], 12);
    EXPECT_EQ(result["level"], "error");
    const std::size_t rule = result["ruleIndex"];
    EXPECT_EQ(json["runs"][0]["tool"]["driver"]["rules"][rule]["id"], result["ruleId"]);
    EXPECT_EQ(json["runs"][0]["results"][2]["level"], "note");
}

TEST(CheckJunit, FailsOneCaseForEachError) {
    const std::string xml = printed(print_junit);
    EXPECT_NE(xml.find("tests=\"3\" failures=\"1\""), xml.npos) << xml;
    EXPECT_NE(xml.find("message=\"&quot;&lt;x&gt;&quot; &amp; isn't? found\""), xml.npos) << xml;
    EXPECT_NE(xml.find("<system-out>wrenchbay/media.inf: warning: it is empty"), xml.npos) << xml;
}

TEST(CheckCommand, EndsByTheWorstFinding) {
    TrialMedium medium(TRK_SAMPLE_MEDIUM);
    CheckOptions options = options_for(medium.path());
    options.only = {"inf-date", "inf-class"};
    EXPECT_EQ(run(options).status, rehearsal::ended_well);
    medium.replace("Drivers/lbl.inf", "07/26/2024", "26/07/2024");
    EXPECT_EQ(run(options).status, rehearsal::ended_well);
    options.strict = true;
    EXPECT_EQ(run(options).status, rehearsal::ended_badly);
    options.ignore = {"inf-date"};
    EXPECT_EQ(run(options).status, rehearsal::ended_well);
    medium.replace("Drivers/lbl.inf", "Class=", "Class =");
    const auto bad = run(options);
    EXPECT_EQ(bad.status, rehearsal::ended_badly);
    EXPECT_TRUE(bad.out.starts_with("Drivers/lbl.inf:5:1: error: \"Class =Printer\"")) << bad.out;
}

TEST(CheckCommand, RefusesWhatItDoesntKnow) {
    CheckOptions options = options_for(TRK_SAMPLE_MEDIUM);
    options.only = {"inf-clas"};
    const auto unknown = run(options);
    EXPECT_EQ(unknown.status, rehearsal::wrong_usage);
    EXPECT_EQ(unknown.complaints, "trk: no finding is called inf-clas; the nearest is inf-class\n");
    EXPECT_EQ(run(options_for("/nowhere")).status, rehearsal::wrong_usage);
}

// Ids are told to people and written into configurations.
TEST(CheckRules, AreExplainedInTheHandbook) {
    std::string rest = TestSession::read(TRK_DOCS "/check.md");
    for (const Subject& subject : subjects()) {
        for (const Rule& rule : subject.rules()) {
            EXPECT_TRUE(std::string_view(rule.id).starts_with(std::string(subject.name) + "-")) << rule.id;
            EXPECT_EQ(find_rule(rule.id), &rule) << "twice: " << rule.id;
            const std::size_t place = rest.find(explain(rule));
            EXPECT_NE(place, rest.npos) << "docs/check.md lacks, as trk check --explain gives it:\n"
                                        << explain(rule);
            if (place != rest.npos)
                rest.erase(place, explain(rule).size());
        }
    }
    EXPECT_EQ(rest.find("\n### "), rest.npos) << "stale: " << rest.substr(rest.find("\n### "), 80);
}

TEST(CheckNames, NearestIsASlipAway) {
    EXPECT_EQ(nearest("Meda", {"Media", "UI"}), "Media");
    EXPECT_EQ(nearest("Manufacturers", {"Strings", "Manufacturer"}), "Manufacturer");
    EXPECT_EQ(nearest("Label_Models", {"Version", "Strings"}), "");
    EXPECT_EQ(nearest("Media", {"Media", "Meda"}), "") << "it is there";
}
