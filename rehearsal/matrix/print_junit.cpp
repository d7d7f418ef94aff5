// A test suite as CI servers read it: a case for each run without a failing call, which has to end well, and
// one for what was left out. What came of failing calls is told with it.
#include "rehearsal/markup.h"
#include "rehearsal/matrix/results.h"

#include <algorithm>
#include <ostream>

namespace rehearsal::matrix {
namespace {

std::string told(const Matrix& matrix, const Result& result) {
    std::string text = result.verdict + "\n";
    if (!result.box.empty())
        text += "box: " + result.box + "\n";
    for (const std::string& thing : result.stayed)
        text += "stayed: " + thing + "\n";
    return text + "again: " + repeat_command(matrix, result.cell) + "\n";
}

void print_case(std::ostream& out, const Matrix& matrix, const Result& result) {
    const Cell& cell = result.cell;
    out << "  <testcase classname=\""
        << escaped_markup(cell.language + "." + cell.system + "." + cell.windows) << "\" name=\""
        << escaped_markup(cell.kind()) << "\"";
    if (result.status == 0)
        out << "/>\n";
    else
        out << ">\n    <failure type=\"" << name_of(result.ending()) << "\" message=\""
            << escaped_markup(result.verdict) << "\">" << escaped_markup(told(matrix, result))
            << "</failure>\n  </testcase>\n";
}

} // namespace

void print_junit(std::ostream& out, const Matrix& matrix) {
    const auto is_case = [](const Result& result) { return result.cell.fault.empty(); };
    const auto cases = std::count_if(matrix.results.begin(), matrix.results.end(), is_case);
    const auto failures = std::count_if(matrix.results.begin(), matrix.results.end(),
                                        [&](const Result& one) { return is_case(one) && one.status != 0; });
    const int cut = matrix.cut.empty() ? 0 : 1;
    out << "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<testsuite name=\"trk matrix\" tests=\""
        << cases + cut << "\" failures=\"" << failures << "\" errors=\"" << cut << "\" skipped=\"0\">\n";
    for (const Result& result : matrix.results)
        if (is_case(result))
            print_case(out, matrix, result);
    if (cut != 0)
        out << "  <testcase classname=\"matrix\" name=\"all was run\">\n    <error message=\""
            << escaped_markup(summary_of(matrix)) << "\"/>\n  </testcase>\n";
    std::string silent;
    for (const Result& result : matrix.results)
        if (!is_case(result) && result.ending() == Ending::silent)
            silent += result.cell.name() + ": a silent failure: " + told(matrix, result);
    out << "  <system-out>" << escaped_markup(summary_of(matrix) + "\n" + silent)
        << "</system-out>\n</testsuite>\n";
}

} // namespace rehearsal::matrix
