// Names compared as the platform compares them, and the nearest of several to one that was mistyped.
#include "machine/text.h"
#include "rehearsal/check/medium.h"

#include <algorithm>
#include <numeric>
#include <utility>

namespace rehearsal::check {
namespace {

// How many letters have to be changed, put in or taken out.
std::size_t edits(const std::string& a, const std::string& b) {
    std::vector<std::size_t> row(b.size() + 1);
    std::iota(row.begin(), row.end(), std::size_t{0});
    for (std::size_t i = 0; i < a.size(); ++i) {
        std::size_t diagonal = std::exchange(row[0], i + 1);
        for (std::size_t j = 0; j < b.size(); ++j) {
            const std::size_t changed = diagonal + (a[i] == b[j] ? 0 : 1);
            diagonal = row[j + 1];
            row[j + 1] = std::min({changed, row[j] + 1, row[j + 1] + 1});
        }
    }
    return row.back();
}

} // namespace

std::string folded(std::string_view text) {
    std::string out(text);
    const bool plain = std::all_of(out.begin(), out.end(), [](char c) { return (c & 0x80) == 0; });
    if (!plain)
        return platform::to_utf8(platform::upper_case(platform::to_utf16(out)));
    for (char& c : out)
        c = c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
    return out;
}

bool same_text(std::string_view a, std::string_view b) {
    return a.size() == b.size() && folded(a) == folded(b);
}

std::string_view nearest(std::string_view written, const std::vector<std::string_view>& candidates) {
    constexpr std::size_t longest = 64; // names beyond are no slip of anything
    if (written.size() > longest)
        return {};
    const std::string wanted = folded(written);
    std::string_view best;
    std::size_t least = longest + 1;
    for (const std::string_view candidate : candidates) {
        if (candidate == written)
            return {};
        if (candidate.size() > longest)
            continue;
        const std::size_t distance = edits(wanted, folded(candidate));
        const std::size_t slip = std::max<std::size_t>(std::max(wanted.size(), candidate.size()) / 3, 1);
        if (distance <= slip && distance < least) {
            least = distance;
            best = candidate;
        }
    }
    return best;
}

} // namespace rehearsal::check
