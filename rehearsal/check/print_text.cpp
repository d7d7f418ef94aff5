#include "rehearsal/check/print.h"

#include <ostream>

namespace rehearsal::check {
namespace {

const char* colour_of(Severity severity) {
    switch (severity) {
    case Severity::error:
        return "\x1b[1;31m";
    case Severity::warning:
        return "\x1b[1;35m";
    case Severity::note:
        return "\x1b[1;36m";
    }
    return "";
}

// Control characters of a file's text must not reach a terminal.
std::string printable(const std::string& text) {
    std::string out;
    for (const char c : text)
        out.push_back(static_cast<unsigned char>(c) < 0x20 || c == 0x7F ? '?' : c);
    return out;
}

std::string shown_place(const Place& place) {
    std::string out = place.file.empty() ? "." : printable(place.file);
    if (place.line != 0)
        out += ":" + std::to_string(place.line) + ":" + std::to_string(place.column);
    return out;
}

std::string counted(std::size_t count, const char* what) {
    return std::to_string(count) + " " + what + (count == 1 ? "" : "s");
}

} // namespace

void print_findings(std::ostream& out, const std::vector<Finding>& findings, const TextStyle& style) {
    for (const Finding& finding : findings) {
        out << shown_place(finding.place) << ": " << (style.colour ? colour_of(finding.severity) : "")
            << name_of(finding.severity) << (style.colour ? "\x1b[0m" : "") << ": "
            << printable(finding.reason) << " [" << finding.id << "]\n";
        if (!style.brief)
            out << "    " << printable(finding.remedy) << "\n";
    }
}

void print_text(std::ostream& out, const Report& report, const TextStyle& style) {
    print_findings(out, report.findings, style);
    out << counted(report.count(Severity::error), "error") << ", "
        << counted(report.count(Severity::warning), "warning");
    if (const std::size_t unjudged = report.count(Severity::note); unjudged != 0)
        out << ", " << unjudged << " unjudged";
    out << " in " << counted(report.files, "file") << "\n";
}

} // namespace rehearsal::check
