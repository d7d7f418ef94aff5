#include "rehearsal/pages/log_lines.h"

namespace rehearsal::pages {

using logs::Weight;

const char* kind_of(const logs::Line* line) {
    if (line == nullptr)
        return "foreign";
    if (line->weight == Weight::failed || line->weight == Weight::stopped)
        return "failed";
    return line->weight == Weight::notice ? "notice" : "plain";
}

void put_log_line(Html& html, const ShownLine& line) {
    const std::string names = "log-line " + std::string(kind_of(line.line));
    const auto put_parts = [&] {
        if (!line.number.empty())
            html.put("span", {{"class", "number"}}, line.number);
        html.put("code", line.text);
        html.put("span", {{"class", "meaning"}, {"data-kind", "meaning"}},
                 line.line == nullptr ? "not a line of the setup" : line.line->meaning);
    };
    if (line.id.empty()) {
        const auto item = html.in("li", {{"class", names}, {"data-kind", line.kind}, {"data-entry", ""}});
        put_parts();
    } else {
        const auto item =
            html.in("li", {{"class", names}, {"id", line.id}, {"data-kind", line.kind}, {"data-entry", ""}});
        put_parts();
    }
}

} // namespace rehearsal::pages
