// Mistyped sub-commands and options.
#pragma once

#include <map>
#include <string>
#include <vector>

namespace rehearsal {

// Sub-command -> its options, "--machine" and the like.
using KnownWords = std::map<std::string, std::vector<std::string>>;

// What to tell about the first word of a command line that nobody knows, with what may have been meant; empty
// when every word is known. `words` are those behind the tool's own name.
std::string describe_unknown_word(const std::vector<std::string>& words, const KnownWords& known);

} // namespace rehearsal
