#include "rehearsal/check/print.h"

#include <nlohmann/json.hpp>

#include <ostream>

namespace rehearsal::check {
namespace {

using Json = nlohmann::ordered_json;

// Names on a medium may be no UTF-8; what isn't becomes U+FFFD.
std::string written(const Json& json) {
    return json.dump(2, ' ', false, Json::error_handler_t::replace) + "\n";
}

// SARIF's word for what can't be judged here is its own.
std::string sarif_level(Severity severity) {
    return severity == Severity::note ? "note" : name_of(severity);
}

// A path as a relative reference (RFC 3986): what isn't unreserved is written as %XX.
std::string uri_of(const std::string& path) {
    constexpr char digits[] = "0123456789ABCDEF";
    std::string out;
    for (const char c : path) {
        const auto byte = static_cast<unsigned char>(c);
        const bool plain = (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') ||
                           std::string_view("-._~/").find(c) != std::string_view::npos;
        if (plain)
            out.push_back(c);
        else
            out.append({'%', digits[byte >> 4], digits[byte & 15]});
    }
    return out;
}

Json sarif_rule(const Rule& rule) {
    return {{"id", rule.id},
            {"shortDescription", {{"text", rule.title}}},
            {"fullDescription", {{"text", rule.cause}}},
            {"help", {{"text", rule.remedy}, {"markdown", explain(rule)}}},
            {"defaultConfiguration", {{"level", sarif_level(rule.severity)}}}};
}

Json sarif_result(const Finding& finding, const std::vector<Rule>& rules) {
    Json result = {{"ruleId", finding.id}};
    for (std::size_t i = 0; i < rules.size(); ++i)
        if (finding.id == rules[i].id)
            result["ruleIndex"] = i;
    result["level"] = sarif_level(finding.severity);
    result["message"] = {{"text", finding.reason + ". " + finding.remedy}};
    // A reference that names the base folder itself can't be empty.
    const std::string file = finding.place.file.empty() ? "./" : uri_of(finding.place.file);
    Json physical = {{"artifactLocation", {{"uri", file}, {"uriBaseId", "MEDIUM"}}}};
    if (finding.place.line != 0)
        physical["region"] = {{"startLine", finding.place.line}, {"startColumn", finding.place.column}};
    result["locations"] = Json::array({Json{{"physicalLocation", std::move(physical)}}});
    return result;
}

} // namespace

void print_json(std::ostream& out, const Report& report) {
    Json findings = Json::array();
    for (const Finding& finding : report.findings) {
        Json item = {
            {"id", finding.id}, {"severity", name_of(finding.severity)}, {"file", finding.place.file}};
        if (finding.place.line != 0) {
            item["line"] = finding.place.line;
            item["column"] = finding.place.column;
        }
        item["reason"] = finding.reason;
        item["remedy"] = finding.remedy;
        findings.push_back(std::move(item));
    }
    out << written({{"schema", "trk-findings-1"},
                    {"medium", report.medium},
                    {"files", report.files},
                    {"errors", report.count(Severity::error)},
                    {"warnings", report.count(Severity::warning)},
                    {"unjudged", report.count(Severity::note)},
                    {"findings", std::move(findings)}});
}

void print_sarif(std::ostream& out, const Report& report) {
    Json rules = Json::array();
    for (const Rule& rule : report.rules)
        rules.push_back(sarif_rule(rule));
    Json results = Json::array();
    for (const Finding& finding : report.findings)
        results.push_back(sarif_result(finding, report.rules));
    Json run = {{"tool", {{"driver", {{"name", "trk check"}, {"rules", std::move(rules)}}}}},
                {"columnKind", "unicodeCodePoints"},
                {"originalUriBaseIds",
                 {{"MEDIUM", {{"description", {{"text", "The distribution folder " + report.medium}}}}}}},
                {"results", std::move(results)}};
    out << written({{"$schema", "https://json.schemastore.org/sarif-2.1.0.json"},
                    {"version", "2.1.0"},
                    {"runs", Json::array({std::move(run)})}});
}

} // namespace rehearsal::check
