// The support tools' names of the print profiles, wrenchbay/profilenames.inf. The setup copies the file when
// it is there and reads nothing of it; the tools find an entry as package/profile_names does.
#include "machine/little_endian.h"
#include "machine/text.h"
#include "rehearsal/check/settings_text.h"
#include "rehearsal/check/subjects.h"

#include <algorithm>
#include <map>

namespace rehearsal::check {
namespace {

constexpr char profile_names_file[] = "wrenchbay/profilenames.inf";
constexpr std::size_t longest_wide_line = 253; // characters with the line end

constexpr Rule profile_names_rules[] = {
    {"profile-names-encoding", Severity::error, "The profile names aren't little-endian UTF-16",
     "The tools read two bytes as one character and pass over the first two unseen: without a mark the first "
     "character "
     "is lost, and other encodings hold no line that they know.",
     "Save the file as little-endian UTF-16 with a byte order mark.", "a profilenames.inf in UTF-8"},
    {"profile-names-place", Severity::error, "A profile's name stands where it isn't found",
     "An entry belongs to the first section of its name, below a line that begins with \"[\" in its first "
     "column. One in "
     "front of all sections, or in a section that comes a second time, isn't read.",
     "Move the entry into the first section of that name.", "[English] twice in the file"},
    {"profile-names-key", Severity::error, "A profile's entry has blanks around its key",
     "The tools look for a line that begins with the key and an equals sign right behind it.",
     "Write the entry as key=name, without blanks in front or around the equals sign.",
     "label100_draft = Draft"},
    {"profile-names-empty", Severity::warning, "A profile has an empty name",
     "The tools find nothing and show none.", "Write the name behind the equals sign.", "label100_draft="},
    {"profile-names-twice", Severity::warning, "A profile has two names in one section",
     "The first one that isn't empty counts.", "Keep one of them.", "two lines label100_draft=..."},
    {"profile-names-line", Severity::warning, "A line of the profile names says nothing",
     "It is no header, no entry and no comment that begins with a semicolon, and is passed over.",
     "Write key=name, or put a semicolon in front.", "label100_draft Draft"},
    {"profile-names-long-line", Severity::warning, "A line of the profile names is read as several",
     "The tools read lines of at most 253 characters; the rest of a longer one counts as a line of its own, "
     "and the name "
     "is cut.",
     "Shorten the name.", "a name of 300 characters"},
};

class ProfileNames {
public:
    ProfileNames(const Medium& medium, const MediumEntry& file, Findings& findings)
        : medium_(medium), file_(file), findings_(findings), bytes_(medium.bytes(file)) {}

    void check();

private:
    void add(std::string_view id, std::size_t character, std::string reason) {
        findings_.add(id, medium_.place(file_, 2 + character * 2), std::move(reason));
    }
    const char* encoding_fault() const;
    void check_line(std::string_view line, std::size_t offset);
    void check_entry(std::string_view line, std::size_t equals, std::size_t offset);

    const Medium& medium_;
    const MediumEntry& file_;
    Findings& findings_;
    const std::string& bytes_;
    std::map<std::string, bool, std::less<>> sections_;    // those that were there
    std::map<std::string, std::size_t, std::less<>> keys_; // of the section, each with its line
    std::string section_;
    bool unread_section_ = true;
};

const char* ProfileNames::encoding_fault() const {
    if (bytes_.starts_with("\xFE\xFF"))
        return "the file is big-endian";
    if (!bytes_.starts_with("\xFF\xFE"))
        return bytes_.find('\0') == bytes_.npos ? "the file is 8-bit text"
                                                : "no byte order mark stands in front";
    return bytes_.size() % 2 != 0 ? "the file ends in half a character" : nullptr;
}

void ProfileNames::check() {
    if (bytes_.empty())
        return;
    if (const char* const fault = encoding_fault(); fault != nullptr)
        return findings_.add("profile-names-encoding", {file_.path}, fault);
    const std::u16string text = platform::utf16_text(std::string_view(bytes_).substr(2));
    for (std::size_t begin = 0; begin < text.size();) {
        const std::size_t end = std::min(text.find_first_of(u"\r\n", begin), text.size());
        const std::size_t end_characters = text.compare(end, 2, u"\r\n") == 0 ? 2 : end < text.size() ? 1 : 0;
        if (end - begin + end_characters > longest_wide_line)
            add("profile-names-long-line", begin,
                "the line has " + std::to_string(end - begin) + " characters");
        check_line(platform::to_utf8(std::u16string_view(text).substr(begin, end - begin)), begin);
        begin = end + end_characters;
    }
}

void ProfileNames::check_line(std::string_view line, std::size_t offset) {
    const std::string_view text = without_blanks(line);
    if (line.starts_with('[')) {
        section_ = text;
        keys_.clear();
        unread_section_ = !sections_.emplace(section_, true).second;
        return;
    }
    if (text.empty() || text.starts_with(';'))
        return;
    const std::size_t equals = line.find('=');
    if (text.starts_with('['))
        add("profile-names-place", offset, in_quotes(text) + " has a blank in front and is no header");
    else if (equals == line.npos)
        add("profile-names-line", offset, in_quotes(line) + " is neither header nor entry");
    else
        check_entry(line, equals, offset);
}

void ProfileNames::check_entry(std::string_view line, std::size_t equals, std::size_t offset) {
    const std::string key(line.substr(0, equals));
    if (unread_section_)
        return add("profile-names-place", offset,
                   in_quotes(line) + (section_.empty()
                                          ? " stands in front of all sections"
                                          : " stands in a second section " + in_quotes(section_)));
    if (without_blanks(key) != key || line.substr(equals + 1).starts_with(' '))
        return add("profile-names-key", offset,
                   in_quotes(line) + " has blanks around its key or equals sign");
    if (equals + 1 == line.size())
        return add("profile-names-empty", offset, in_quotes(key) + " has no name");
    const std::size_t number = medium_.place(file_, 2 + offset * 2).line;
    if (const auto [known, fresh] = keys_.emplace(key, number); !fresh)
        add("profile-names-twice", offset,
            in_quotes(key) + " has a name in line " + std::to_string(known->second));
}

} // namespace

std::span<const Rule> rules_of_profile_names() {
    return profile_names_rules;
}

void check_profile_names(const Medium& medium, Findings& findings) {
    if (const MediumEntry* const file = medium.find_file(profile_names_file); file != nullptr)
        ProfileNames(medium, *file, findings).check();
}

} // namespace rehearsal::check
