// The language in wrenchbay/settings.inf. Whether it counts is asked of the program; here is what stood in
// its way.
#include "rehearsal/check/settings_check.h"

#include "machine/text.h"
#include "package/settings.h"
#include "rehearsal/check/program_view.h"
#include "rehearsal/check/settings_text.h"
#include "rehearsal/check/subjects.h"

#include <algorithm>
#include <array>

namespace rehearsal::check {
namespace {

constexpr char settings_file[] = "wrenchbay/settings.inf";
constexpr std::string_view settings_section = "[UI]";
constexpr std::string_view settings_key = "Language=";
constexpr std::size_t longest_line =
    253; // bytes with the line end; the program's reader takes more for two lines

constexpr Rule settings_rules[] = {
    {"settings-encoding", Severity::error, "The settings aren't plain 8-bit text",
     "The setup reads bytes: UTF-16 holds no line that it knows, and a mark of UTF-8 hides a header on the "
     "first "
     "line. The language then follows the system.",
     "Save the file as 8-bit text without a mark.", "a file that an editor saved as \"Unicode\""},
    {"settings-section", Severity::error, "The section of the language isn't found",
     "The setup looks for a line that begins with \"[UI]\", in capitals and without blanks. Only the first "
     "such section "
     "counts. The language otherwise follows the system.",
     "Write [UI] on a line of its own, with Language= below it.", "[ui]"},
    {"settings-key", Severity::error, "The entry of the language isn't found",
     "The setup looks for a line that begins with \"Language=\", in this case, without a blank in front of "
     "it or "
     "before the equals sign. The language otherwise follows the system.",
     "Write Language= at the beginning of the line.", "language = DEU"},
    {"settings-language", Severity::error, "The language isn't one that the setup has",
     "A value that begins with none of ENU, ENG, FRA, DEU, ES, CH and JPN, in capitals, counts as none: the "
     "language "
     "follows the system.",
     "Write one of ENU, ENG (United Kingdom), FRA, DEU, CH, ES and JPN right behind the equals sign.",
     "Language=deu"},
    {"settings-language-name", Severity::warning, "More letters follow the language's abbreviation",
     "Only the first two or three letters are looked at, so that a word may choose what it doesn't say: "
     "ENGLISH is "
     "the English of the United Kingdom.",
     "Write the abbreviation alone.", "Language=ENGLISH"},
    {"settings-twice", Severity::warning, "The language is given twice",
     "The first entry counts, and the other isn't read.", "Keep one of the two.",
     "Language=DEU, and below it Language=FRA"},
    {"settings-long-line", Severity::warning, "A long line is read as several",
     "The setup reads lines of at most 253 bytes. What begins the next piece of a longer one counts as the "
     "beginning "
     "of a line, be it a header or an entry.",
     "Break the line.", "a comment of 300 bytes that has [UI] at its 254th"},
};

// What is written in the file, whether or not the setup sees it.
struct WrittenLanguage {
    std::size_t offset = 0; // of the line
    std::string_view line;
    std::string_view value; // without blanks
    std::size_t value_offset = 0;
    bool exact = false;      // begins with the key as the setup wants it
    bool in_section = false; // in the section that counts
};

class SettingsText {
public:
    SettingsText(const Medium& medium, const MediumEntry& file, Findings& findings)
        : medium_(medium), file_(file), findings_(findings), bytes_(medium.bytes(file)) {}

    void check(bool from_setting);

private:
    void add(std::string_view id, std::size_t offset, std::string reason) {
        findings_.add(id, medium_.place(file_, offset), std::move(reason));
    }
    void read();
    void read_header(const TextLine& line);
    void read_entry(const TextLine& line);
    void check_entry(const WrittenLanguage& entry, bool from_setting);
    void check_value(const WrittenLanguage& entry, bool from_setting);
    void check_long_lines();

    const Medium& medium_;
    const MediumEntry& file_;
    Findings& findings_;
    const std::string& bytes_;
    bool in_section_ = false;
    bool section_over_ = false;
    std::string_view near_header_; // one that was meant to be the section's, when there is none
    std::vector<WrittenLanguage> entries_;
};

void SettingsText::read_header(const TextLine& line) {
    const std::string_view text = without_blanks(line.text);
    section_over_ = section_over_ || in_section_;
    in_section_ = !section_over_ && line.text.starts_with(settings_section);
    near_header_ = {};
    if (line.text.starts_with(settings_section))
        return;
    const std::string_view inside = without_blanks(text.substr(1, text.find(']') - 1));
    if (same_text(inside, "UI") || !nearest(text, {settings_section}).empty())
        near_header_ = line.text;
}

void SettingsText::read_entry(const TextLine& line) {
    const std::size_t equals = line.text.find('=');
    if (equals == line.text.npos || !same_text(without_blanks(line.text.substr(0, equals)), "Language"))
        return;
    WrittenLanguage entry;
    entry.offset = line.offset;
    entry.line = line.text;
    entry.exact = line.text.starts_with(settings_key);
    entry.in_section = in_section_;
    const std::string_view behind = line.text.substr(equals + 1);
    entry.value = without_blanks(behind);
    entry.value_offset = line.offset + equals + 1;
    if (!in_section_)
        add("settings-section", line.offset,
            near_header_.empty()
                ? in_quotes(line.text) + " doesn't stand in the first section [UI], and isn't read"
                : in_quotes(line.text) + " isn't read: its section is " + in_quotes(near_header_) +
                      ", not \"[UI]\"");
    entries_.push_back(entry);
}

void SettingsText::read() {
    for (const TextLine& line : lines_of(bytes_, longest_line)) {
        if (without_blanks(line.text).starts_with('['))
            line.text.starts_with('[') ? read_header(line) : void(near_header_ = line.text);
        else
            read_entry(line);
    }
}

void SettingsText::check_value(const WrittenLanguage& entry, bool from_setting) {
    const std::vector<std::string_view> known = {"ENU", "ENG", "FRA", "DEU", "CH", "ES", "JPN"};
    if (!from_setting) {
        std::string_view bare = entry.value;
        bare.remove_prefix(std::min(bare.find_first_not_of('"'), bare.size()));
        const std::string_view near = nearest(bare, known);
        const auto other_case = std::find_if(known.begin(), known.end(), [&](std::string_view code) {
            return same_text(bare.substr(0, code.size()), code);
        });
        const std::string_view meant = other_case != known.end() ? *other_case : near;
        if (!meant.empty() && entry.value.starts_with(meant))
            return add("settings-language", entry.value_offset,
                       in_quotes(meant) + " is a language, but a blank stands in front of it");
        return add("settings-language", entry.value_offset,
                   (entry.value.empty() ? std::string("no language follows the equals sign")
                                        : in_quotes(entry.value) + " is no language of the setup") +
                       (meant.empty() ? std::string() : "; " + in_quotes(meant) + " is"));
    }
    const auto code = std::find_if(known.begin(), known.end(),
                                   [&](std::string_view each) { return entry.value.starts_with(each); });
    const char next =
        code != known.end() && entry.value.size() > code->size() ? entry.value[code->size()] : ' ';
    if (code != known.end() && code->size() == 3 && ((next | 0x20) >= 'a' && (next | 0x20) <= 'z'))
        add("settings-language-name", entry.value_offset,
            "of " + in_quotes(entry.value) + " only " + in_quotes(*code) + " counts");
}

void SettingsText::check_entry(const WrittenLanguage& entry, bool from_setting) {
    if (!entry.exact)
        return add("settings-key", entry.offset,
                   in_quotes(entry.line) +
                       " isn't found by the setup: it looks for a line that begins with \"Language=\"");
    check_value(entry, from_setting);
}

void SettingsText::check_long_lines() {
    for (const TextLine& line : lines_of(bytes_)) {
        for (std::size_t at = longest_line; at < line.text.size(); at += longest_line) {
            const std::string_view piece = line.text.substr(at);
            if (piece.starts_with('[') || piece.starts_with(settings_key))
                add("settings-long-line", line.offset + at,
                    "this is the " + std::to_string(at + 1) +
                        "th byte of its line, and counts as a line's beginning");
        }
    }
}

void SettingsText::check(bool from_setting) {
    if (is_wide_text(bytes_))
        return findings_.add("settings-encoding", {file_.path},
                             "the file is UTF-16 or has a zero byte in it");
    if (bytes_.starts_with("\xEF\xBB\xBF["))
        return add("settings-encoding", 0, "the mark of UTF-8 in front of the first header hides it");
    read();
    const WrittenLanguage* counting = nullptr;
    for (const WrittenLanguage& entry : entries_) {
        if (!entry.in_section)
            continue;
        if (counting != nullptr && entry.exact)
            add("settings-twice", entry.offset,
                "the language in line " + std::to_string(medium_.place(file_, counting->offset).line) +
                    " counts, this one isn't read");
        else
            check_entry(entry, from_setting);
        if (entry.exact && counting == nullptr)
            counting = &entry;
    }
    check_long_lines();
}

} // namespace

std::span<const Rule> rules_of_settings() {
    return settings_rules;
}

ChosenLanguage chosen_language(const Medium& medium) {
    DWORD from_setting = 0;
    ChosenLanguage chosen;
    with_program(medium, [&] { chosen.index = VLI_Get_Locale(&from_setting, 0); });
    chosen.from_setting = from_setting != 0;
    return chosen;
}

void check_settings(const Medium& medium, Findings& findings) {
    if (const MediumEntry* const file = medium.find_file(settings_file); file != nullptr)
        SettingsText(medium, *file, findings).check(chosen_language(medium).from_setting);
}

} // namespace rehearsal::check
