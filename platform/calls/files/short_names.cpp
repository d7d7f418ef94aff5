#include "calls/files/short_names.h"

#include "machine/text.h"

#include <algorithm>
#include <map>
#include <numeric>
#include <set>

namespace platform {
namespace {

constexpr std::size_t longest_base = 8;
constexpr std::size_t longest_extension = 3;
constexpr std::size_t kept_of_base = 6; // in front of "~1"

// Letters outside of ASCII aren't allowed, which is the platform's setting from the start.
bool is_allowed(char16_t c) {
    return c > u' ' && c < 0x7F &&
           std::u16string_view(u"\"*+,./:;<=>?[\\]|").find(c) == std::u16string_view::npos;
}

struct Parts {
    std::u16string_view base, extension;
};

// The extension stands behind the last point, if anything is in front of that.
Parts split(std::u16string_view name) {
    const std::size_t start = name.find_first_not_of(u'.');
    const std::size_t point = name.rfind(u'.');
    if (point == name.npos || start == name.npos || point < start)
        return {name, {}};
    return {name.substr(0, point), name.substr(point + 1)};
}

bool is_short(std::u16string_view name) {
    const Parts parts = split(name);
    const bool point_at_end = !name.empty() && name.back() == u'.';
    return !parts.base.empty() && parts.base.size() <= longest_base &&
           parts.extension.size() <= longest_extension && !point_at_end &&
           std::all_of(parts.base.begin(), parts.base.end(), is_allowed) &&
           std::all_of(parts.extension.begin(), parts.extension.end(), is_allowed);
}

// Without blanks and points, in capitals, with "_" for what isn't allowed.
std::u16string cleaned(std::u16string_view part, std::size_t length) {
    std::u16string text;
    for (const char16_t c : part)
        if (c != u' ' && c != u'.' && text.size() < length)
            text += is_allowed(c) ? c : u'_';
    return upper_case(text);
}

std::u16string numbered(std::u16string_view name, unsigned number) {
    const Parts parts = split(name);
    const std::u16string tail = to_utf16("~" + std::to_string(number));
    const std::u16string extension = cleaned(parts.extension, longest_extension);
    return cleaned(parts.base, std::min(kept_of_base, longest_base - tail.size())) + tail +
           (extension.empty() ? u"" : u".") + extension;
}

} // namespace

std::vector<std::u16string> short_names(const std::vector<std::u16string>& names) {
    std::vector<std::size_t> order(names.size());
    std::iota(order.begin(), order.end(), std::size_t{0});
    std::sort(order.begin(), order.end(),
              [&](std::size_t a, std::size_t b) { return upper_case(names[a]) < upper_case(names[b]); });
    std::set<std::u16string> taken;
    for (const std::u16string& name : names)
        if (is_short(name))
            taken.insert(upper_case(name));
    std::vector<std::u16string> shorter(names.size());
    std::map<std::u16string, unsigned> last; // by the name with number 1: up to which the numbers are taken
    for (const std::size_t index : order) {
        if (is_short(names[index]))
            continue;
        unsigned& number = last[numbered(names[index], 1)];
        do
            shorter[index] = numbered(names[index], ++number);
        while (!taken.insert(shorter[index]).second);
    }
    return shorter;
}

} // namespace platform
