#include "machine/inf_text.h"

#include "machine/text.h"

#include <algorithm>

namespace platform {
namespace {

std::u16string_view trimmed(std::u16string_view text) {
    constexpr std::u16string_view blanks = u" \t\r\uFEFF";
    const std::size_t begin = text.find_first_not_of(blanks);
    return begin == text.npos ? std::u16string_view()
                              : text.substr(begin, text.find_last_not_of(blanks) - begin + 1);
}

// The place of the first of the marks outside of quotes, else the text's end. `open` tells whether a quote is
// open there; two quotes in a quoted text close and open it again, which comes to the same.
std::size_t find_outside_quotes(std::u16string_view text, std::u16string_view marks, bool& open) {
    open = false;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] == u'"')
            open = !open;
        else if (!open && marks.find(text[i]) != marks.npos)
            return i;
    }
    return text.size();
}

// Takes the quotes off: parts in quotes as they stand, two quotes in them for one.
std::u16string unquoted(std::u16string_view text) {
    std::u16string out;
    bool inside = false;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] != u'"') {
            out.push_back(text[i]);
        } else if (inside && i + 1 < text.size() && text[i + 1] == u'"') {
            out.push_back(u'"');
            ++i;
        } else {
            inside = !inside;
        }
    }
    return out;
}

std::u16string_view without_comment(std::u16string_view line) {
    bool open = false;
    return trimmed(line.substr(0, find_outside_quotes(line, u";", open)));
}

} // namespace

bool InfText::parse(std::u16string_view text) {
    std::u16string pending;
    while (!text.empty()) {
        const std::size_t end = std::min(text.find(u'\n'), text.size());
        const std::u16string_view line = without_comment(text.substr(0, end));
        text.remove_prefix(std::min(end + 1, text.size()));
        bool open = false;
        find_outside_quotes(line, u"", open);
        // A backslash at a line's end joins the next line to it.
        if (!line.empty() && line.back() == u'\\' && !open) {
            pending += line.substr(0, line.size() - 1);
            continue;
        }
        pending += line;
        if (!parse_line(trimmed(pending)))
            return false;
        pending.clear();
    }
    if (!parse_line(trimmed(pending)))
        return false;
    replace_strings();
    return true;
}

bool InfText::parse_line(std::u16string_view line) {
    if (line.empty())
        return true;
    if (line.front() == u'[') {
        const std::size_t end = line.find(u']');
        if (end == line.npos)
            return false;
        const std::u16string name(trimmed(line.substr(1, end - 1)));
        const auto known = std::find_if(sections_.begin(), sections_.end(),
                                        [&](const auto& section) { return same_name(section.name, name); });
        current_ = static_cast<std::size_t>(known - sections_.begin()) + 1;
        if (known == sections_.end())
            sections_.push_back({name, {}});
        return true;
    }
    bool open = false;
    find_outside_quotes(line, u"", open);
    if (open || current_ == 0)
        return false;
    InfLine entry;
    const std::size_t equals = find_outside_quotes(line, u"=", open);
    if (equals < line.size()) {
        entry.key = unquoted(trimmed(line.substr(0, equals)));
        line.remove_prefix(equals + 1);
    }
    for (;;) {
        const std::size_t comma = find_outside_quotes(line, u",", open);
        entry.values.push_back(unquoted(trimmed(line.substr(0, comma))));
        if (comma == line.size())
            break;
        line.remove_prefix(comma + 1);
    }
    sections_[current_ - 1].lines.push_back(std::move(entry));
    return true;
}

// %name% for its text in [Strings]; %% for one per cent sign. An unknown name stays as it is.
std::u16string InfText::with_strings(std::u16string_view text) const {
    std::u16string out;
    while (!text.empty()) {
        const std::size_t begin = text.find(u'%');
        const std::size_t end = begin == text.npos ? text.npos : text.find(u'%', begin + 1);
        if (end == text.npos)
            return out.append(text);
        out.append(text.substr(0, begin));
        const std::u16string_view name = text.substr(begin + 1, end - begin - 1);
        const InfLine* known = name.empty() ? nullptr : line(u"Strings", name);
        if (name.empty())
            out.push_back(u'%');
        else if (known != nullptr)
            out.append(known->values.front());
        else
            out.append(text.substr(begin, end - begin + 1));
        text.remove_prefix(end + 1);
    }
    return out;
}

void InfText::replace_strings() {
    for (InfSection& section : sections_) {
        if (same_name(section.name, u"Strings"))
            continue;
        for (InfLine& entry : section.lines) {
            entry.key = with_strings(entry.key);
            for (std::u16string& value : entry.values)
                value = with_strings(value);
        }
    }
}

const InfSection* InfText::section(std::u16string_view name) const {
    const auto found = std::find_if(sections_.begin(), sections_.end(),
                                    [name](const auto& section) { return same_name(section.name, name); });
    return found == sections_.end() ? nullptr : &*found;
}

const InfLine* InfText::line(std::u16string_view section_name, std::u16string_view key) const {
    const InfSection* found = section(section_name);
    if (found == nullptr)
        return nullptr;
    const auto entry = std::find_if(found->lines.begin(), found->lines.end(),
                                    [key](const auto& candidate) { return same_name(candidate.key, key); });
    return entry == found->lines.end() ? nullptr : &*entry;
}

std::u16string InfText::value(std::u16string_view section_name, std::u16string_view key) const {
    const InfLine* found = line(section_name, key);
    return found == nullptr ? std::u16string() : found->values.front();
}

} // namespace platform
