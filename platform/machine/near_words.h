// Words that were mistyped, and those that may have been meant.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace platform {

// Small letters in place of ASCII capitals, for names that are compared without regard to case.
std::string folded(std::string_view text);

// Those of the words that a mistyped one may have meant, three at most, the nearest first; at an equal
// distance in the order of `words`. None when nothing is near.
std::vector<std::string> nearest_words(const std::string& wrong, const std::vector<std::string>& words);

// The same as a question: " (did you mean X or Y?)"; empty when nothing is near.
std::string did_you_mean(const std::string& wrong, const std::vector<std::string>& words);

// The question, or where nothing is near all the words: "; there are X, Y".
std::string did_you_mean_or_list(const std::string& wrong, const std::vector<std::string>& words);

} // namespace platform
