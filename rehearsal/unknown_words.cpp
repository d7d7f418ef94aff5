#include "rehearsal/unknown_words.h"

#include "rehearsal/shown_text.h"

#include <algorithm>

namespace rehearsal {

std::string describe_unknown_word(const std::vector<std::string>& words, const KnownWords& known) {
    if (words.empty() || words.front().starts_with("-"))
        return {};
    const auto command = known.find(words.front());
    if (command == known.end()) {
        std::vector<std::string> names;
        for (const auto& [name, options] : known)
            names.push_back(name);
        return "there is no sub-command \"" + shown_text(words.front()) + "\"" +
               did_you_mean(words.front(), names);
    }
    for (const std::string& word : words) {
        const std::string option = word.substr(0, word.find('='));
        if (option == "--")
            break;
        if (option.starts_with("--") &&
            std::find(command->second.begin(), command->second.end(), option) == command->second.end())
            return command->first + " has no option " + shown_text(option) +
                   did_you_mean(option, command->second);
    }
    return {};
}

} // namespace rehearsal
