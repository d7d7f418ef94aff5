#include "machine/near_words.h"

#include <algorithm>
#include <numeric>

namespace platform {
namespace {

// How many letters have to be put in, left out, exchanged or swapped with their neighbour.
std::size_t edit_distance(const std::string& from, const std::string& to) {
    std::vector<std::size_t> older, before(to.size() + 1), row(to.size() + 1);
    std::iota(before.begin(), before.end(), 0u);
    for (std::size_t i = 1; i <= from.size(); ++i) {
        row[0] = i;
        for (std::size_t j = 1; j <= to.size(); ++j) {
            const std::size_t exchanged = before[j - 1] + (from[i - 1] == to[j - 1] ? 0 : 1);
            row[j] = std::min({before[j] + 1, row[j - 1] + 1, exchanged});
            if (i > 1 && j > 1 && from[i - 1] == to[j - 2] && from[i - 2] == to[j - 1])
                row[j] = std::min(row[j], older[j - 2] + 1);
        }
        older = before;
        before = row;
    }
    return before.back();
}

} // namespace

std::string folded(std::string_view text) {
    std::string small(text);
    for (char& letter : small)
        if (letter >= 'A' && letter <= 'Z')
            letter = static_cast<char>(letter - 'A' + 'a');
    return small;
}

std::vector<std::string> nearest_words(const std::string& wrong, const std::vector<std::string>& words) {
    constexpr std::size_t most = 3;
    const std::size_t limit = wrong.size() / 3 + 1;
    std::vector<std::pair<std::size_t, std::string>> near;
    for (const std::string& word : words) {
        const std::size_t distance = edit_distance(folded(wrong), folded(word));
        if (distance <= limit)
            near.emplace_back(distance, word);
    }
    std::stable_sort(near.begin(), near.end(),
                     [](const auto& one, const auto& other) { return one.first < other.first; });
    std::vector<std::string> nearest;
    for (const auto& [distance, word] : near)
        if (nearest.size() < most)
            nearest.push_back(word);
    return nearest;
}

std::string did_you_mean(const std::string& wrong, const std::vector<std::string>& words) {
    std::string question;
    for (const std::string& word : nearest_words(wrong, words))
        question += (question.empty() ? " (did you mean " : " or ") + word;
    return question.empty() ? question : question + "?)";
}

std::string did_you_mean_or_list(const std::string& wrong, const std::vector<std::string>& words) {
    const std::string question = did_you_mean(wrong, words);
    std::string list;
    for (const std::string& word : words)
        list += (list.empty() ? "" : ", ") + word;
    return question.empty() ? "; there are " + list : question;
}

} // namespace platform
