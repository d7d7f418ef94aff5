#include "rehearsal/matrix/results.h"
#include "rehearsal/shown_text.h"

#include <algorithm>
#include <ostream>
#include <set>

namespace rehearsal::matrix {
namespace {

using Table = std::vector<std::vector<std::string>>;

// Columns as wide as their widest cell; all but the first are flush right.
void print_table(std::ostream& out, const Table& table) {
    std::vector<std::size_t> widths(table.front().size());
    for (const auto& row : table)
        for (std::size_t i = 0; i < row.size(); ++i)
            widths[i] = std::max(widths[i], row[i].size());
    for (const auto& row : table) {
        out << "  " << row[0];
        std::size_t missing = widths[0] - row[0].size();
        for (std::size_t i = 1; i < row.size(); ++i) {
            out << std::string(missing + 2 + widths[i] - row[i].size(), ' ') << row[i];
            missing = 0;
        }
        out << "\n";
    }
}

std::string count_text(const Overview::Count& count) {
    if (count.all == 0)
        return "-";
    return count.good == count.all ? std::to_string(count.good)
                                   : std::to_string(count.good) + " of " + std::to_string(count.all);
}

void print_overview(std::ostream& out, const Matrix& matrix) {
    const Overview overview = overview_of(matrix);
    if (overview.rows.empty())
        return;
    Table table = {{"state/road"}};
    table[0].insert(table[0].end(), overview.columns.begin(), overview.columns.end());
    for (const Overview::Row& row : overview.rows) {
        table.push_back({row.name});
        for (const Overview::Count& count : row.counts)
            table.back().push_back(count_text(count));
    }
    out << "Languages in which a run ended well:\n";
    print_table(out, table);
    out << "\n";
}

bool came_to_nothing(const FaultRow& row) {
    return std::all_of(row.counts.begin(), row.counts.end() - 1,
                       [](std::size_t count) { return count == 0; });
}

// Texts behind an introduction, over several lines where they are many.
void print_texts(std::ostream& out, const std::string& introduction, const std::vector<std::string>& texts) {
    constexpr std::size_t width = 110;
    std::string line = introduction;
    for (std::size_t i = 0; i < texts.size(); ++i) {
        const std::string text = shown_text(texts[i]) + (i + 1 == texts.size() ? "" : ",");
        if (i != 0 && line.size() + text.size() > width) {
            out << line << "\n";
            line = std::string(introduction.size(), ' ');
        }
        line += " " + text;
    }
    out << line << "\n";
}

void print_faults(std::ostream& out, const Matrix& matrix) {
    std::vector<FaultRow> faults = faults_of(matrix);
    std::vector<std::string> survived;
    for (const FaultRow& row : faults)
        if (came_to_nothing(row))
            survived.push_back(row.call);
    std::erase_if(faults, came_to_nothing);
    std::vector<std::size_t> columns; // of endings that came up
    for (std::size_t i = 0; i < std::size(endings); ++i)
        if (std::any_of(faults.begin(), faults.end(), [&](const auto& row) { return row.counts[i] != 0; }))
            columns.push_back(i);
    Table table = {{"call"}};
    for (const std::size_t column : columns)
        table[0].push_back(meaning_of(endings[column]));
    for (const FaultRow& row : faults) {
        table.push_back({row.call});
        for (const std::size_t column : columns)
            table.back().push_back(row.counts[column] == 0 ? "-" : std::to_string(row.counts[column]));
    }
    if (!faults.empty()) {
        out << "Runs in which one call failed:\n";
        print_table(out, table);
        out << "\n";
    }
    if (survived.empty())
        return;
    out << "All runs ended well in which one of these calls failed:\n";
    print_texts(out, " ", survived);
    out << "\n";
}

// "7 languages; x64/current x86/current; D/network": what the runs of a group have in common, or how many
// there are.
std::string coverage_of(const Group& group) {
    std::set<std::string> languages, columns, kinds;
    for (const Result* const result : group.results) {
        languages.insert(result->cell.language);
        columns.insert(result->cell.system + "/" + result->cell.windows);
        kinds.insert(result->cell.kind());
    }
    const auto listed = [](const std::set<std::string>& names, const char* what) {
        constexpr std::size_t most = 3;
        std::string text;
        for (const std::string& name : names)
            text += (text.empty() ? "" : " ") + name;
        return names.size() > most ? std::to_string(names.size()) + " " + what : text;
    };
    return listed(languages, "languages") + "; " + listed(columns, "systems") + "; " + listed(kinds, "roads");
}

void print_group(std::ostream& out, const Matrix& matrix, const Group& group) {
    const Result& first = *group.results.front();
    const bool one = group.results.size() == 1;
    out << group.name << ": " << meaning_of(group.ending);
    if (one)
        out << " in " << first.cell.name() << "\n";
    else
        out << " in " << group.results.size() << " runs (" << coverage_of(group) << "), the first of them:\n";
    out << "  " << shown_text(first.verdict) << "\n";
    if (!first.box.empty())
        out << "  box: " << shown_text(first.box) << "\n";
    out << "  exit code " << first.exit_code << "\n";
    if (!first.stayed.empty())
        print_texts(out, "  stayed:", first.stayed);
    out << "  again: " << shown_text(repeat_command(matrix, first.cell)) << "\n\n";
}

} // namespace

void print_text(std::ostream& out, const Matrix& matrix) {
    const bool one = matrix.results.size() == 1; // what became of it is all that is asked
    for (const Group& group : groups_of(matrix))
        if (group.ending < Ending::unheard || one)
            print_group(out, matrix, group);
    if (!one) {
        print_overview(out, matrix);
        print_faults(out, matrix);
    }
    out << summary_of(matrix) << "\n";
}

} // namespace rehearsal::matrix
