#include "rehearsal/matrix/results.h"

#include <algorithm>
#include <map>
#include <utility>

namespace rehearsal::matrix {
namespace {

std::string column_of(const Cell& cell) {
    return cell.system + "/" + cell.windows;
}

std::string counts_text(const Matrix& matrix, bool with_fault) {
    std::string text;
    std::size_t all = 0;
    for (auto ending = std::rbegin(endings); ending != std::rend(endings); ++ending) {
        const std::size_t count = matrix.count(*ending, with_fault);
        all += count;
        if (count != 0)
            text += (text.empty() ? "" : ", ") + std::to_string(count) + " " + meaning_of(*ending);
    }
    if (all == 0)
        return "";
    return std::to_string(all) + (all == 1 ? " run" : " runs") +
           (with_fault ? " with a failing call: " : ": ") + text;
}

std::string left_out(const Matrix& matrix) {
    std::string text = matrix.not_run == 0 ? "others" : std::to_string(matrix.not_run);
    if (matrix.not_run != 0 && matrix.more)
        text = "at least " + text;
    return text + " not run (" + matrix.cut + ")";
}

} // namespace

const char* name_of(Ending ending) {
    static constexpr const char* names[] = {"silent", "failed",   "unmodelled", "unheard",
                                            "told",   "harmless", "well"};
    return names[static_cast<std::size_t>(ending)];
}

const char* meaning_of(Ending ending) {
    static constexpr const char* meanings[] = {
        "failed silently", "failed", "not modelled", "not told", "told", "harmless", "ended well"};
    return meanings[static_cast<std::size_t>(ending)];
}

Ending Result::ending() const {
    constexpr int not_modelled = 3;
    if (status == 0)
        return Ending::well;
    if (status == not_modelled)
        return Ending::unmodelled;
    if (success_box && !missing.empty())
        return Ending::silent;
    if (cell.fault.empty())
        return Ending::failed;
    return success_box ? Ending::harmless : failure_box ? Ending::told : Ending::unheard;
}

void Matrix::sort() {
    std::sort(results.begin(), results.end(), [](const Result& a, const Result& b) {
        const Ending first = a.ending(), second = b.ending();
        return first != second ? first < second : a.cell < b.cell;
    });
}

std::size_t Matrix::count(Ending ending, bool with_fault) const {
    return static_cast<std::size_t>(std::count_if(results.begin(), results.end(), [&](const Result& result) {
        return result.cell.fault.empty() != with_fault && result.ending() == ending;
    }));
}

bool Matrix::passed() const {
    return not_run == 0 && !more && std::all_of(results.begin(), results.end(), [](const Result& result) {
               return !result.cell.fault.empty() || result.status == 0;
           });
}

std::string summary_of(const Matrix& matrix) {
    std::string text = counts_text(matrix, false);
    if (const std::string faulty = counts_text(matrix, true); !faulty.empty())
        text += (text.empty() ? "" : "; ") + faulty;
    if (matrix.not_run != 0 || matrix.more)
        text += (text.empty() ? "" : "; ") + left_out(matrix);
    return text.empty() ? "nothing was run" : text;
}

std::vector<Group> groups_of(const Matrix& matrix) {
    std::vector<Group> groups;
    std::map<std::pair<Ending, std::string>, std::size_t> places;
    for (const Result& result : matrix.results) {
        const Cell& cell = result.cell;
        const std::string name = cell.fault.empty() ? cell.kind() : cell.fault;
        const auto [place, is_new] = places.emplace(std::pair(result.ending(), name), groups.size());
        if (is_new)
            groups.push_back({name, result.ending(), {}});
        groups[place->second].results.push_back(&result);
    }
    return groups;
}

Overview overview_of(const Matrix& matrix) {
    std::vector<Cell> cells;
    for (const Result& result : matrix.results)
        if (result.cell.fault.empty())
            cells.push_back(result.cell);
    std::sort(cells.begin(), cells.end());
    Overview overview;
    std::vector<std::string> rows;
    const auto place_in = [](std::vector<std::string>& names, const std::string& name) {
        const auto found = std::find(names.begin(), names.end(), name);
        if (found == names.end())
            names.push_back(name);
        return static_cast<std::size_t>(std::find(names.begin(), names.end(), name) - names.begin());
    };
    for (const Cell& cell : cells) {
        place_in(rows, cell.kind());
        place_in(overview.columns, column_of(cell));
    }
    for (const std::string& row : rows)
        overview.rows.push_back({row, std::vector<Overview::Count>(overview.columns.size())});
    for (const Result& result : matrix.results) {
        if (!result.cell.fault.empty())
            continue;
        Overview::Count& count = overview.rows[place_in(rows, result.cell.kind())]
                                     .counts[place_in(overview.columns, column_of(result.cell))];
        ++count.all;
        count.good += result.status == 0 ? 1u : 0u;
    }
    return overview;
}

std::vector<FaultRow> faults_of(const Matrix& matrix) {
    std::map<std::string, std::vector<std::size_t>> counts;
    for (const Result& result : matrix.results) {
        if (result.cell.fault.empty())
            continue;
        std::vector<std::size_t>& row = counts[result.cell.fault];
        row.resize(std::size(endings));
        ++row[static_cast<std::size_t>(result.ending())];
    }
    std::vector<FaultRow> rows;
    for (const auto& [call, row] : counts)
        rows.push_back({call, row});
    // The calls with the worst endings first.
    std::stable_sort(rows.begin(), rows.end(),
                     [](const FaultRow& a, const FaultRow& b) { return a.counts > b.counts; });
    return rows;
}

std::string shell_word(const std::string& text) {
    const bool plain =
        !text.empty() && text.front() != '-' &&
        text.find_first_not_of("ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789/._-:+,=@") ==
            text.npos;
    if (plain)
        return text;
    std::string word = text.starts_with("-") ? "'./" : "'";
    for (const char letter : text)
        word += letter == '\'' ? std::string("'\\''") : std::string(1, letter);
    return word + "'";
}

std::string repeat_command(const Matrix& matrix, const Cell& cell) {
    return "trk matrix --only " + shell_word(cell.name()) + " " + shell_word(matrix.medium);
}

} // namespace rehearsal::matrix
