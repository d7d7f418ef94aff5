// Text from the network, a file or a command line, made fit for a terminal and for comparison.
#pragma once

#include "machine/near_words.h"

#include <string>
#include <string_view>
#include <vector>

namespace rehearsal {

// UTF-8 text with what can't be printed spelt out, so that no printer's name steers a terminal: a control
// character, the C1 ones included, as "\x1b", and so a byte that is no part of UTF-8. Line ends too: a line
// stays one.
std::string shown_text(std::string_view text);

using platform::did_you_mean;
using platform::folded;
using platform::nearest_words;

} // namespace rehearsal
