// The check and a rehearsal judge the same media: what the one refuses has to fail in the other.
#include "rehearsal/check/check.h"
#include "rehearsal/check/trial_medium.h"
#include "scenarios/scenario.h"

#include <gtest/gtest.h>

#include <set>

namespace {

using rehearsal::check::Finding;
using rehearsal::check::Severity;

void expect_findings(const std::filesystem::path& original, const std::vector<Mutation>& mutations) {
    EXPECT_EQ(findings_of(original), std::vector<std::string>());
    for (const Mutation& mutation : mutations) {
        TrialMedium medium(original);
        mutation.apply(medium);
        EXPECT_EQ(findings_of(medium.path()), mutation.findings) << mutation.name;
    }
}

// What a rehearsal can't see: it never loads programs nor verifies signatures, it can't know which of two
// INFs was meant, it starts no other program on a 64-bit system, and its system is one of 64 bits.
bool is_seen_in_rehearsal(const Finding& finding) {
    static const std::set<std::string> unseen = {"files-program", "files-machine", "files-sibling",
                                                 "inf-backup-taken", "layout-case-twice"};
    return !unseen.contains(finding.id) && !finding.id.starts_with("catalogue-") &&
           finding.reason.find(" x86") == std::string::npos;
}

std::vector<std::string> errors_of(const std::filesystem::path& medium) {
    std::vector<std::string> errors;
    for (const Finding& finding : rehearsal::check::check_medium(medium))
        if (finding.severity == Severity::error && is_seen_in_rehearsal(finding))
            errors.push_back(finding.id + ": " + finding.reason);
    return errors;
}

struct Road {
    const char* name;
    std::vector<std::string> actions;
    int times; // how often it is gone, on the same machine: the second time finds the driver installed
};

std::string complaint_of(const rehearsal::Outcome& outcome) {
    if (!outcome.refusal.empty() || !outcome.problem.empty())
        return outcome.refusal + outcome.problem;
    const std::vector<std::string> failures = rehearsal::find_failures(outcome);
    if (!failures.empty())
        return failures.front();
    return outcome.boxes.empty() ? "no box" : "";
}

// What a rehearsal of the road has to complain about; empty when all went well.
std::string complaint_of(const std::filesystem::path& medium, const Road& road, const std::string& model) {
    Scenario scenario;
    scenario.use_medium(medium);
    const auto answer =
        slp_reply("10.0.0.7", "(printer-name=Shelf A),(id=MFG:M;MDL:" + model + ";CLS:PRINTER;)");
    scenario.machine.adapters.front().searches = {{answer}};
    scenario.actions = road.actions;
    for (int time = 1; time <= road.times; ++time)
        if (const std::string complaint = complaint_of(scenario.run()); !complaint.empty())
            return std::string(road.name) + ", time " + std::to_string(time) + ": " + complaint;
    return {};
}

void expect_agreement(const std::filesystem::path& original, const std::vector<Mutation>& mutations,
                      const std::vector<Road>& roads, const std::string& model) {
    for (const Mutation& mutation : mutations) {
        TrialMedium medium(original);
        mutation.apply(medium);
        std::string complaint;
        for (const Road& road : roads)
            if (complaint.empty())
                complaint = complaint_of(medium.path(), road, model);
        const std::vector<std::string> errors = errors_of(medium.path());
        EXPECT_EQ(errors.empty(), complaint.empty())
            << mutation.name << "\n  check: " << testing::PrintToString(errors)
            << "\n  rehearsal: " << complaint;
    }
}

const std::vector<std::string> network_only = {"select 0", "tick 1007", "press 1015", "tick 1011", "press 1"};

} // namespace

TEST(Mutations, OfTheSampleAreFound) {
    expect_findings(TRK_SAMPLE_MEDIUM, sample_mutations());
}

TEST(Mutations, OfAnotherMakersMediumAreFound) {
    expect_findings(other_medium(), other_mutations());
}

TEST(Mutations, FailInARehearsalWhenTheCheckSaysSo) {
    expect_agreement(TRK_SAMPLE_MEDIUM, sample_mutations(),
                     {{"network", network_install, 2}, {"USB", usb_install, 1}}, "Label_100_Series");
    expect_agreement(other_medium(), other_mutations(), {{"network", network_only, 2}}, "Tag_40");
    EXPECT_GE(sample_mutations().size() + other_mutations().size(), 80u);
}
