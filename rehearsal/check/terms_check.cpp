// The agreement that the user has to accept, licenses/license*.txt.
#include "app/terms_page.h"

#include "machine/little_endian.h"
#include "machine/text.h"
#include "package/languages.h"
#include "rehearsal/check/settings_check.h"
#include "rehearsal/check/settings_text.h"
#include "rehearsal/check/subjects.h"

#include <algorithm>

namespace rehearsal::check {
namespace {

constexpr std::size_t mark_bytes = 2; // passed over unseen by the page, whatever they are

constexpr Rule terms_rules[] = {
    {"terms-missing", Severity::warning, "A language has no terms of its own",
     "The page shows license.txt instead, in whatever language that is.",
     "Put the agreement in that language beside license.txt, as UTF-16.", "no licenses/license_DEU.txt"},
    {"terms-none", Severity::error, "A language has no terms at all",
     "The page opens with an empty text, and the user can accept it all the same.",
     "Put the agreement into licenses/license.txt, as UTF-16.", "no licenses/license.txt"},
    {"terms-empty", Severity::error, "The terms are empty",
     "A file of up to three bytes counts as read and shows an empty page; one of none is passed over for "
     "license.txt.",
     "Put the agreement into the file, as UTF-16 with a byte order mark.", "a file of 2 bytes"},
    {"terms-encoding", Severity::error, "The terms aren't little-endian UTF-16",
     "The page shows two bytes as one letter each, without a look at the mark: 8-bit text, UTF-8 and "
     "big-endian text "
     "show as nonsense.",
     "Save the file as little-endian UTF-16 with a byte order mark (\"Unicode\" in many editors).",
     "a license.txt in UTF-8"},
    {"terms-mark", Severity::error, "The terms have no byte order mark",
     "The page passes over the first two bytes unseen, so that the first letter isn't shown.",
     "Save the file with a byte order mark.", "UTF-16 that begins with 4C 00 for \"L\""},
    {"terms-long", Severity::error, "The terms are longer than the page shows",
     "At most 16,381 characters are read; what follows is cut off without a word, and yet accepted.",
     "Shorten the agreement, or say in it where the rest is to be read.",
     "an agreement of 20,000 characters"},
    {"terms-half", Severity::error, "The terms end in half a character",
     "The odd last byte isn't shown. The file was cut, or joined from two of different encodings.",
     "Save the whole text again.", "a file of 1,001 bytes"},
    {"terms-character", Severity::error, "The terms have a character that ends or spoils them",
     "A zero ends the text that the page shows; half a surrogate pair shows as a box. Either is a sign of "
     "text that "
     "isn't UTF-16.",
     "Take the character out, or save the text again as UTF-16.", "a zero character in the middle"},
    {"terms-line-end", Severity::warning, "The terms have line ends that the page doesn't show",
     "The text's control breaks lines at CR LF alone; a line feed or a CR by itself shows as nothing, and "
     "paragraphs run "
     "together.",
     "Save the file with CR LF line ends.", "a text written on Linux"},
    {"terms-unused", Severity::warning, "No language uses this file of terms",
     "The names are fixed: license.txt, and license_ENU.txt (United Kingdom), license_FRA.txt, "
     "license_DEU.txt, "
     "license_CH.txt, license_ES.txt and license_JPN.txt.",
     "Give it the name of its language, or take it off the medium.", "licenses/license_GER.txt"},
};

constexpr const char* language_names[language_count] = {
    "English", "English (United Kingdom)", "French", "German", "Chinese", "Spanish", "Japanese"};

std::string terms_path(int language) {
    return "licenses/license" + platform::to_utf8(languages[language].terms_suffix) + ".txt";
}

char16_t unit_at(std::string_view bytes, std::size_t at) {
    return static_cast<char16_t>(platform::number_at(bytes, at, 2).value_or(0));
}

// 8-bit text has no zero bytes; in 16-bit text of any language, line ends and blanks have them, first or
// second.
const char* wrong_encoding(std::string_view bytes) {
    if (bytes.starts_with("\xFE\xFF"))
        return "the text is big-endian";
    if (bytes.starts_with("\xFF\xFE"))
        return nullptr;
    if (bytes.starts_with("\xEF\xBB\xBF"))
        return "the text is UTF-8";
    return bytes.find('\0') == bytes.npos ? "the text is 8-bit text" : nullptr;
}

class TermsFile {
public:
    TermsFile(const Medium& medium, const MediumEntry& file, Findings& findings)
        : medium_(medium), file_(file), findings_(findings), bytes_(medium.bytes(file)) {}

    void check() {
        if (bytes_.size() < mark_bytes + sizeof(char16_t))
            return findings_.add("terms-empty", {file_.path},
                                 "the file has " + counted_text(bytes_.size(), "byte") + ", and no text");
        if (const char* const wrong = wrong_encoding(bytes_); wrong != nullptr)
            return add("terms-encoding", 0, wrong);
        if (!bytes_.starts_with("\xFF\xFE"))
            add("terms-mark", 0, "no byte order mark stands in front, and the first letter isn't shown");
        check_length();
        check_characters();
    }

private:
    void add(std::string_view id, std::size_t offset, std::string reason) {
        findings_.add(id, medium_.place(file_, offset), std::move(reason));
    }
    void check_length();
    void check_characters();

    const Medium& medium_;
    const MediumEntry& file_;
    Findings& findings_;
    const std::string& bytes_;
};

void TermsFile::check_length() {
    const std::size_t characters = (bytes_.size() - mark_bytes) / sizeof(char16_t);
    const std::size_t shown = longest_terms / sizeof(char16_t) - 1;
    if (characters > shown)
        add("terms-long", longest_terms,
            "the page shows " + std::to_string(shown) + " characters, and of " + std::to_string(characters) +
                " these and what follows aren't shown");
    if (bytes_.size() % sizeof(char16_t) != 0)
        add("terms-half", bytes_.size() - 1, "the last byte is half a character");
}

// The first of each kind; one says all.
void TermsFile::check_characters() {
    bool line_end_told = false;
    const std::size_t end = std::min<std::size_t>(bytes_.size(), longest_terms) & ~std::size_t{1};
    const auto next = [&](std::size_t at) { return at + 2 < end ? unit_at(bytes_, at + 2) : u'\0'; };
    for (std::size_t at = mark_bytes; at < end; at += sizeof(char16_t)) {
        const char16_t unit = unit_at(bytes_, at);
        const bool high = unit >= 0xD800 && unit < 0xDC00;
        const bool low_follows = next(at) >= 0xDC00 && next(at) < 0xE000;
        if (unit == 0)
            return add("terms-character", at, "a zero character stands here and ends the text");
        if (unit == 0xFFFE || unit == 0xFFFF || (unit >= 0xDC00 && unit < 0xE000) ||
            (high && !low_follows && at + 2 < end))
            return add("terms-character", at, "what stands here is no character of UTF-16");
        if (high)
            at += sizeof(char16_t);
        const bool whole = unit == u'\r' && next(at) == u'\n';
        if (!line_end_told && !whole && (unit == u'\r' || unit == u'\n')) {
            line_end_told = true;
            add("terms-line-end", at,
                "the line ends in " + std::string(unit == u'\r' ? "CR" : "LF") + " alone");
        }
        if (whole)
            at += sizeof(char16_t);
    }
}

// Where a missing file is told.
Place terms_folder(const Medium& medium) {
    const MediumEntry* const folder = medium.find("licenses");
    return {folder != nullptr ? folder->path : std::string()};
}

void check_language(const Medium& medium, int language, Findings& findings) {
    const MediumEntry* const own = medium.find_file(terms_path(language));
    const MediumEntry* const common = medium.find_file(terms_path(english));
    if (own != nullptr && own->size != 0)
        return;
    if (common == nullptr)
        findings.add("terms-none", terms_folder(medium),
                     std::string(language_names[language]) + " has no terms: neither " +
                         terms_path(language) +
                         (language == english ? " is there" : " nor license.txt is there"));
    else if (own == nullptr)
        findings.add("terms-missing", terms_folder(medium),
                     std::string(language_names[language]) + " has no " + terms_path(language) +
                         ", and license.txt is shown");
}

void check_unused(const Medium& medium, Findings& findings) {
    std::vector<std::string> paths(language_count);
    for (int language = 0; language < language_count; ++language)
        paths[static_cast<std::size_t>(language)] = terms_path(language);
    for (const MediumEntry* const entry : medium.in_folder("licenses")) {
        if (!folded(entry->name()).starts_with("LICENSE"))
            continue;
        if (std::any_of(paths.begin(), paths.end(),
                        [&](const auto& path) { return same_text(path, entry->path); }))
            continue;
        const std::string_view near = nearest(entry->path, {paths.begin(), paths.end()});
        findings.add("terms-unused", {entry->path},
                     "the setup never looks for this file" +
                         (near.empty() ? "" : "; the nearest name is " + std::string(near)));
    }
}

} // namespace

std::span<const Rule> rules_of_terms() {
    return terms_rules;
}

void check_terms(const Medium& medium, Findings& findings) {
    const ChosenLanguage chosen = chosen_language(medium);
    for (int language = 0; language < language_count; ++language) {
        if (chosen.from_setting && chosen.index != language)
            continue;
        check_language(medium, language, findings);
    }
    for (int language = 0; language < language_count; ++language)
        if (const MediumEntry* const file = medium.find_file(terms_path(language)); file != nullptr)
            TermsFile(medium, *file, findings).check();
    check_unused(medium, findings);
}

} // namespace rehearsal::check
