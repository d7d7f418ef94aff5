#include "rehearsal/outcome.h"

#include "machine/fault_rules.h"

#include <set>

namespace rehearsal {

std::vector<std::string> find_failures(const Outcome& outcome) {
    std::vector<std::string> failures = outcome.failed_steps;
    constexpr std::uint32_t icon_mask = 0xF0;
    constexpr std::uint32_t exclamation = 0x30;
    unsigned warnings = outcome.warnings; // they come before every other box
    for (const platform::BoxView& box : outcome.boxes) {
        if ((box.flags & icon_mask) != exclamation)
            continue;
        if (warnings == 0)
            failures.push_back("box: " + box.text);
        else
            --warnings;
    }
    return failures;
}

std::vector<std::string> find_idle_faults(const Outcome& outcome) {
    platform::FaultCounts counts;
    std::set<const platform::Fault*> struck;
    for (const platform::JournalEntry& entry : outcome.journal)
        if (entry.can_fail)
            struck.insert(counts.due(outcome.before.faults, entry.call, entry.argument));
    std::vector<std::string> idle;
    for (const platform::Fault& fault : outcome.before.faults)
        if (!fault.may_miss && !struck.contains(&fault))
            idle.push_back(fault.call);
    return idle;
}

bool was_made(const Outcome& outcome, const std::string& path) {
    const auto before = outcome.files_before.find(path);
    const auto after = outcome.files_after.find(path);
    return after != outcome.files_after.end() &&
           (before == outcome.files_before.end() || before->second != after->second);
}

} // namespace rehearsal
