#include "rehearsal/check/inf_lines.h"

#include "rehearsal/check/medium.h"

#include <algorithm>

namespace rehearsal::check {
namespace {

std::string_view bare(std::string_view text) {
    constexpr std::string_view blanks = " \t\r\n";
    const std::size_t begin = text.find_first_not_of(blanks);
    return begin == text.npos ? std::string_view()
                              : text.substr(begin, text.find_last_not_of(blanks) - begin + 1);
}

// Up to a semicolon outside of quotes.
std::string_view before_comment(std::string_view line) {
    bool quoted = false;
    for (std::size_t i = 0; i < line.size(); ++i) {
        quoted = quoted != (line[i] == '"');
        if (line[i] == ';' && !quoted)
            return line.substr(0, i);
    }
    return line;
}

template<class Name>
const InfByteLine* best_of(const std::vector<const InfByteLine*>& lines, std::string_view wanted, Name name) {
    std::vector<std::string_view> names;
    for (const InfByteLine* const line : lines) {
        if (same_text(name(*line), wanted))
            return line;
        names.push_back(name(*line));
    }
    const std::string_view near = nearest(wanted, names);
    for (const InfByteLine* const line : lines)
        if (!near.empty() && name(*line) == near)
            return line;
    return nullptr;
}

} // namespace

std::vector<InfByteLine> split_inf(std::string_view bytes) {
    std::vector<InfByteLine> lines;
    std::string_view section;
    for (std::size_t begin = bytes.starts_with("\xEF\xBB\xBF") ? 3 : 0; begin < bytes.size();) {
        const std::size_t end = std::min(bytes.find('\n', begin), bytes.size());
        InfByteLine line;
        line.text = bare(before_comment(bytes.substr(begin, end - begin)));
        begin = end + 1;
        if (line.text.empty())
            continue;
        line.offset = static_cast<std::size_t>(line.text.data() - bytes.data());
        line.header = line.text.front() == '[';
        if (line.header)
            section = bare(line.text.substr(1, line.text.find(']') - 1));
        else if (const std::size_t equals = line.text.find('='); equals != line.text.npos)
            line.key = bare(line.text.substr(0, equals));
        line.section = section;
        lines.push_back(line);
    }
    return lines;
}

const InfByteLine* header_like(const std::vector<InfByteLine>& lines, std::string_view name) {
    std::vector<const InfByteLine*> headers;
    for (const InfByteLine& line : lines)
        if (line.header)
            headers.push_back(&line);
    return best_of(headers, name, [](const InfByteLine& line) { return line.section; });
}

const InfByteLine* entry_like(const std::vector<InfByteLine>& lines, std::string_view section,
                              std::string_view key) {
    std::vector<const InfByteLine*> entries;
    for (const InfByteLine& line : lines)
        if (!line.key.empty() && same_text(line.section, section))
            entries.push_back(&line);
    return best_of(entries, key, [](const InfByteLine& line) { return line.key; });
}

} // namespace rehearsal::check
