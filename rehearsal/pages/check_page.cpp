#include "rehearsal/pages/check_page.h"

#include "rehearsal/pages/page.h"
#include "rehearsal/pages/source_view.h"

#include <algorithm>

namespace rehearsal::pages {
namespace {

void put_all_findings(Html& html, const check::Report& report, const check::Medium& medium) {
    if (report.findings.empty())
        return html.put("p", "Nothing was found.");
    put_filters(html, "finding-list", severity_choices(report.findings));
    const auto list = html.in("div", {{"id", "finding-list"}});
    put_findings(html, medium, report.findings);
}

void put_rule(Html& html, const check::Report& report, const check::Rule& rule) {
    const auto count =
        static_cast<std::size_t>(std::count_if(report.findings.begin(), report.findings.end(),
                                               [&](const auto& finding) { return finding.id == rule.id; }));
    const char* const kind = count == 0 ? "met" : "broken";
    const auto row = html.in("tr", {{"data-kind", kind}, {"data-entry", ""}});
    html.put("td", {{"class", "number"}}, count == 0 ? "" : std::to_string(count));
    {
        const auto id = html.in("td");
        html.put("code", rule.id);
    }
    html.put("td", check::name_of(rule.severity));
    html.put("td", rule.title);
}

void put_rules(Html& html, const check::Report& report) {
    put_filters(html, "rule-list", {{"broken", "Found", 0}, {"met", "Not found", 0}});
    const auto scroller = html.in("div", {{"class", "scroller"}});
    const auto table = html.in("table", {{"class", "rules"}});
    put_table_head(html, {"Found", "Id", "Severity", "What is wrong"});
    const auto body = html.in("tbody", {{"id", "rule-list"}});
    for (const check::Rule& rule : report.rules)
        put_rule(html, report, rule);
}

} // namespace

std::string check_page(const check::Report& report, const check::Medium& medium) {
    using check::Severity;
    const std::size_t unjudged = report.count(Severity::note);
    Page page;
    page.tool = "trk check";
    page.title = report.medium;
    page.tone = worst_tone(report.findings);
    page.result = counted(report.count(Severity::error), "error") + ", " +
                  counted(report.count(Severity::warning), "warning") +
                  (unjudged == 0 ? "" : ", " + std::to_string(unjudged) + " unjudged") + " in " +
                  counted(report.files, "file");
    page.sections = {
        {"findings", "Findings", [&](Html& html) { put_all_findings(html, report, medium); }},
        {"rules", "What was looked for", [&](Html& html) { put_rules(html, report); }},
    };
    return page_text(page);
}

} // namespace rehearsal::pages
