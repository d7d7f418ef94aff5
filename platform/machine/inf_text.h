// The INF language: sections of entries, as the platform's set-up reads them, each with its place in the
// file.
#pragma once

#include "machine/text_place.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace platform {

// The published results for a bad INF.
namespace inf_error {
constexpr std::uint32_t expected_section_name = 0x800F0000; // an entry in front of the first section
constexpr std::uint32_t bad_section_name_line = 0x800F0001; // a header without its bracket
constexpr std::uint32_t section_name_too_long = 0x800F0002; // more than 255 characters
constexpr std::uint32_t general_syntax = 0x800F0003;
constexpr std::uint32_t wrong_style = 0x800F0100; // no [Version] with a signature
constexpr std::uint32_t section_not_found = 0x800F0101;
constexpr std::uint32_t line_not_found = 0x800F0102;
constexpr std::uint32_t class_mismatch = 0x800F0201; // not of class Printer
} // namespace inf_error

// Why a file was refused: one of inf_error, or 0 and nothing else.
struct InfFault {
    std::uint32_t code = 0;
    TextPlace
        place; // of what is wrong, or of what asks for what is missing; nowhere if it is the file itself
    std::string reason; // UTF-8, for people, such as `no section [Label_100]`
};

// Quotes are taken off, %tokens% replaced.
struct InfValue {
    std::u16string text;
    TextPlace
        place; // of its first character, a quote or per cent sign included; of the comma behind an empty one
};

// `key = value, value, ...`, or values alone with an empty key.
struct InfLine {
    std::u16string key;
    TextPlace place;              // of the key, or of the first value when there is none
    std::vector<InfValue> values; // at least one, which may be empty
};

struct InfSection {
    std::u16string name;
    TextPlace place; // of the name in its first header
    std::vector<InfLine> lines;
};

// A %token% that [Strings] doesn't have. It stays in its text as it is.
struct InfUnknownString {
    std::u16string name;
    TextPlace place; // of the key or value that it is in
};

class InfText {
public:
    // Sections of the same name are joined. False when the file can't be read; `fault` then tells why.
    bool parse(std::u16string_view text);

    const InfFault& fault() const { return fault_; }
    const std::vector<InfSection>& sections() const { return sections_; } // in the order of the file
    const std::vector<InfUnknownString>& unknown_strings() const { return unknown_strings_; }

    // Values with a quote that isn't closed; it reaches to its line's end.
    const std::vector<TextPlace>& open_quotes() const { return open_quotes_; }

    // Without regard to case; null when there is none.
    const InfSection* section(std::u16string_view name) const;
    // The first entry of that key, or null.
    const InfLine* line(std::u16string_view section_name, std::u16string_view key) const;
    // Its first value, or an empty text.
    std::u16string value(std::u16string_view section_name, std::u16string_view key) const;

private:
    struct JoinedLine;
    using Index = std::unordered_map<std::u16string, std::size_t>; // names in upper case

    bool refuse(std::uint32_t code, TextPlace place, std::string reason);
    bool parse_lines(std::u16string_view text);
    bool parse_header(std::u16string_view line, TextPlace place);
    bool parse_entry(const JoinedLine& line);
    void index_lines(std::size_t section);
    bool replace_strings();
    bool replace_strings_in(std::u16string& text, TextPlace place);

    InfFault fault_;
    std::vector<InfSection> sections_;
    std::vector<InfUnknownString> unknown_strings_;
    std::vector<TextPlace> open_quotes_;
    Index section_index_;
    std::vector<Index> line_index_; // for each section
    std::size_t current_ = 0;       // the section that lines go to, from 1; 0: none yet
};

} // namespace platform
