#include "rehearsal/matrix/matrix.h"

#include "rehearsal/exit_status.h"
#include "rehearsal/matrix/runner.h"
#include "rehearsal/temporary_folder.h"

#include <algorithm>
#include <charconv>
#include <chrono>
#include <iostream>
#include <iterator>
#include <stdexcept>
#include <thread>
#include <utility>

#include <unistd.h>

namespace fs = std::filesystem;

namespace rehearsal::matrix {
namespace {

// The calls whose failing users meet: a service that is away, a policy, a full disk, a taken name.
const std::vector<std::string> some_faults = {"UploadPrinterDriverPackageW",
                                              "InstallPrinterDriverFromPackageW",
                                              "XcvDataW",
                                              "AddPrinterW",
                                              "SetPrinterDataExA",
                                              "SetDefaultPrinterW",
                                              "CopyFileW",
                                              "IPersistFile::Save",
                                              "socket",
                                              "MessageBoxW"};

// A progress line on a terminal: done, failed, and how long the rest may take.
class Progress {
public:
    explicit Progress(std::size_t all) : all_(all), begin_(std::chrono::steady_clock::now()) {}
    ~Progress() {
        if (shown_)
            std::cerr << "\r\x1b[K" << std::flush;
    }
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;

    void operator()(std::size_t done, std::size_t failed) {
        using namespace std::chrono;
        const auto now = steady_clock::now();
        if (!terminal_ || (shown_ && now - last_ < milliseconds(100)))
            return;
        const auto passed = duration_cast<milliseconds>(now - begin_).count();
        const auto rest = passed * static_cast<std::int64_t>(all_ - done) / static_cast<std::int64_t>(done);
        std::cerr << "\r\x1b[K" << done << " of " << all_ << " done, " << failed << " failed, about "
                  << (rest + 999) / 1000 << " s left" << std::flush;
        last_ = now;
        shown_ = true;
    }

private:
    const bool terminal_ = isatty(STDERR_FILENO) != 0;
    const std::size_t all_;
    const std::chrono::steady_clock::time_point begin_;
    std::chrono::steady_clock::time_point last_;
    bool shown_ = false;
};

Matrix run(const std::vector<Cell>& cells, const Package& package, const MatrixOptions& options) {
    const TemporaryFolder folder("trk-matrix");
    Progress progress(cells.size());
    RunSettings settings;
    settings.program = fs::read_symlink("/proc/self/exe");
    settings.medium = fs::absolute(options.medium);
    settings.folder = folder.path();
    settings.jobs = options.jobs != 0 ? options.jobs : std::max(1u, std::thread::hardware_concurrency());
    settings.limit = std::chrono::seconds(options.time);
    settings.progress = [&](std::size_t done, std::size_t failed) { progress(done, failed); };
    return run_cells(cells, package, settings);
}

// The calls that fail, one after the other, on each road: those of the list, or every one that can fail
// there, which a run without a fault tells.
std::vector<Cell> faulty_cells(const Package& package, const MatrixOptions& options) {
    const std::vector<Cell> roads = base_cells(package);
    std::vector<Cell> cells;
    if (options.faults == "some") {
        for (const Cell& road : roads)
            add_faults(cells, road, some_faults);
    } else if (options.faults == "all") {
        for (const Result& result : run(roads, package, options).results)
            add_faults(cells, result.cell, result.calls);
    }
    return cells;
}

// "3/8" as number and count.
std::pair<std::size_t, std::size_t> read_shard(const std::string& text) {
    std::size_t number = 0, count = 0;
    const char* const end = text.data() + text.size();
    const auto first = std::from_chars(text.data(), end, number);
    const bool slash = first.ec == std::errc() && first.ptr != end && *first.ptr == '/';
    const auto second = slash ? std::from_chars(first.ptr + 1, end, count) : first;
    if (!slash || second.ec != std::errc() || second.ptr != end || number == 0 || number > count)
        throw std::runtime_error("--shard " + text + ": a number and a count are needed, such as 3/8");
    return {number, count};
}

Matrix run_wanted(const MatrixOptions& options) {
    const Package package = read_package(options.medium.string());
    std::vector<Cell> cells = all_cells(package);
    for (Cell& cell : faulty_cells(package, options))
        cells.push_back(std::move(cell));
    cells = only_cells(cells, options.only);
    if (!options.shard.empty()) {
        const auto [number, count] = read_shard(options.shard);
        cells = shard_of(cells, number, count);
    }
    if (options.list) {
        for (const Cell& cell : cells)
            std::cout << cell.name() << "\n";
        return {};
    }
    Matrix matrix = run(cells, package, options);
    matrix.medium = options.medium.string();
    return matrix;
}

Matrix merge(const std::vector<std::string>& files) {
    Matrix merged;
    for (const std::string& file : files) {
        Matrix one = read_json(file);
        if (!merged.medium.empty() && one.medium != merged.medium)
            throw std::runtime_error(file + ": of another medium, " + one.medium);
        merged.medium = one.medium;
        merged.not_run += one.not_run;
        std::move(one.results.begin(), one.results.end(), std::back_inserter(merged.results));
    }
    return merged;
}

void print(const MatrixOptions& options, const Matrix& matrix) {
    if (options.format == "json")
        print_json(std::cout, matrix);
    else if (options.format == "junit")
        print_junit(std::cout, matrix);
    else if (options.format == "html")
        print_html(std::cout, matrix);
    else
        print_text(std::cout, matrix);
}

} // namespace

int run_matrix(const MatrixOptions& options) {
    try {
        Matrix matrix = options.merge.empty() ? run_wanted(options) : merge(options.merge);
        if (!options.list) {
            matrix.sort();
            print(options, matrix);
        }
        if (!std::cout.flush())
            throw std::runtime_error("the results can't be written");
        return matrix.failed() ? ended_badly : ended_well;
    } catch (const std::exception& error) {
        std::cerr << "trk: " << error.what() << "\n";
        return wrong_usage;
    }
}

} // namespace rehearsal::matrix
