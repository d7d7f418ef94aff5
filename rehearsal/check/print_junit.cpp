#include "rehearsal/check/print.h"

#include <algorithm>
#include <ostream>

namespace rehearsal::check {
namespace {

// XML 1.0 has no control characters but tab and line ends, not even as references.
std::string escaped(std::string_view text) {
    std::string out;
    for (const char c : text) {
        switch (c) {
        case '&':
            out += "&amp;";
            break;
        case '<':
            out += "&lt;";
            break;
        case '>':
            out += "&gt;";
            break;
        case '"':
            out += "&quot;";
            break;
        default:
            out.push_back(static_cast<unsigned char>(c) < 0x20 ? '?' : c);
        }
    }
    return out;
}

std::string place_of(const Finding& finding) {
    std::string out = finding.place.file.empty() ? "." : finding.place.file;
    if (finding.place.line != 0)
        out += ":" + std::to_string(finding.place.line) + ":" + std::to_string(finding.place.column);
    return out;
}

void print_failure(std::ostream& out, const Finding& finding) {
    const std::string place = place_of(finding);
    out << "  <testcase classname=\"" << finding.id << "\" name=\"" << escaped(place) << "\">\n"
        << "    <failure type=\"" << finding.id << "\" message=\"" << escaped(finding.reason) << "\">"
        << escaped(place + ": " + finding.reason + ". " + finding.remedy) << "</failure>\n"
        << "  </testcase>\n";
}

// A rule without errors; what it warns of stands with it.
void print_passed(std::ostream& out, const Rule& rule, const std::vector<Finding>& findings) {
    std::string remarks;
    for (const Finding& finding : findings)
        if (finding.id == rule.id)
            remarks +=
                escaped(place_of(finding) + ": " + name_of(finding.severity) + ": " + finding.reason) + "\n";
    out << "  <testcase classname=\"" << rule.id << "\" name=\"" << escaped(rule.title) << "\"";
    if (remarks.empty())
        out << "/>\n";
    else
        out << ">\n    <system-out>" << remarks << "</system-out>\n  </testcase>\n";
}

} // namespace

void print_junit(std::ostream& out, const Report& report) {
    const auto is_error_of = [](const Rule& rule) {
        return [&rule](const Finding& finding) {
            return finding.severity == Severity::error && finding.id == rule.id;
        };
    };
    std::vector<Rule> passed;
    for (const Rule& rule : report.rules)
        if (std::none_of(report.findings.begin(), report.findings.end(), is_error_of(rule)))
            passed.push_back(rule);
    const std::size_t errors = report.count(Severity::error);
    out << "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<testsuite name=\"trk check\" tests=\""
        << errors + passed.size() << "\" failures=\"" << errors << "\" errors=\"0\" skipped=\"0\">\n";
    for (const Finding& finding : report.findings)
        if (finding.severity == Severity::error)
            print_failure(out, finding);
    for (const Rule& rule : passed)
        print_passed(out, rule, report.findings);
    out << "</testsuite>\n";
}

} // namespace rehearsal::check
