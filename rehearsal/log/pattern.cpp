#include "rehearsal/log/pattern.h"

#include <algorithm>

namespace rehearsal::logs {
namespace {

enum class Kind { literal, decimal, hexadecimal, text };

struct Token {
    Kind kind;
    std::string_view literal;
};

bool is_digit(char c, bool hexadecimal) {
    return (c >= '0' && c <= '9') || (hexadecimal && ((c >= 'a' && c <= 'f') || (c >= 'A' && c <= 'F')));
}

// Behind the '%': flags, width and size say nothing about what may stand in a line, but for padding blanks,
// which no format of the log has.
Kind kind_of_field(std::string_view pattern, std::size_t& place) {
    while (place < pattern.size() && (is_digit(pattern[place], false) || pattern[place] == 'l'))
        ++place;
    const char letter = place < pattern.size() ? pattern[place++] : 's';
    return letter == 'x' ? Kind::hexadecimal : letter == 's' || letter == 'S' ? Kind::text : Kind::decimal;
}

std::vector<Token> split_pattern(std::string_view pattern) {
    std::vector<Token> tokens;
    std::size_t place = 0;
    while (place < pattern.size()) {
        if (pattern[place] == '%') {
            ++place;
            tokens.push_back({kind_of_field(pattern, place), {}});
            continue;
        }
        const std::size_t end = std::min(pattern.find('%', place), pattern.size());
        tokens.push_back({Kind::literal, pattern.substr(place, end - place)});
        place = end;
    }
    return tokens;
}

std::size_t end_of_number(std::string_view line, std::size_t place, bool hexadecimal) {
    constexpr std::size_t longest = 20;
    std::size_t end = place;
    if (!hexadecimal && end < line.size() && line[end] == '-')
        ++end;
    const std::size_t first = end;
    while (end < line.size() && end - first < longest && is_digit(line[end], hexadecimal))
        ++end;
    return end == first ? std::string_view::npos : end;
}

// Tokens [first, last) without any text, at exactly this place: where they end, or npos.
std::size_t match_at(const std::vector<Token>& tokens, std::size_t first, std::size_t last,
                     std::string_view line, std::size_t place, Fields& fields) {
    for (std::size_t i = first; i < last; ++i) {
        const Token& token = tokens[i];
        if (token.kind == Kind::literal) {
            if (line.substr(place, token.literal.size()) != token.literal)
                return std::string_view::npos;
            place += token.literal.size();
            continue;
        }
        const std::size_t end = end_of_number(line, place, token.kind == Kind::hexadecimal);
        if (end == std::string_view::npos)
            return end;
        fields.push_back(line.substr(place, end - place));
        place = end;
    }
    return place;
}

std::size_t next_text(const std::vector<Token>& tokens, std::size_t from) {
    while (from < tokens.size() && tokens[from].kind != Kind::text)
        ++from;
    return from;
}

std::string_view without_end_blanks(std::string_view text) {
    while (!text.empty() && (text.back() == ' ' || text.back() == '\t'))
        text.remove_suffix(1);
    return text;
}

// A text from `place` on and the tokens [first, last) behind it, as early as they fit. The last part has to
// end with the line. Gives the place behind, or npos.
std::size_t match_text(const std::vector<Token>& tokens, std::size_t first, std::size_t last,
                       std::string_view line, std::size_t place, Fields& fields) {
    const bool closing = last == tokens.size();
    const std::size_t known = fields.size();
    if (first == last) { // nothing but another text can follow, or the line's end
        fields.push_back(line.substr(place));
        return line.size();
    }
    for (std::size_t begin = place; begin <= line.size(); ++begin) {
        if (tokens[first].kind == Kind::literal) {
            begin = line.find(tokens[first].literal, begin);
            if (begin == std::string_view::npos)
                break;
        }
        fields.push_back(line.substr(place, begin - place));
        const std::size_t end = match_at(tokens, first, last, line, begin, fields);
        if (end != std::string_view::npos && (!closing || end == line.size()))
            return end;
        fields.resize(known);
    }
    return std::string_view::npos;
}

bool match_whole(std::string_view pattern, std::string_view line, Fields& fields) {
    fields.clear();
    const std::vector<Token> tokens = split_pattern(pattern);
    std::size_t text = next_text(tokens, 0);
    std::size_t place = match_at(tokens, 0, text, line, 0, fields);
    while (place != std::string_view::npos && text < tokens.size()) {
        const std::size_t next = next_text(tokens, text + 1);
        place = match_text(tokens, text + 1, next, line, place, fields);
        text = next;
    }
    return place == line.size();
}

// A closing text that is empty, with the blank in front of it lost: "Printer found 10.0.0.7".
bool match_without_last_text(std::string_view pattern, std::string_view line, Fields& fields) {
    if (!pattern.ends_with(" %s") && !pattern.ends_with(" %S"))
        return false;
    pattern.remove_suffix(3);
    if (pattern.find('%') == std::string_view::npos || !match_whole(pattern, line, fields))
        return false;
    fields.push_back(line.substr(line.size()));
    return true;
}

} // namespace

bool match_pattern(std::string_view pattern, std::string_view line, Fields& fields) {
    if (match_whole(pattern, line, fields))
        return true;
    line = without_end_blanks(line);
    return match_whole(without_end_blanks(pattern), line, fields) ||
           match_without_last_text(pattern, line, fields);
}

std::vector<std::string> literal_parts(std::string_view pattern) {
    std::vector<std::string> parts;
    for (const Token& token : split_pattern(pattern))
        if (token.kind == Kind::literal)
            parts.emplace_back(token.literal);
    return parts;
}

} // namespace rehearsal::logs
