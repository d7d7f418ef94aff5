#include "rehearsal/check/subjects.h"

#include <stdexcept>

namespace rehearsal::check {
namespace {

constexpr Subject all_subjects[] = {
    {"layout", rules_of_layout, check_layout},
    {"inf", rules_of_inf, check_inf},
    {"files", rules_of_files, check_files},
    {"catalogue", rules_of_catalogue, check_catalogue},
    {"media", rules_of_media_table, check_media_table},
    {"settings", rules_of_settings, check_settings},
    {"terms", rules_of_terms, check_terms},
    {"profile-names", rules_of_profile_names, check_profile_names},
    {"monitor", rules_of_monitor, check_monitor},
};

} // namespace

std::span<const Subject> subjects() {
    return all_subjects;
}

const Rule* find_rule(std::string_view id) {
    for (const Subject& subject : all_subjects)
        for (const Rule& rule : subject.rules())
            if (rule.id == id)
                return &rule;
    return nullptr;
}

void Findings::add(std::string_view id, Place place, std::string reason, std::string remedy) {
    const Rule* const rule = find_rule(id);
    if (rule == nullptr)
        throw std::logic_error("no rule is called " + std::string(id));
    if (remedy.empty())
        remedy = rule->remedy;
    list_.push_back(
        {std::string(id), rule->severity, std::move(place), std::move(reason), std::move(remedy)});
}

} // namespace rehearsal::check
