#include "rehearsal/markup.h"
#include "rehearsal/matrix/results.h"

#include <algorithm>
#include <ostream>

namespace rehearsal::matrix {

void print_junit(std::ostream& out, const Matrix& matrix) {
    const auto plain = [](const Result& result) { return result.cell.fault.empty(); };
    const auto failed = [&](const Result& result) { return plain(result) && result.status != 0; };
    const auto count = [&](const auto& which) {
        return std::count_if(matrix.results.begin(), matrix.results.end(), which);
    };
    out << "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<testsuite name=\"trk matrix\" tests=\""
        << count(plain) << "\" failures=\"" << count(failed) << "\" errors=\"0\" skipped=\"0\">\n";
    for (const Result& result : matrix.results) {
        if (!plain(result))
            continue;
        const Cell& cell = result.cell;
        out << "  <testcase classname=\""
            << escaped_markup(cell.language + "." + cell.system + "." + cell.windows) << "\" name=\""
            << escaped_markup(std::string(1, cell.state) + "/" + cell.road) << "\"";
        if (!failed(result)) {
            out << "/>\n";
            continue;
        }
        out << ">\n    <failure message=\"" << escaped_markup(result.verdict) << "\">"
            << escaped_markup("box: " + result.box + "\ntrk matrix --only " + cell.name() + " " +
                              matrix.medium)
            << "</failure>\n  </testcase>\n";
    }
    out << "</testsuite>\n";
}

} // namespace rehearsal::matrix
