#include "rehearsal/matrix/results.h"

#include <algorithm>
#include <map>
#include <ostream>

namespace rehearsal::matrix {
namespace {

struct Count {
    std::size_t good = 0, bad = 0;
};

std::string shown(const Count& count) {
    if (count.good + count.bad == 0)
        return "-";
    if (count.bad == 0)
        return std::to_string(count.good) + " ok";
    return std::to_string(count.good) + " ok, " + std::to_string(count.bad) + " FAIL";
}

// A row a state and road, a column a system and Windows; each counts the languages.
void print_overview(std::ostream& out, const Matrix& matrix) {
    std::vector<std::string> rows, columns;
    std::map<std::pair<std::string, std::string>, Count> counts;
    const auto note = [](std::vector<std::string>& names, const std::string& name) {
        if (std::find(names.begin(), names.end(), name) == names.end())
            names.push_back(name);
    };
    for (const Result& result : matrix.results) {
        if (!result.cell.fault.empty())
            continue;
        const std::string row = std::string(1, result.cell.state) + "/" + result.cell.road;
        const std::string column = result.cell.system + "/" + result.cell.windows;
        note(rows, row);
        note(columns, column);
        ++(result.status == 0 ? counts[{row, column}].good : counts[{row, column}].bad);
    }
    std::sort(rows.begin(), rows.end());
    std::sort(columns.begin(), columns.end());
    constexpr std::size_t row_width = 12, column_width = 15;
    const auto padded = [](std::string text, std::size_t width) {
        text.resize(std::max(width, text.size() + 1), ' ');
        return text;
    };
    const auto without_blanks = [](std::string line) {
        return line.substr(0, line.find_last_not_of(' ') + 1);
    };
    std::string head = padded("languages", row_width);
    for (const std::string& column : columns)
        head += padded(column, column_width);
    out << without_blanks(head) << "\n";
    for (const std::string& row : rows) {
        std::string line = padded(row, row_width);
        for (const std::string& column : columns)
            line += padded(shown(counts[{row, column}]), column_width);
        out << without_blanks(line) << "\n";
    }
}

void print_result(std::ostream& out, const Matrix& matrix, const Result& result) {
    out << "\n"
        << result.cell.name() << (result.silent_failure() ? ": a silent failure" : "") << "\n  "
        << result.verdict << "\n";
    if (!result.box.empty())
        out << "  box: " << result.box << "\n";
    out << "  status " << result.status << ", the program's exit code " << result.exit_code << "\n";
    if (!result.stayed.empty()) {
        out << "  stayed:";
        for (std::size_t i = 0; i < result.stayed.size(); ++i)
            out << (i == 0 ? " " : ", ") << result.stayed[i];
        out << "\n";
    }
    out << "  again: trk matrix --only " << result.cell.name()
        << (result.cell.fault.empty() ? "" : " --faults all") << " " << matrix.medium << "\n";
}

} // namespace

void print_text(std::ostream& out, const Matrix& matrix) {
    Count plain, faulty;
    std::size_t silent = 0;
    for (const Result& result : matrix.results) {
        Count& count = result.cell.fault.empty() ? plain : faulty;
        ++(result.status == 0 ? count.good : count.bad);
        silent += result.silent_failure() ? 1u : 0u;
    }
    print_overview(out, matrix);
    for (const Result& result : matrix.results)
        if (result.status != 0)
            print_result(out, matrix, result);
    out << "\n" << plain.good + plain.bad << " runs: " << shown(plain);
    if (faulty.good + faulty.bad != 0)
        out << "; " << faulty.good + faulty.bad << " with a failing call: " << faulty.good
            << " well in the end, " << faulty.bad << " told as failures or seen to be";
    out << "; " << silent << " silent failures";
    if (matrix.not_run != 0)
        out << "; " << matrix.not_run << " not run";
    out << "\n";
}

} // namespace rehearsal::matrix
