#include "rehearsal/check/check.h"

#include "rehearsal/check/medium.h"
#include "rehearsal/check/print.h"
#include "rehearsal/check/subjects.h"
#include "rehearsal/exit_status.h"
#include "rehearsal/output_file.h"
#include "rehearsal/pages/check_page.h"

#include <algorithm>
#include <cstdlib>
#include <iostream>
#include <iterator>
#include <stdexcept>
#include <tuple>

#include <unistd.h>

namespace rehearsal::check {
namespace {

// Several checks may meet at one place; what they say is kept once.
void sort_findings(std::vector<Finding>& findings) {
    const auto key = [](const Finding& finding) {
        return std::tie(finding.place.file, finding.place.line, finding.place.column, finding.severity,
                        finding.id, finding.reason);
    };
    std::stable_sort(findings.begin(), findings.end(),
                     [&](const Finding& a, const Finding& b) { return key(a) < key(b); });
    findings.erase(std::unique(findings.begin(), findings.end(),
                               [&](const Finding& a, const Finding& b) { return key(a) == key(b); }),
                   findings.end());
}

bool contains(const std::vector<std::string>& ids, std::string_view id) {
    return std::find(ids.begin(), ids.end(), id) != ids.end();
}

bool is_wanted(const CheckOptions& options, std::string_view id) {
    return (options.only.empty() || contains(options.only, id)) && !contains(options.ignore, id);
}

const Rule& rule_named(const std::string& id) {
    if (const Rule* const rule = find_rule(id))
        return *rule;
    std::vector<std::string_view> known;
    for (const Subject& subject : subjects())
        for (const Rule& rule : subject.rules())
            known.push_back(rule.id);
    const std::string_view near = nearest(id, known);
    throw std::runtime_error("no finding is called " + id +
                             (near.empty() ? std::string() : "; the nearest is " + std::string(near)));
}

Report look_at(const CheckOptions& options, const Medium& medium) {
    for (const std::vector<std::string>* const ids : {&options.only, &options.ignore})
        for (const std::string& id : *ids)
            rule_named(id);
    Findings findings;
    Report report{options.medium.string(), medium.file_count(), {}, {}};
    for (const Subject& subject : subjects()) {
        subject.check(medium, findings);
        for (const Rule& rule : subject.rules())
            if (is_wanted(options, rule.id))
                report.rules.push_back(rule);
    }
    for (Finding finding : findings.list()) {
        if (!is_wanted(options, finding.id))
            continue;
        if (options.strict && finding.severity == Severity::warning)
            finding.severity = Severity::error;
        report.findings.push_back(std::move(finding));
    }
    sort_findings(report.findings);
    return report;
}

void print(const CheckOptions& options, const Report& report) {
    if (options.format == "json")
        return print_json(std::cout, report);
    if (options.format == "sarif")
        return print_sarif(std::cout, report);
    if (options.format == "junit")
        return print_junit(std::cout, report);
    const char* const no_colour = std::getenv("NO_COLOR");
    const bool plain = no_colour != nullptr && *no_colour != 0;
    print_text(std::cout, report, {isatty(STDOUT_FILENO) != 0 && !plain, options.brief});
}

void print_explanations(const std::string& id) {
    if (id != "all") {
        std::cout << explain(rule_named(id));
        return;
    }
    for (const Subject& subject : subjects())
        for (const Rule& rule : subject.rules())
            std::cout << explain(rule) << "\n";
}

} // namespace

std::size_t Report::count(Severity severity) const {
    return static_cast<std::size_t>(std::count_if(
        findings.begin(), findings.end(), [&](const auto& finding) { return finding.severity == severity; }));
}

const char* name_of(Severity severity) {
    switch (severity) {
    case Severity::error:
        return "error";
    case Severity::warning:
        return "warning";
    case Severity::note:
        return "unjudged";
    }
    return "";
}

std::string explain(const Rule& rule) {
    return "### " + std::string(rule.id) + "\n\n" + rule.title + " (" + name_of(rule.severity) + ").\n\n" +
           rule.cause + "\n\nRemedy: " + rule.remedy + "\n\nExample: `" + rule.example + "`\n";
}

bool shows_in_rehearsal(const Finding& finding) {
    constexpr std::string_view unseen[] = {"files-program", "files-machine", "files-sibling",
                                           "inf-backup-taken", "layout-case-twice"};
    const bool of_signature = finding.id.starts_with("catalogue-") && finding.id != "catalogue-missing";
    return !of_signature && std::find(std::begin(unseen), std::end(unseen), finding.id) == std::end(unseen);
}

void explain_failed_run(std::ostream& out, const std::filesystem::path& medium) {
    std::vector<Finding> findings = check_medium(medium);
    std::erase_if(findings, [](const Finding& finding) {
        return finding.severity != Severity::error || !shows_in_rehearsal(finding);
    });
    if (findings.empty())
        return;
    out << "trk check on this medium:\n";
    print_findings(out, findings, {});
}

std::vector<Finding> check_medium(const std::filesystem::path& medium) {
    CheckOptions options;
    options.medium = medium;
    return look_at(options, Medium(medium)).findings;
}

int run_check(const CheckOptions& options) {
    try {
        if (!options.explain.empty()) {
            print_explanations(options.explain);
            return ended_well;
        }
        const Medium medium(options.medium);
        const Report report = look_at(options, medium);
        print(options, report);
        if (!options.html.empty())
            write_file(options.html, pages::check_page(report, medium));
        if (!std::cout.flush())
            throw std::runtime_error("the findings can't be written");
        return report.count(Severity::error) == 0 ? ended_well : ended_badly;
    } catch (const std::exception& error) {
        std::cerr << "trk: " << error.what() << "\n";
        return wrong_usage;
    }
}

} // namespace rehearsal::check
