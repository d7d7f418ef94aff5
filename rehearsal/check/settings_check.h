// The language that a medium's settings choose, by the program's own reader.
#pragma once

#include "rehearsal/check/medium.h"

namespace rehearsal::check {

struct ChosenLanguage {
    int index = 0;             // of the program's table of languages
    bool from_setting = false; // else the system's own, for which every language can come up
};

ChosenLanguage chosen_language(const Medium& medium);

} // namespace rehearsal::check
