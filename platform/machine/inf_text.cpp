#include "machine/inf_text.h"

#include "machine/text.h"

#include <algorithm>

namespace platform {
namespace {

// The published limits: a section's name, and a field before and behind the replacement of its tokens.
constexpr std::size_t longest_section_name = 255;
constexpr std::size_t longest_field = 4095;

constexpr char16_t end_of_file = 0x1A; // Ctrl-Z
constexpr std::u16string_view blanks = u" \t\r";

// The first character of a range that is no blank, and the end of the last one; both `end` when all are.
struct Range {
    std::size_t begin, end;
};

Range trimmed(std::u16string_view text, std::size_t begin, std::size_t end) {
    const std::u16string_view part = text.substr(begin, end - begin);
    const std::size_t first = part.find_first_not_of(blanks);
    if (first == part.npos)
        return {end, end};
    return {begin + first, begin + part.find_last_not_of(blanks) + 1};
}

// The place of the first of the marks from `begin` on, outside of quotes, else the text's end. `open` tells
// whether a quote is open there; two quotes in a quoted text close and open it again, which comes to the
// same.
std::size_t find_outside_quotes(std::u16string_view text, std::size_t begin, std::u16string_view marks,
                                bool& open) {
    open = false;
    for (std::size_t i = begin; i < text.size(); ++i) {
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

} // namespace

// An entry, of one line of the file or of several that backslashes join.
struct InfText::JoinedLine {
    struct Piece {
        std::size_t begin; // in the text
        TextPlace place;
    };
    std::u16string text;
    std::vector<Piece> pieces;

    void add(std::u16string_view part, TextPlace place) {
        if (!part.empty() || pieces.empty())
            pieces.push_back({text.size(), place});
        text += part;
    }

    TextPlace place(std::size_t offset) const {
        const auto behind =
            std::upper_bound(pieces.begin(), pieces.end(), offset,
                             [](std::size_t value, const Piece& piece) { return value < piece.begin; });
        const Piece& piece = *(behind - 1);
        return {piece.place.line, piece.place.column + (offset - piece.begin)};
    }
};

bool InfText::refuse(std::uint32_t code, TextPlace place, std::string reason) {
    fault_ = {code, place, std::move(reason)};
    return false;
}

bool InfText::parse(std::u16string_view text) {
    *this = {};
    if (text.starts_with(u'\uFEFF'))
        text.remove_prefix(1);
    if (!parse_lines(text.substr(0, text.find(end_of_file))))
        return false;
    for (std::size_t section = 0; section < sections_.size(); ++section)
        index_lines(section);
    return replace_strings();
}

bool InfText::parse_lines(std::u16string_view text) {
    JoinedLine pending;
    for (std::size_t number = 1; !text.empty(); ++number) {
        const std::u16string_view line = text.substr(0, text.find(u'\n'));
        text.remove_prefix(std::min(line.size() + 1, text.size()));
        bool open = false;
        const std::size_t comment = find_outside_quotes(line, 0, u";", open);
        const Range range = trimmed(line, 0, comment);
        const TextPlace place{number, range.begin + 1};
        if (pending.pieces.empty() && range.begin < range.end && line[range.begin] == u'[') {
            if (!parse_header(line.substr(range.begin + 1), {number, range.begin + 2}))
                return false;
            continue;
        }
        // A backslash at a line's end joins the next line to it.
        std::u16string_view part = line.substr(range.begin, range.end - range.begin);
        const bool joins = !open && part.ends_with(u'\\');
        while (joins && part.ends_with(u'\\')) // those in front of the last are ignored
            part.remove_suffix(1);
        pending.add(part, place);
        if (joins)
            continue;
        if (!parse_entry(pending))
            return false;
        pending = {};
    }
    return pending.pieces.empty() || parse_entry(pending);
}

// `line` begins behind the bracket. Only the closing bracket ends a name, which may hold semicolons and
// quotes.
bool InfText::parse_header(std::u16string_view line, TextPlace place) {
    const std::size_t end = line.find(u']');
    if (end == line.npos)
        return refuse(inf_error::bad_section_name_line, place,
                      "a section's name without its closing bracket");
    const std::u16string name(line.substr(0, end));
    if (name.size() > longest_section_name)
        return refuse(inf_error::section_name_too_long, place,
                      "a section's name of more than 255 characters");
    const auto [known, added] = section_index_.try_emplace(upper_case(name), sections_.size());
    if (added)
        sections_.push_back({name, place, {}});
    current_ = known->second + 1;
    return true;
}

bool InfText::parse_entry(const JoinedLine& line) {
    const std::u16string_view text = line.text;
    const Range all = trimmed(text, 0, text.size());
    if (all.begin == all.end)
        return true;
    if (current_ == 0)
        return refuse(inf_error::expected_section_name, line.place(all.begin),
                      "an entry in front of the first section");
    const auto field = [&](std::size_t begin, std::size_t end) {
        const Range range = trimmed(text, begin, end);
        return InfValue{unquoted(text.substr(range.begin, range.end - range.begin)), line.place(range.begin)};
    };
    InfLine entry;
    entry.place = line.place(all.begin);
    bool open = false;
    std::size_t begin = 0;
    const std::size_t equals = find_outside_quotes(text, 0, u"=,", open);
    if (equals < text.size() && text[equals] == u'=') {
        entry.key = field(0, equals).text;
        begin = equals + 1;
    }
    for (;;) {
        const std::size_t comma = find_outside_quotes(text, begin, u",", open);
        entry.values.push_back(field(begin, comma));
        if (open)
            open_quotes_.push_back(entry.values.back().place);
        if (entry.values.back().text.size() > longest_field)
            return refuse(inf_error::general_syntax, entry.values.back().place,
                          "a value of more than 4,095 characters");
        if (comma == text.size())
            break;
        begin = comma + 1;
    }
    sections_[current_ - 1].lines.push_back(std::move(entry));
    return true;
}

void InfText::index_lines(std::size_t section) {
    line_index_.resize(sections_.size());
    Index& index = line_index_[section];
    index.clear();
    const std::vector<InfLine>& lines = sections_[section].lines;
    for (std::size_t i = 0; i < lines.size(); ++i)
        index.try_emplace(upper_case(lines[i].key), i); // the first of a key counts
}

// %name% for its text in [Strings]; %% for one per cent sign.
bool InfText::replace_strings_in(std::u16string& text, TextPlace place) {
    if (text.find(u'%') == text.npos)
        return true;
    std::u16string out;
    std::u16string_view rest = text;
    while (!rest.empty()) {
        const std::size_t begin = rest.find(u'%');
        const std::size_t end = begin == rest.npos ? rest.npos : rest.find(u'%', begin + 1);
        if (end == rest.npos) {
            out.append(rest);
            break;
        }
        out.append(rest.substr(0, begin));
        const std::u16string_view name = rest.substr(begin + 1, end - begin - 1);
        const InfLine* known = name.empty() ? nullptr : line(u"Strings", name);
        if (name.empty()) {
            out.push_back(u'%');
        } else if (known != nullptr) {
            out.append(known->values.front().text);
        } else {
            out.append(rest.substr(begin, end - begin + 1));
            unknown_strings_.push_back({std::u16string(name), place});
        }
        if (out.size() > longest_field)
            return refuse(inf_error::general_syntax, place, "a value of more than 4,095 characters");
        rest.remove_prefix(end + 1);
    }
    text = std::move(out);
    return true;
}

bool InfText::replace_strings() {
    for (std::size_t index = 0; index < sections_.size(); ++index) {
        if (same_name(sections_[index].name, u"Strings"))
            continue;
        for (InfLine& entry : sections_[index].lines) {
            if (!replace_strings_in(entry.key, entry.place))
                return false;
            for (InfValue& value : entry.values) {
                if (!replace_strings_in(value.text, value.place))
                    return false;
            }
        }
        index_lines(index);
    }
    return true;
}

const InfSection* InfText::section(std::u16string_view name) const {
    const auto found = section_index_.find(upper_case(name));
    return found == section_index_.end() ? nullptr : &sections_[found->second];
}

const InfLine* InfText::line(std::u16string_view section_name, std::u16string_view key) const {
    const auto found = section_index_.find(upper_case(section_name));
    if (found == section_index_.end() || found->second >= line_index_.size()) // a refused file has no index
        return nullptr;
    const Index& index = line_index_[found->second];
    const auto entry = index.find(upper_case(key));
    return entry == index.end() ? nullptr : &sections_[found->second].lines[entry->second];
}

std::u16string InfText::value(std::u16string_view section_name, std::u16string_view key) const {
    const InfLine* found = line(section_name, key);
    return found == nullptr ? std::u16string() : found->values.front().text;
}

} // namespace platform
