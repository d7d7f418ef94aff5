// The INF language: sections of entries, as the platform's set-up reads them.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace platform {

// `key = value, value, ...`, or values alone with an empty key. Quotes are taken off, %tokens% replaced.
struct InfLine {
    std::u16string key;
    std::vector<std::u16string> values;
};

struct InfSection {
    std::u16string name;
    std::vector<InfLine> lines;
};

class InfText {
public:
    // Sections of the same name are joined. False when a line can't be read: a header without its bracket, an
    // entry in front of the first section, a quote left open.
    bool parse(std::u16string_view text);

    const InfSection*
    section(std::u16string_view name) const; // without regard to case; null when there is none
    // The first entry's line of that key, or null.
    const InfLine* line(std::u16string_view section_name, std::u16string_view key) const;
    // Its first value, or an empty text.
    std::u16string value(std::u16string_view section_name, std::u16string_view key) const;

private:
    bool parse_line(std::u16string_view line);
    std::u16string with_strings(std::u16string_view text) const;
    void replace_strings();

    std::vector<InfSection> sections_;
    std::size_t current_ = 0; // the section that lines go to, from 1; 0: none yet
};

} // namespace platform
