#include "rehearsal/pages/source_view.h"

#include "machine/text.h"
#include "rehearsal/check/check.h"
#include "rehearsal/check/subjects.h"
#include "rehearsal/log/log_text.h"

#include <algorithm>
#include <span>

namespace rehearsal::pages {
namespace {

using check::Finding;
using check::Severity;

constexpr std::size_t lines_around = 2;      // in front of and behind a line with findings
constexpr std::size_t most_bytes = 1U << 20; // of a file that is shown

bool is_wide(std::string_view bytes) {
    return bytes.starts_with("\xFF\xFE") || bytes.starts_with("\xFE\xFF");
}

// What is no UTF-8 becomes U+FFFD on the way and is something else then.
bool is_utf8(std::string_view line) {
    return platform::to_utf8(platform::to_utf16(line)) == line;
}

// How many UTF-16 units stand in front of the byte.
std::size_t units_before(std::string_view line, std::size_t byte) {
    return platform::to_utf16(line.substr(0, byte)).size();
}

// Where the character begins that a column counts; the line's end for one beyond it.
std::size_t byte_of_column(std::string_view line, std::size_t column) {
    std::size_t byte = 0;
    while (byte < line.size() && units_before(line, byte) + 1 < column)
        do
            ++byte;
        while (byte < line.size() && (line[byte] & 0xC0) == 0x80);
    return byte;
}

// A line, with the word marked that the first of its findings points at.
void put_line(Html& html, const std::string& line, std::size_t number, std::span<const Finding> findings) {
    const std::string shown = std::to_string(number);
    const auto row = html.in("div", {{"class", findings.empty() ? "line" : "line found"}});
    html.put("span", {{"class", "number"}}, shown);
    const auto code = html.in("code");
    if (findings.empty() || findings.front().place.line != number)
        return html.text(line);
    const std::size_t begin = byte_of_column(line, findings.front().place.column);
    const std::size_t end = std::min(line.find_first_of(" \t,;=\"", begin + 1), line.size());
    html.text(std::string_view(line).substr(0, begin));
    html.put("mark", std::string_view(line).substr(begin, begin < end ? end - begin : 0));
    if (begin < end)
        html.text(std::string_view(line).substr(end));
}

void put_finding(Html& html, const Finding& finding) {
    const char* const kind = check::name_of(finding.severity);
    const std::string names = "finding " + std::string(tone_class(tone_of(finding.severity)));
    const auto element = html.in("div", {{"class", names}, {"data-kind", kind}, {"data-entry", ""}});
    {
        const auto line = html.in("p");
        html.put("b", {{"class", "severity"}}, kind);
        html.text(" " + finding.reason + ". ");
        html.put("code", {{"class", "id"}}, finding.id);
    }
    html.put("p", {{"class", "remedy"}}, finding.remedy);
    if (const check::Rule* const rule = check::find_rule(finding.id)) {
        const auto details = html.in("details");
        html.put("summary", "Why");
        html.put("p", rule->cause);
    }
}

// Lines from `first` up to `end`, from 0, that no finding is near.
void put_folded(Html& html, const std::vector<std::string>& lines, std::size_t first, std::size_t end) {
    if (first >= end)
        return;
    const auto details = html.in("details", {{"class", "fold"}});
    html.put("summary", counted(end - first, "line"));
    for (std::size_t i = first; i < end; ++i)
        put_line(html, lines[i], i + 1, {});
}

void put_lines(Html& html, const std::vector<std::string>& lines, std::span<const Finding> findings) {
    const auto source = html.in("div", {{"class", "source"}});
    std::size_t shown = 0; // lines
    const auto near_to = [](std::size_t line) { return line > lines_around ? line - 1 - lines_around : 0; };
    for (std::size_t i = 0; i < findings.size();) {
        const std::size_t line = std::min(findings[i].place.line, lines.size()); // from 1
        const std::size_t from = std::max(shown, near_to(line));
        put_folded(html, lines, shown, from);
        for (shown = from; shown + 1 < line; ++shown)
            put_line(html, lines[shown], shown + 1, {});
        std::size_t end = i;
        while (end < findings.size() && std::min(findings[end].place.line, lines.size()) == line)
            ++end;
        if (shown < line)
            put_line(html, lines[shown], line, findings.subspan(i, end - i));
        shown = line;
        for (; i < end; ++i)
            put_finding(html, findings[i]);
        const std::size_t next = i < findings.size() ? near_to(findings[i].place.line) : lines.size();
        for (const std::size_t stop = std::min({line + lines_around, next, lines.size()}); shown < stop;
             ++shown)
            put_line(html, lines[shown], shown + 1, {});
    }
    put_folded(html, lines, shown, lines.size());
}

void put_file(Html& html, const check::Medium& medium, std::span<const Finding> findings) {
    const std::string& file = findings.front().place.file;
    const auto article = html.in("article", {{"class", "file"}, {"data-group", ""}});
    {
        const auto title = html.in("h3");
        html.put("code", file.empty() ? "The distribution folder" : file);
        html.put("span", {{"class", "count"}}, counted(findings.size(), "finding"));
    }
    std::size_t whole = 0; // findings about the file as such stand first
    for (; whole < findings.size() && findings[whole].place.line == 0; ++whole)
        put_finding(html, findings[whole]);
    if (whole == findings.size())
        return;
    const check::MediumEntry* const entry = medium.find_file(file);
    const std::vector<std::string> lines = entry == nullptr || entry->size > most_bytes
                                               ? std::vector<std::string>()
                                               : source_lines(medium.bytes(*entry));
    put_lines(html, lines, findings.subspan(whole));
}

} // namespace

std::vector<std::string> source_lines(std::string_view bytes) {
    const bool wide = is_wide(bytes);
    if (!wide && bytes.find('\0') != bytes.npos)
        return {};
    if (bytes.starts_with("\xEF\xBB\xBF"))
        bytes.remove_prefix(3);
    const std::string text = wide ? logs::decode_log(bytes, logs::default_code_page) : std::string(bytes);
    std::vector<std::string> lines;
    for (std::size_t begin = 0; begin < text.size();) {
        const std::size_t end = std::min(text.find('\n', begin), text.size());
        std::string line = text.substr(begin, end - begin);
        std::erase(line, '\r');
        lines.push_back(is_utf8(line) ? line : logs::decode_log(line, logs::default_code_page));
        begin = end + 1;
    }
    return lines;
}

void put_findings(Html& html, const check::Medium& medium, const std::vector<Finding>& findings) {
    const std::span<const Finding> all(findings);
    for (std::size_t i = 0; i < all.size();) {
        std::size_t end = i;
        while (end < all.size() && all[end].place.file == all[i].place.file)
            ++end;
        put_file(html, medium, all.subspan(i, end - i));
        i = end;
    }
}

Tone tone_of(Severity severity) {
    return severity == Severity::error     ? Tone::bad
           : severity == Severity::warning ? Tone::warning
                                           : Tone::plain;
}

Tone worst_tone(const std::vector<Finding>& findings) {
    Tone tone = Tone::good;
    for (const Finding& finding : findings)
        if (finding.severity != Severity::note)
            tone = std::max(tone, tone_of(finding.severity));
    return tone;
}

std::vector<FilterChoice> severity_choices(const std::vector<Finding>& findings) {
    std::vector<FilterChoice> choices;
    for (const auto& [severity, label] : {std::pair{Severity::error, "Errors"},
                                          {Severity::warning, "Warnings"},
                                          {Severity::note, "Unjudged"}}) {
        const auto count =
            std::count_if(findings.begin(), findings.end(),
                          [&, wanted = severity](const Finding& one) { return one.severity == wanted; });
        choices.push_back({check::name_of(severity), label, static_cast<std::size_t>(count)});
    }
    return choices;
}

} // namespace rehearsal::pages
