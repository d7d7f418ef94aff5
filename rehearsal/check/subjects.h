// The subjects that are checked. Each has a file of its own with two routines: one gives the rules whose ids
// it reports, the other looks at the medium. A new subject is declared here and entered in subjects.cpp.
#pragma once

#include "rehearsal/check/finding.h"
#include "rehearsal/check/medium.h"

#include <span>
#include <string_view>

namespace rehearsal::check {

struct Subject {
    std::string_view name; // what the ids of its rules begin with
    std::span<const Rule> (*rules)();
    void (*check)(const Medium&, Findings&);
};

std::span<const Subject> subjects();        // in the order in which they are checked and documented
const Rule* find_rule(std::string_view id); // null when there is none of that id

std::span<const Rule> rules_of_layout();
void check_layout(const Medium& medium, Findings& findings);
std::span<const Rule> rules_of_inf();
void check_inf(const Medium& medium, Findings& findings);
std::span<const Rule> rules_of_files();
void check_files(const Medium& medium, Findings& findings);

std::span<const Rule> rules_of_catalogue();
void check_catalogue(const Medium& medium, Findings& findings);

std::span<const Rule> rules_of_media_table();
void check_media_table(const Medium& medium, Findings& findings);

std::span<const Rule> rules_of_settings();
void check_settings(const Medium& medium, Findings& findings);

std::span<const Rule> rules_of_terms();
void check_terms(const Medium& medium, Findings& findings);

std::span<const Rule> rules_of_profile_names();
void check_profile_names(const Medium& medium, Findings& findings);

std::span<const Rule> rules_of_monitor();
void check_monitor(const Medium& medium, Findings& findings);

} // namespace rehearsal::check
