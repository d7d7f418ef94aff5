// What the user of a run asked the program for.
#pragma once

#include "rehearsal/outcome.h"

#include <string_view>

namespace rehearsal {

// To be asked at the end of a run, inside its session: by the dialogs as they stand, and what the program
// read of the medium.
Asked what_was_asked(const std::vector<platform::DialogView>& dialogs, std::uint32_t code_page);

// How many rows of a media table's text the program takes.
std::size_t count_media_rows(std::string_view table);

} // namespace rehearsal
