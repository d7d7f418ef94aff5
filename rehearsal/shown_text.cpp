#include "rehearsal/shown_text.h"

#include <algorithm>
#include <cstdio>
#include <numeric>

namespace rehearsal {
namespace {

// Bytes of the UTF-8 sequence that begins the text, 0 when none does.
std::size_t sequence_length(std::string_view text) {
    const auto lead = static_cast<unsigned char>(text.front());
    const std::size_t length = lead < 0x80   ? 1
                               : lead < 0xC2 ? 0
                               : lead < 0xE0 ? 2
                               : lead < 0xF0 ? 3
                               : lead < 0xF5 ? 4
                                             : 0;
    if (length > text.size())
        return 0;
    for (std::size_t place = 1; place < length; ++place)
        if ((static_cast<unsigned char>(text[place]) & 0xC0) != 0x80)
            return 0;
    return length;
}

// C0, DEL and C1, which UTF-8 writes as C2 80 to C2 9F.
bool is_control(std::string_view sequence) {
    const auto first = static_cast<unsigned char>(sequence[0]);
    return first < 0x20 || first == 0x7F || (first == 0xC2 && static_cast<unsigned char>(sequence[1]) < 0xA0);
}

std::string spelt_out(char byte) {
    char text[5];
    std::snprintf(text, sizeof text, "\\x%02x", static_cast<unsigned char>(byte));
    return text;
}

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

std::string shown_text(std::string_view text) {
    std::string shown;
    while (!text.empty()) {
        const std::size_t length = std::max<std::size_t>(sequence_length(text), 1);
        const bool printable = sequence_length(text) != 0 && !is_control(text.substr(0, length));
        if (printable)
            shown += text.substr(0, length);
        else
            for (const char byte : text.substr(0, length))
                shown += spelt_out(byte);
        text.remove_prefix(length);
    }
    return shown;
}

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

} // namespace rehearsal
