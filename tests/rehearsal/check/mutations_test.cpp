// The check and a rehearsal judge the same media: what the one refuses has to fail in the other.
#include "rehearsal/check/check.h"
#include "rehearsal/check/trial_medium.h"
#include "rehearsal/exit_status.h"
#include "rehearsal/judge.h"
#include "scenarios/scenario.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <sstream>

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

std::vector<std::string> errors_of(const std::filesystem::path& medium) {
    std::vector<std::string> errors;
    for (const Finding& finding : rehearsal::check::check_medium(medium))
        if (finding.severity == Severity::error && shows_in_rehearsal(finding))
            errors.push_back(finding.id + ": " + finding.reason);
    return errors;
}

struct Road {
    const char* name;
    std::vector<std::string> actions;
    int times; // how often it is gone, on the same machine: the second time finds the driver installed
};

// The judge goes by the rows that the program finds; what was meant to be there is known only here.
constexpr std::size_t sizes_of_both_media = 9;

// Of the queues that have been made.
std::size_t fewest_sizes(const rehearsal::Outcome& outcome) {
    std::size_t fewest = sizes_of_both_media;
    for (const platform::PrintQueue& queue : outcome.after.spooler.queues) {
        const auto sizes =
            static_cast<std::size_t>(std::count_if(queue.data.begin(), queue.data.end(), [](const auto& key) {
                return key.first.starts_with(u"Label Sizes\\");
            }));
        const bool made =
            std::none_of(outcome.before.spooler.queues.begin(), outcome.before.spooler.queues.end(),
                         [&](const auto& known) { return known.name == queue.name; });
        fewest = made ? std::min(fewest, sizes) : fewest;
    }
    return fewest;
}

// What a rehearsal of the road has to complain about; empty when all went well.
std::string complaint_of(const std::filesystem::path& medium, const Road& road, const std::string& model,
                         platform::System system) {
    Scenario scenario;
    scenario.use_system(system);
    scenario.use_medium(medium);
    const auto answer =
        slp_reply("10.0.0.7", "(printer-name=Shelf A),(id=MFG:M;MDL:" + model + ";CLS:PRINTER;)");
    scenario.machine.adapters.front().searches = {{answer}};
    scenario.actions = road.actions;
    for (int time = 1; time <= road.times; ++time) {
        const rehearsal::Outcome outcome = scenario.run();
        const rehearsal::Verdict verdict = rehearsal::judge_install(outcome, medium, scenario.drive_c());
        if (verdict.status != rehearsal::ended_well || outcome.boxes.empty())
            return std::string(road.name) + ", time " + std::to_string(time) + ": " + verdict.line;
        if (outcome.asked.network && fewest_sizes(outcome) != sizes_of_both_media)
            return "a queue without all its label sizes";
    }
    return {};
}

void expect_agreement(const std::filesystem::path& original, const std::vector<Mutation>& mutations,
                      const std::vector<Road>& roads, const std::string& model) {
    for (const Mutation& mutation : mutations) {
        TrialMedium medium(original);
        mutation.apply(medium);
        std::string complaint;
        for (const Road& road : roads)
            for (const platform::System system : {platform::System::x64, platform::System::x86})
                if (complaint.empty())
                    complaint = complaint_of(medium.path(), road, model, system);
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

TEST(Mutations, ExplainAFailedRehearsal) {
    TrialMedium medium(TRK_SAMPLE_MEDIUM);
    const auto explained = [&] {
        std::ostringstream out;
        rehearsal::check::explain_failed_run(out, medium.path());
        return out.str();
    };
    EXPECT_EQ(explained(), "") << "nothing in the medium explains it";
    medium.replace("Drivers/lbl.inf", "Class=Printer", "Class = Printer");
    EXPECT_EQ(explained().substr(0, explained().find(" isn't found")),
              "trk check on this medium:\nDrivers/lbl.inf:5:1: error: \"Class = Printer\"");
}
