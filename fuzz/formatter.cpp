#include "fuzz/machine.h"
#include "fuzz/targets.h"
#include "machine/text.h"
#include "support/text.h"
#include <algorithm>

namespace {

std::u16string cut(std::size_t capacity, const std::u16string& wide, const std::string& ansi, int number,
                   int& whole) {
    std::vector<WCHAR> out(capacity, u'?');
    whole = format_text(out.data(), capacity, u"%s|%S|%d|%04x%%", wide.c_str(), ansi.c_str(), number, number);
    const auto end = std::find(out.begin(), out.end(), u'\0');
    fuzz::require(end != out.end(), "a text without its end");
    return {out.begin(), end};
}

} // namespace

// The first byte is the capacity. A cut text is the start of the whole one.
void fuzz::formatter(std::string_view input) {
    if (input.empty())
        return;
    machine();
    const std::size_t capacity = static_cast<unsigned char>(input[0]) + std::size_t{1};
    const std::string ansi(input.substr(1));
    const std::u16string wide = platform::to_utf16(ansi);
    const int number = static_cast<int>(capacity * 7919 - input.size() * 104729);
    int fits = 0, whole = 0;
    const std::u16string all = cut(3 * input.size() + 64, wide.c_str(), ansi.c_str(), number, whole);
    const std::u16string some = cut(capacity, wide, ansi, number, fits);
    require(whole == 1 && all.compare(0, some.size(), some) == 0, "a cut text is another one");
    require((fits == 1) == (all.size() < capacity), "a cut isn't told");
    std::vector<char> out(capacity);
    format_ansi(out.data(), capacity, "%s %d", ansi.c_str(), number);
    narrow(out.data(), capacity, wide.c_str());
    copy_ansi(out.data(), capacity, ansi.c_str());
}
