#include "rehearsal/matrix/matrix.h"

#include "rehearsal/exit_status.h"
#include "rehearsal/machine_view.h"
#include "rehearsal/matrix/progress.h"
#include "rehearsal/matrix/runner.h"
#include "rehearsal/output_file.h"
#include "rehearsal/pages/matrix_page.h"
#include "rehearsal/shown_text.h"

#include <algorithm>
#include <cstring>
#include <iostream>
#include <optional>
#include <stdexcept>
#include <thread>

namespace fs = std::filesystem;

namespace rehearsal::matrix {
namespace {

constexpr int signal_status = 128; // as a shell has it

struct Outcomes {
    Matrix matrix;
    int signal = 0;
};

MediumDriver driver_of(const fs::path& medium) {
    std::optional<MediumDriver> driver = read_medium_driver(check::Medium(medium));
    if (!driver)
        throw std::runtime_error(medium.string() + ": the setup finds no driver there; trk check tells why");
    return std::move(*driver);
}

RunEnd run_selected(const MatrixOptions& options, const MediumDriver& driver, const Selection& selection,
                    const std::vector<Cell>& cells) {
    ProgressLine line(static_cast<std::size_t>(
        std::count_if(cells.begin(), cells.end(), [](const Cell& cell) { return cell.fault.empty(); })));
    RunSettings settings;
    settings.medium = options.medium;
    settings.jobs = options.jobs != 0 ? options.jobs : std::max(1u, std::thread::hardware_concurrency());
    if (options.time != 0)
        settings.limit = std::chrono::seconds(options.time);
    settings.counted = [&](const RunCounts& counts) { line.show(counts); };
    settings.faults_of = [&](const Cell& cell, const std::vector<std::string>& calls) {
        return selection.faults_of(cell, calls);
    };
    return run_cells(cells, driver, settings);
}

Outcomes run_wanted(const MatrixOptions& options) {
    const Selection selection(options.only, options.faults);
    const MediumDriver driver = driver_of(options.medium);
    std::vector<Cell> cells = selection.first_cells(all_cells(driver));
    Matrix matrix;
    matrix.medium = options.medium.string();
    matrix.driver = driver.name;
    matrix.version = version_text(driver.version);
    matrix.faults = options.faults;
    matrix.only = options.only;
    if (!options.shard.empty()) {
        matrix.shards = {read_shard(options.shard)};
        cells = shard_of(std::move(cells), matrix.shards.front());
    }
    RunEnd end = run_selected(options, driver, selection, cells);
    matrix.results = std::move(end.results);
    matrix.not_run = end.not_run;
    matrix.more = end.more && selection.asks_for_faults();
    if (end.signal != 0)
        matrix.cut = std::string("ended by ") + strsignal(end.signal);
    else if (end.not_run != 0)
        matrix.cut = "--time " + std::to_string(options.time) + " was over";
    return {std::move(matrix), end.signal};
}

void print(const MatrixOptions& options, const Matrix& matrix) {
    if (options.format == "json")
        print_json(std::cout, matrix);
    else if (options.format == "junit")
        print_junit(std::cout, matrix);
    else if (options.format == "html")
        std::cout << pages::matrix_page(matrix);
    else
        print_text(std::cout, matrix);
    if (!std::cout.flush())
        throw std::runtime_error("the results can't be written");
}

int tell(const MatrixOptions& options) {
    std::optional<OutputFile> page; // known to be writable before the runs
    if (!options.html.empty())
        page.emplace(options.html);
    Outcomes all = options.merge.empty() ? run_wanted(options) : Outcomes{merge_files(options.merge), 0};
    all.matrix.sort();
    if (page) {
        page->write(pages::matrix_page(all.matrix));
        if (const auto replacement = page->replacement())
            change_over({}, {*replacement});
        page.reset();
    }
    print(options, all.matrix);
    if (!all.matrix.cut.empty() && options.format != "text")
        std::cerr << "trk: " << shown_text(summary_of(all.matrix)) << "\n";
    if (all.signal != 0)
        return signal_status + all.signal;
    return all.matrix.passed() ? ended_well : ended_badly;
}

int write_run(const MatrixOptions& options) {
    const MediumDriver driver = driver_of(options.medium);
    const std::vector<Cell> cells = Selection(options.only, "none").first_cells(all_cells(driver));
    if (cells.size() != 1)
        throw std::runtime_error("--write: --only has to name one run whole, and names " +
                                 std::to_string(cells.size()));
    fs::create_directories(options.write);
    write_file(options.write / "machine.json", machine_text(cells.front(), driver));
    write_file(options.write / "run.actions", script_text(cells.front()));
    std::cout << "trk rehearse --machine " << shell_word((options.write / "machine.json").string())
              << " --script " << shell_word((options.write / "run.actions").string()) << " "
              << shell_word(options.medium.string()) << "\n";
    return ended_well;
}

} // namespace

int run_matrix(const MatrixOptions& options) {
    try {
        return options.write.empty() ? tell(options) : write_run(options);
    } catch (const std::exception& error) {
        std::cerr << "trk: " << shown_text(error.what()) << "\n";
        return wrong_usage;
    }
}

} // namespace rehearsal::matrix
