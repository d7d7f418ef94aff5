#include "sweep/judgement.h"

#include "rehearsal/judge.h"
#include "state/app_state.h"
#include "sweep/oddities.h"

#include <algorithm>

namespace sweep {
namespace {

using rehearsal::Outcome;
using rehearsal::Verdict;
using Complaints = std::vector<std::string>;

std::string joined(const std::vector<std::string>& texts) {
    std::string all;
    for (const std::string& text : texts)
        all += (all.empty() ? "" : "; ") + text;
    return all;
}

std::vector<std::string> paths_of(const Outcome& outcome) {
    std::vector<std::string> paths;
    for (const auto& [path, file] : outcome.files_after)
        paths.push_back(path);
    return paths;
}

bool claims_success(const Outcome& outcome) {
    constexpr std::uint32_t icon_mask = 0xF0;
    return std::any_of(outcome.boxes.begin(), outcome.boxes.end(),
                       [](const platform::BoxView& box) { return (box.flags & icon_mask) == 0; });
}

void check_end(const Outcome& outcome, Complaints& wrong) {
    if (!outcome.refusal.empty())
        wrong.push_back("stopped: " + outcome.refusal);
    for (const std::string& misuse : outcome.misuses)
        wrong.push_back("misuse: " + misuse);
    for (const std::string& leak : outcome.leaks)
        wrong.push_back("leak: " + leak);
    if (app.log_handle != INVALID_HANDLE_VALUE)
        wrong.push_back("leak: the log is still open");
    for (const platform::BoxView& box : outcome.boxes)
        if (box.text.empty())
            wrong.push_back("a box without text");
}

// A verdict that all went well holds only for a machine like that of the undisturbed run.
void check_good_verdict(const Case& one, const Outcome& outcome, Complaints& wrong) {
    const Outcome& clean = one.road->clean;
    if (outcome.asked.install != clean.asked.install)
        wrong.push_back("nothing was installed, and nothing told");
    else if (changes_of(outcome) != changes_of(clean))
        wrong.push_back("silent: " + changes_of(outcome) + " in place of " + changes_of(clean));
    else if (paths_of(outcome) != paths_of(clean))
        wrong.push_back("silent: other files than usual");
}

void check_install(const Case& one, const Scenario& scenario, const Outcome& outcome, Complaints& wrong) {
    const Verdict verdict = judge_install(outcome, scenario.medium(), scenario.drive_c());
    if (verdict.status == 0)
        check_good_verdict(one, outcome, wrong);
    else if (claims_success(outcome) && find_failures(outcome).empty())
        wrong.push_back("silent success: " + joined(verdict.missing));
    if (outcome.asked.install && outcome.boxes.empty() && find_failures(outcome).empty())
        wrong.push_back("an install without a word at its end");
}

void check_removal(const Case& one, const Outcome& outcome, Complaints& wrong) {
    const Verdict verdict = judge_removal(outcome, last_removal);
    if (verdict.status == 0 && changes_of(outcome) != changes_of(one.road->clean))
        wrong.push_back("silent: " + changes_of(outcome) + " in place of " + changes_of(one.road->clean));
    else if (outcome.exit_code == 0 && !verdict.missing.empty() && find_failures(outcome).empty())
        wrong.push_back("silent success: " + joined(verdict.missing));
}

void check_undisturbed(const Case& one, const Outcome& outcome, Complaints& wrong) {
    const Outcome& clean = one.road->clean;
    if (changes_of(outcome) != changes_of(clean))
        wrong.push_back("disturbed: " + changes_of(outcome) + " in place of " + changes_of(clean));
    if (boxes_of(outcome) != boxes_of(clean))
        wrong.push_back("disturbed: " + boxes_of(outcome) + " in place of " + boxes_of(clean));
    if (paths_of(outcome) != paths_of(clean))
        wrong.push_back("disturbed: other files than usual");
}

} // namespace

std::vector<std::string> judge(const Case& one, const Scenario& scenario, const Outcome& outcome) {
    Complaints wrong;
    check_end(outcome, wrong);
    if (one.kind == Kind::event)
        check_undisturbed(one, outcome, wrong);
    else if (one.road->road->purpose == Purpose::install)
        check_install(one, scenario, outcome, wrong);
    else if (one.road->road->purpose == Purpose::removal)
        check_removal(one, outcome, wrong);
    std::erase_if(wrong, [&](const std::string& text) { return is_known(one, text); });
    return wrong;
}

} // namespace sweep
