// What a skeleton needs to know of each language of the setup.
#pragma once

#include <span>
#include <string_view>

namespace rehearsal::skeleton {

struct SkeletonLanguage {
    const char* code;             // as settings.inf has it
    const char* name;             // in English
    const char* terms_file;       // in licenses
    const char16_t* own_name;     // the section of profilenames.inf
    const char16_t* terms;        // the agreement's placeholder
    const char16_t* profile_name; // of the one example profile
};

std::span<const SkeletonLanguage> skeleton_languages();

// Null when there is none of that code.
const SkeletonLanguage* find_language(std::string_view code);

} // namespace rehearsal::skeleton
