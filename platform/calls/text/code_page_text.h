// Text between the widths by a code page's table; without a table by UTF-8.
#pragma once

#include "calls/text/code_page_table.h"

#include <string>
#include <string_view>

namespace platform {

// `good` tells whether all of the text had a counterpart.
struct WideText {
    std::u16string text;
    bool good = true;
};
struct NarrowText {
    std::string text;
    bool good = true;
};

// A lead byte that makes no character with the byte behind it, or has none there, becomes the table's
// `unknown`.
WideText widen(const CodePageTable* table, std::string_view bytes);
void widen(const CodePageTable* table, std::string_view bytes,
           WideText& result); // whose memory is used again

enum class Fit { exact, nearest };

// `missing` stands for each character without a counterpart, twice for a surrogate pair. UTF-8 has one for
// all that is good, and U+FFFD for the rest.
NarrowText narrow(const CodePageTable* table, std::u16string_view text, Fit fit = Fit::exact,
                  std::string_view missing = "?");
void narrow(const CodePageTable* table, std::u16string_view text, Fit fit, std::string_view missing,
            NarrowText& result);

} // namespace platform
