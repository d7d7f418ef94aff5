// Text from the network, a file or a command line, made fit for a terminal and for comparison.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace rehearsal {

// UTF-8 text with what can't be printed spelt out, so that no printer's name steers a terminal: a control
// character, the C1 ones included, as "\x1b", and so a byte that is no part of UTF-8. Line ends too: a line
// stays one.
std::string shown_text(std::string_view text);

// Small letters in place of ASCII capitals, for names that are compared without regard to case.
std::string folded(std::string_view text);

// Those of the words that a mistyped one may have meant, three at most, the nearest first; at an equal
// distance in the order of `words`. None when nothing is near.
std::vector<std::string> nearest_words(const std::string& wrong, const std::vector<std::string>& words);

// The same as a question: " (did you mean X or Y?)"; empty when nothing is near.
std::string did_you_mean(const std::string& wrong, const std::vector<std::string>& words);

} // namespace rehearsal
