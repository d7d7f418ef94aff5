#include "rehearsal/markup.h"
#include "rehearsal/matrix/results.h"

#include <algorithm>
#include <ostream>

namespace rehearsal::matrix {
namespace {

// Light and dark follow the reader's system. Widths are those of the text, so that no language is cut.
constexpr char head[] = R"(<!DOCTYPE html>
<html lang="en"><head><meta charset="utf-8"><meta name="viewport" content="width=device-width">
<title>trk matrix</title><style>
:root{color-scheme:light dark;--line:#8886;--bad:#c62828;--silent:#8e24aa;--good:#2e7d32}
@media(prefers-color-scheme:dark){:root{--bad:#ff8a80;--silent:#e1a6f0;--good:#8bd68f}}
body{font:15px/1.45 system-ui,sans-serif;margin:1.5rem;overflow-wrap:anywhere}
table{border-collapse:collapse;width:100%}
th,td{border:1px solid var(--line);padding:.25rem .5rem;text-align:left;vertical-align:top}
fieldset{border:1px solid var(--line);display:inline-block;margin:0 .6rem .6rem 0}
label{margin-right:.8rem;white-space:nowrap}
.bad td:first-child{color:var(--bad)}.silent td:first-child{color:var(--silent)}
.good td:first-child{color:var(--good)}
code{font-size:.9em}
@media print{fieldset{display:none}thead{display:table-header-group}tr{break-inside:avoid}}
</style></head><body>
)";

// A row is shown when each group has its value ticked. Without scripts all rows are there.
constexpr char script[] = R"(<script>
const boxes=[...document.querySelectorAll('input')],rows=[...document.querySelectorAll('tbody tr')]
const shown=document.getElementById('shown')
function filter(){const off=new Set(boxes.filter(b=>!b.checked).map(b=>b.name+'='+b.value));let n=0
for(const row of rows){row.hidden=['result','language','system','windows','state','road'].some(
k=>off.has(k+'='+row.dataset[k]));if(!row.hidden)n++}shown.textContent=n}
for(const box of boxes)box.addEventListener('change',filter);filter()
</script></body></html>
)";

const char* result_of(const Result& result) {
    if (result.silent_failure())
        return "silent failure";
    return result.status == 0 ? "ok" : "failure";
}

const char* style_of(const Result& result) {
    if (result.silent_failure())
        return "silent";
    return result.status == 0 ? "good" : "bad";
}

template<class Value>
void print_filter(std::ostream& out, const Matrix& matrix, const char* name, Value value) {
    std::vector<std::string> values;
    for (const Result& result : matrix.results)
        if (std::find(values.begin(), values.end(), value(result)) == values.end())
            values.push_back(value(result));
    std::sort(values.begin(), values.end());
    out << "<fieldset><legend>" << name << "</legend>";
    for (const std::string& one : values)
        out << "<label><input type=\"checkbox\" checked name=\"" << name << "\" value=\""
            << escaped_markup(one) << "\"> " << escaped_markup(one) << "</label>";
    out << "</fieldset>\n";
}

void print_row(std::ostream& out, const Matrix& matrix, const Result& result) {
    const Cell& cell = result.cell;
    const auto data = [&](const char* name, const std::string& value) {
        out << " data-" << name << "=\"" << escaped_markup(value) << "\"";
    };
    out << "<tr class=\"" << style_of(result) << "\"";
    data("result", result_of(result));
    data("language", cell.language);
    data("system", cell.system);
    data("windows", cell.windows);
    data("state", std::string(1, cell.state));
    data("road", cell.road);
    out << "><td>" << result_of(result) << "</td><td>" << escaped_markup(cell.name()) << "</td><td>"
        << escaped_markup(result.verdict) << "</td><td>" << escaped_markup(result.box) << "</td><td>"
        << result.exit_code << "</td><td>";
    for (const std::string& thing : result.stayed)
        out << escaped_markup(thing) << "<br>";
    const std::string again =
        "trk matrix --only " + cell.name() + (cell.fault.empty() ? " " : " --faults all ");
    out << "</td><td><code>" << escaped_markup(again + matrix.medium) << "</code></td></tr>\n";
}

} // namespace

void print_html(std::ostream& out, const Matrix& matrix) {
    out << head << "<h1>" << escaped_markup(matrix.medium) << "</h1>\n<p><span id=\"shown\">"
        << matrix.results.size() << "</span> of " << matrix.results.size() << " runs";
    if (matrix.not_run != 0)
        out << "; " << matrix.not_run << " were not run";
    out << "</p>\n";
    print_filter(out, matrix, "result", [](const Result& result) { return std::string(result_of(result)); });
    print_filter(out, matrix, "language", [](const Result& result) { return result.cell.language; });
    print_filter(out, matrix, "system", [](const Result& result) { return result.cell.system; });
    print_filter(out, matrix, "windows", [](const Result& result) { return result.cell.windows; });
    print_filter(out, matrix, "state",
                 [](const Result& result) { return std::string(1, result.cell.state); });
    print_filter(out, matrix, "road", [](const Result& result) { return result.cell.road; });
    out << "<table><thead><tr><th>Result</th><th>Run</th><th>Verdict</th><th>Last box</th><th>Exit code</th>"
           "<th>What stayed</th><th>Again</th></tr></thead><tbody>\n";
    for (const Result& result : matrix.results)
        print_row(out, matrix, result);
    out << "</tbody></table>\n" << script;
}

} // namespace rehearsal::matrix
