// The table of label sizes, wrenchbay/media.inf. Which rows count is asked of the program's own reader; here
// is where they stand, what ends them, and what in them an installation takes but nobody can have meant.
#include "package/media_table.h"

#include "package/package_file.h"
#include "rehearsal/check/settings_text.h"
#include "rehearsal/check/subjects.h"
#include "support/text.h"

#include <algorithm>
#include <map>

namespace rehearsal::check {
namespace {

constexpr char media_file[] = "wrenchbay/media.inf";
constexpr std::string_view media_header = "[Media]";

constexpr Rule media_rules[] = {
    {"media-encoding", Severity::error, "The media table isn't 8-bit text",
     "The setup reads bytes: a UTF-16 file holds no \"[Media]\" for it, and a zero byte ends the text. The "
     "queue "
     "gets no label sizes, and the user still reads that the installation succeeded.",
     "Save the file as 8-bit text in the code page of the systems it is for.",
     "a file that an editor saved as \"Unicode\""},
    {"media-utf8", Severity::warning, "A label size's name is UTF-8",
     "The bytes go to the printer's data as they are, and Windows shows them in its ANSI code page: each "
     "letter "
     "beyond 7 bits becomes two or three wrong ones.",
     "Save the file in the code page of the systems it is for, or use plain letters.",
     "\"Étiquette\",\"100.0\",\"50.0\",0 in UTF-8"},
    {"media-empty", Severity::error, "The media table is empty",
     "A new queue gets no label sizes, and the user still reads that the installation succeeded.",
     "Write a line [Media] and the rows below it.", "a file of 0 bytes"},
    {"media-header", Severity::error, "The header of the media table isn't found",
     "The setup looks for the first \"[Media]\", in exactly these letters, with a line end right behind it "
     "and the "
     "first row on the very next line. Otherwise no label size is read.",
     "Write [Media] on a line of its own.", "[media]"},
    {"media-no-rows", Severity::error, "The media table has no rows",
     "A new queue gets no label sizes, and the user still reads that the installation succeeded.",
     "Write a row on the line right below [Media].", "[Media]"},
    {"media-ends-early", Severity::error, "The media table ends in front of more rows",
     "The first line that isn't a row ends the table: an empty line, a comment, a row with a fault. The rows "
     "behind "
     "it aren't read, and nothing tells the user.",
     "Take the line out, or put it in front of [Media] or behind the last row.",
     "; small labels, in front of \"Label 50x25\",\"50.0\",\"25.0\",0"},
    {"media-row", Severity::error, "A line of the media table isn't a row",
     "A row is a name of at most 63 bytes, a width and a length of at most 7, each in double quotes, and a "
     "number. "
     "What isn't one ends the table, and nothing tells the user.",
     "Write the row as \"name\",\"width\",\"length\",units.", "\"Label 100x50\",100.0,\"50.0\",0"},
    {"media-beyond", Severity::error, "The media table is too long",
     "The setup reads the first 4,095 bytes of the file. Rows behind them don't exist, and one that the "
     "limit cuts is "
     "lost or gets a wrong number.",
     "Shorten the comments in front of [Media], or leave out rows.", "the 80th row of a long table"},
    {"media-text", Severity::warning, "A field of the media table is empty or has a line end in it",
     "It goes into the printer's data as it is, and the driver gets a label size without a name or a size.",
     "Give the field its text, in quotes on one line.", "\"Label 100x50\",\"\",\"50.0\",0"},
    {"media-number", Severity::warning, "A width or length isn't a number above zero",
     "The setup writes it to the printer's data as it stands; a driver that reads a number there gets a "
     "wrong size.",
     "Write digits, with a point in front of the decimal places.", "\"Label 100x50\",\"100,0\",\"50.0\",0"},
    {"media-units", Severity::warning, "The units of a label size aren't a plain number",
     "The setup reads the digits that it finds and takes 0 when there are none.",
     "Write the unit's number alone behind the third comma.", "\"Label 100x50\",\"100.0\",\"50.0\",mm"},
    {"media-twice", Severity::warning, "Two label sizes have the same name",
     "Both are written, and the user sees the name twice without knowing which is which.",
     "Give each label size a name of its own.", "two rows that begin with \"Label 100x50\""},
};

// The table in the bytes that the setup reads.
class MediaTable {
public:
    MediaTable(const Medium& medium, const MediumEntry& file, Findings& findings)
        : medium_(medium), file_(file), findings_(findings), bytes_(medium.bytes(file)),
          text_(bytes_.substr(0, chunk_bytes)) {}

    void check();

private:
    void add(std::string_view id, std::size_t offset, std::string reason) {
        findings_.add(id, medium_.place(file_, offset), std::move(reason));
    }
    void check_header();
    void check_rows(std::size_t header);
    void check_row(std::size_t at, const LabelSize& row);
    void check_size(const char* what, std::size_t at, std::string_view text);
    void check_units(std::size_t at, int units);
    void check_end(std::size_t at, std::size_t rows);
    std::size_t row_start(std::size_t at) const;
    std::size_t field_start(std::size_t at) const;
    bool more_rows(std::size_t from) const;

    const Medium& medium_;
    const MediumEntry& file_;
    Findings& findings_;
    const std::string& bytes_;
    const std::string text_;                                // terminated, as the reader needs it
    std::map<std::string, std::size_t, std::less<>> names_; // the line of each
};

void MediaTable::check() {
    if (bytes_.empty())
        return findings_.add("media-empty", {file_.path}, "the file is empty");
    if (is_wide_text(text_)) {
        const bool marked = text_[0] != 0 && (text_.starts_with("\xFF\xFE") || text_.starts_with("\xFE\xFF"));
        return add("media-encoding", marked ? 0 : text_.find('\0'),
                   marked ? "the file is UTF-16, and the setup reads bytes"
                          : "a zero byte ends the text for the setup");
    }
    const char* const header = find_ansi(text_.c_str(), media_header.data());
    if (header == nullptr)
        return check_header();
    check_rows(static_cast<std::size_t>(header - text_.c_str()));
}

// Without a header that counts: what was meant to be one.
void MediaTable::check_header() {
    if (const std::size_t later = bytes_.find(media_header); later != bytes_.npos)
        return add("media-beyond", later,
                   "[Media] stands behind the first 4,095 bytes, which are all that is read");
    for (const TextLine& line : lines_of(text_)) {
        const std::string_view text = without_blanks(line.text);
        if (!text.starts_with('[') ||
            (!same_text(text, media_header) && nearest(text, {media_header}).empty()))
            continue;
        return add("media-header", line.offset + line.text.find('['),
                   in_quotes(text) + " isn't found by the setup: it looks for \"[Media]\", exactly");
    }
    findings_.add("media-header", {file_.path}, "the file has no line [Media]");
}

// The first byte of what the reader takes for the next row: behind the line that it stands on, or on it
// behind a blank.
std::size_t MediaTable::row_start(std::size_t at) const {
    at = std::min(text_.find_first_of("\t\r\n ", at), text_.size());
    if (text_.compare(at, 1, "\r") == 0)
        ++at;
    if (text_.compare(at, 1, "\n") == 0)
        ++at;
    return at;
}

std::size_t MediaTable::field_start(std::size_t at) const {
    return std::min(text_.find_first_not_of("\t ,", at), text_.size());
}

void MediaTable::check_rows(std::size_t header) {
    std::size_t at = header;
    std::size_t rows = 0;
    LabelSize row;
    while (const char* const next = scan_media_row(text_.c_str() + at, &row)) {
        check_row(row_start(at), row);
        at = static_cast<std::size_t>(next - text_.c_str());
        ++rows;
    }
    const std::string_view behind = std::string_view(text_).substr(header + media_header.size());
    if (rows == 0 && !behind.empty() && !behind.starts_with('\r') && !behind.starts_with('\n')) {
        add("media-header", header,
            "this \"[Media]\" is the first and counts, but no line end stands right behind it");
        return;
    }
    check_end(row_start(at), rows);
}

void MediaTable::check_row(std::size_t at, const LabelSize& row) {
    at = field_start(at);
    const std::size_t line = medium_.place(file_, at).line;
    if (const auto [known, fresh] = names_.emplace(row.name, line); !fresh)
        add("media-twice", at,
            in_quotes(row.name) + " is also the name in line " + std::to_string(known->second));
    if (has_utf8_letters(row.name))
        add("media-utf8", at + 1, in_quotes(row.name) + " is UTF-8, which the systems show letter by letter");
    const struct {
        const char* what;
        std::string_view text;
    } fields[] = {{"name", row.name}, {"width", row.width}, {"length", row.length}};
    for (const auto& field : fields) {
        at = field_start(at);
        if (field.text.find_first_of("\r\n") != field.text.npos || without_blanks(field.text).empty())
            add("media-text", at,
                std::string("the ") + field.what +
                    (field.text.find_first_of("\r\n") != field.text.npos
                         ? " runs over a line end: its closing quote is missing"
                         : " is empty"));
        else if (field.text.data() != row.name)
            check_size(field.what, at + 1, field.text);
        at += field.text.size() + 2;
    }
    check_units(field_start(at), row.units);
}

void MediaTable::check_size(const char* what, std::size_t at, std::string_view text) {
    const std::string shown = std::string(what) + " " + in_quotes(text) + ": ";
    if (const std::size_t comma = text.find(','); comma != text.npos)
        return add("media-number", at + comma, shown + "a number has a point, not a comma");
    const std::size_t point = text.find('.');
    const std::size_t wrong = text.find_first_not_of("0123456789.");
    if (wrong != text.npos || text == "." || (point != text.npos && text.find('.', point + 1) != text.npos))
        return add("media-number", at, shown + "it isn't a number of digits and at most one point");
    if (text.find_first_not_of("0.") == text.npos)
        add("media-number", at, shown + "a label has a size above zero");
}

void MediaTable::check_units(std::size_t at, int units) {
    const std::string_view rest = std::string_view(text_).substr(at);
    const std::string_view written = without_blanks(rest.substr(0, rest.find_first_of(",\r\n")));
    if (written != std::to_string(units))
        add("media-units", at,
            written.empty() ? "the units are missing and count as 0"
                            : "the units " + in_quotes(written) + " count as " + std::to_string(units));
}

// Whether a line from there on, in the same section, begins like a row.
bool MediaTable::more_rows(std::size_t from) const {
    for (const TextLine& line : lines_of(std::string_view(bytes_).substr(from))) {
        const std::string_view text = without_blanks(line.text);
        if (text.starts_with('['))
            return false;
        if (text.starts_with('"'))
            return true;
    }
    return false;
}

// What in the row at the place can't be read; empty when it is none and doesn't look like one.
std::string media_row_fault(const char* text) {
    char name[sizeof(LabelSize::name)];
    char size[sizeof(LabelSize::width)];
    const struct {
        const char* what;
        char* field;
        DWORD capacity;
    } fields[] = {{"name", name, sizeof name}, {"width", size, sizeof size}, {"length", size, sizeof size}};
    for (const auto& field : fields) {
        const char* const next = read_quoted_field(text, field.field, field.capacity);
        if (next != nullptr) {
            text = next;
            continue;
        }
        std::string_view rest = text;
        rest.remove_prefix(std::min(rest.find_first_not_of("\t ,"), rest.size()));
        if (!rest.starts_with('"'))
            return field.field == name ? std::string()
                                       : std::string("no ") + field.what + " in double quotes follows";
        const std::size_t line_end = rest.find_first_of("\r\n");
        const std::size_t quote = rest.find('"', 1);
        if (quote == rest.npos || quote > line_end)
            return std::string("the quote of the ") + field.what + " isn't closed";
        return std::string("the ") + field.what + " has " + std::to_string(quote - 1) + " bytes, at most " +
               std::to_string(field.capacity - 1) + " are taken";
    }
    return "the units are missing at the end of the file";
}

void MediaTable::check_end(std::size_t at, std::size_t rows) {
    const std::string count = counted_text(rows, "row") + (rows == 1 ? " counts" : " count");
    const bool cut = bytes_.size() > text_.size();
    if (cut && text_.find_first_of("\r\n", at) == text_.npos && (at < text_.size() || more_rows(at)))
        return add("media-beyond", at,
                   "the first 4,095 bytes end here and " + count + "; what follows isn't read");
    const std::string fault = at < text_.size() ? media_row_fault(text_.c_str() + at) : std::string();
    if (!fault.empty())
        return add("media-row", field_start(at), fault + ", which ends the table: " + count);
    if (at < text_.size() && more_rows(at))
        return add("media-ends-early", at,
                   "this line isn't a row and ends the table in front of more: " + count);
    if (rows == 0)
        add("media-no-rows", at, "no row stands right below [Media]");
}

} // namespace

std::span<const Rule> rules_of_media_table() {
    return media_rules;
}

void check_media_table(const Medium& medium, Findings& findings) {
    if (const MediumEntry* const file = medium.find_file(media_file); file != nullptr)
        MediaTable(medium, *file, findings).check();
}

} // namespace rehearsal::check
