#include "calls/files/wildcards.h"

#include "machine/text.h"

#include <string>
#include <vector>

namespace platform {
namespace {

// Places in the name that the pattern's characters so far may lead to; the last is the name's end.
using Places = std::vector<bool>;

Places after_star(const Places& from) {
    Places to(from.size());
    bool reached = false;
    for (std::size_t place = 0; place < from.size(); ++place)
        to[place] = reached = reached || from[place];
    return to;
}

// `wanted` and `here` are upper case; at the name's end `here` is 0.
bool takes(char16_t wanted, char16_t here) {
    return wanted == u'?' ? here != 0 && here != u'.' : wanted == here;
}

bool takes_nothing(char16_t wanted, bool wildcard_next, char16_t here) {
    return wanted == u'?' ? here == 0 || here == u'.' : wanted == u'.' && wildcard_next && here == 0;
}

Places after_letter(const Places& from, std::u16string_view name, char16_t wanted, bool wildcard_next) {
    Places to(from.size());
    for (std::size_t place = 0; place < from.size(); ++place) {
        const char16_t here = place < name.size() ? name[place] : u'\0';
        if (from[place] && takes(wanted, here))
            to[place + 1] = true;
        if (from[place] && takes_nothing(wanted, wildcard_next, here))
            to[place] = true;
    }
    return to;
}

} // namespace

bool has_wildcard(std::u16string_view text) {
    return text.find_first_of(u"*?") != std::u16string_view::npos;
}

bool matches(std::u16string_view pattern, std::u16string_view name) {
    const std::u16string wanted = upper_case(pattern);
    const std::u16string upper = upper_case(name);
    Places places(upper.size() + 1);
    places[0] = true;
    for (std::size_t index = 0; index < wanted.size(); ++index) {
        const bool wildcard_next = index + 1 < wanted.size() && has_wildcard({&wanted[index + 1], 1});
        places = wanted[index] == u'*' ? after_star(places)
                                       : after_letter(places, upper, wanted[index], wildcard_next);
    }
    return places.back();
}

bool matches_either(std::u16string_view pattern, std::u16string_view name, std::u16string_view short_name) {
    return matches(pattern, name) || (!short_name.empty() && matches(pattern, short_name));
}

} // namespace platform
