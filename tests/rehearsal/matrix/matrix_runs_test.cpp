// Real runs of a few cells, in processes side by side.
#include "harness/test_session.h"
#include "rehearsal/matrix/runner.h"
#include "rehearsal/matrix/selection.h"
#include "rehearsal/trk_program.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <csignal>
#include <map>

#include <sys/wait.h>

using namespace rehearsal::matrix;

namespace {

rehearsal::MediumDriver sample_driver() {
    return rehearsal::read_medium_driver(rehearsal::check::Medium(TRK_SAMPLE_MEDIUM)).value();
}

std::vector<Cell> sample_cells(const std::vector<std::string>& patterns) {
    return Selection(patterns, "none").first_cells(all_cells(sample_driver()));
}

std::map<std::string, Result> by_name(const RunEnd& end) {
    std::map<std::string, Result> results;
    for (const Result& result : end.results)
        results[result.cell.name()] = result;
    return results;
}

bool has_children() {
    return waitpid(-1, nullptr, WNOHANG) >= 0 || errno != ECHILD;
}

class MatrixRuns : public testing::Test {
protected:
    RunEnd run(const std::vector<std::string>& patterns) {
        return run_cells(sample_cells(patterns), sample_driver(), settings);
    }
    MatrixRuns() {
        settings.medium = TRK_SAMPLE_MEDIUM;
        settings.jobs = 2;
    }
    RunSettings settings;
};

} // namespace

TEST_F(MatrixRuns, AFaultGoesThroughTheRunsThatBringItsCall) {
    std::size_t told = 0, calls_seen = 0;
    settings.counted = [&](const RunCounts& counts) { told = counts.done; };
    settings.faults_of = [&](const Cell& cell, const std::vector<std::string>& calls) {
        calls_seen += calls.size();
        return Selection({"*/*/*/*/*/SetPrinterDataExA"}, "none").faults_of(cell, calls);
    };
    const RunEnd end = run({"de/x86/7/D/two", "ja/x64/current/C"});
    const auto results = by_name(end);
    ASSERT_EQ(results.size(), 3u) << "nothing is sent to a printer where nothing is installed";
    EXPECT_EQ(told, 3u);
    EXPECT_GT(calls_seen, 80u);
    const Result& good = results.at("de/x86/7/D/two");
    EXPECT_EQ(good.ending(), Ending::well) << good.verdict;
    EXPECT_NE(good.box.find("erfolgreich installiert"), std::string::npos) << good.box;
    const auto left = [&](const char* what) {
        return std::count(good.stayed.begin(), good.stayed.end(), std::string(what)) == 1;
    };
    EXPECT_TRUE(left("port TRK_10.0.0.8")) << "the second printer: " << testing::PrintToString(good.stayed);
    EXPECT_TRUE(left("folder C:\\Program Files\\Vorlane (17 files)")) << testing::PrintToString(good.stayed);
    const Result& leave = results.at("ja/x64/current/C/leave");
    EXPECT_EQ(leave.ending(), Ending::well) << leave.verdict;
    EXPECT_TRUE(leave.box.empty()) << "nothing can be installed over another version";
    const Result& silent = results.at("de/x86/7/D/two/SetPrinterDataExA");
    EXPECT_EQ(silent.ending(), Ending::silent);
    EXPECT_EQ(silent.missing, std::vector<std::string>{"8 of 9 label sizes"});
    EXPECT_FALSE(end.more || end.not_run != 0 || end.signal != 0);
    EXPECT_FALSE(has_children());
}

TEST_F(MatrixRuns, ASignalAndATimeLimitLeaveCellsOutAndNoProcessBehind) {
    settings.counted = [&](const RunCounts&) { kill(getpid(), SIGINT); };
    const RunEnd ended = run({"fr"});
    EXPECT_EQ(ended.signal, SIGINT);
    EXPECT_GE(ended.results.size(), 1u);
    EXPECT_EQ(ended.results.size() + ended.not_run, 60u);
    EXPECT_FALSE(has_children());
    settings.counted = {};
    settings.faults_of = [](const Cell&, const std::vector<std::string>&) { return std::vector<Cell>{}; };
    settings.limit = std::chrono::seconds(0);
    const RunEnd late = run({"fr"});
    EXPECT_TRUE(late.late && late.more);
    EXPECT_EQ(late.not_run, 60u);
}

TEST_F(MatrixRuns, ARunThatTakesTooLongIsEnded) {
    settings.longest = std::chrono::seconds(0);
    const RunEnd end = run({"fr/x86/7/D/usb", "fr/x64/7/D/usb"});
    ASSERT_EQ(end.results.size(), 2u);
    for (const Result& result : end.results) {
        EXPECT_EQ(result.ending(), Ending::unmodelled);
        EXPECT_EQ(result.verdict, "FAIL: the rehearsal took too long and was ended");
    }
    EXPECT_FALSE(has_children());
}

// As the commands that the results name do it.
TEST_F(TrkProgram, RepeatsOneRunOfAMatrixAlone) {
    const std::string medium = " " TRK_SAMPLE_MEDIUM;
    ASSERT_EQ(run(program, "matrix --format json --faults some --only en-GB/x64/7/D/network" + medium), 0)
        << err;
    std::vector<std::string> lines;
    std::istringstream words(out);
    for (std::string line; std::getline(words, line);)
        lines.push_back(line.substr(std::min(line.find_first_not_of(' '), line.size())));
    std::size_t repeated = 0;
    for (std::size_t i = 0; i < lines.size(); ++i) {
        const std::string verdict = lines[i];
        if (!verdict.starts_with("\"verdict\": ") || repeated == 3)
            continue;
        const auto again = std::find_if(lines.begin() + static_cast<std::ptrdiff_t>(i), lines.end(),
                                        [](const auto& line) { return line.starts_with("\"again\": "); });
        ASSERT_NE(again, lines.end());
        const std::string begin = "\"again\": \"trk ";
        ASSERT_TRUE(again->starts_with(begin));
        const std::string command = again->substr(begin.size(), again->rfind('"') - begin.size());
        EXPECT_EQ(run(program, command + " --format json"), 0) << err;
        EXPECT_NE(out.find(verdict), std::string::npos) << command << "\n" << verdict << "\n" << out;
        ++repeated;
    }
    EXPECT_EQ(repeated, 3u);
}

TEST_F(TrkProgram, WritesARunOfAMatrixForARehearsal) {
    const std::string folder_name = (folder.path / "cell").string();
    ASSERT_EQ(run(program, "matrix --only ja/x86/vista/D/usb/CopyFileW --write " + folder_name +
                               " " TRK_SAMPLE_MEDIUM),
              0)
        << err;
    const std::string command = out.substr(4, out.find('\n') - 4);
    EXPECT_EQ(run(program, command), 1) << err;
    EXPECT_NE(out.find("FAIL: "), std::string::npos) << out;
    EXPECT_EQ(run(program, "matrix --only ja --write " + folder_name + " " TRK_SAMPLE_MEDIUM), 2) << "many";
}

TEST_F(TrkProgram, ToldOfMatricesThatCantBe) {
    EXPECT_EQ(run(program, "matrix " TRK_SAMPLE_MEDIUM " --merge " + machine.string()), 2);
    EXPECT_EQ(run(program, "matrix --merge " + machine.string()), 2);
    EXPECT_NE(err.find("m.json: isn't what trk matrix"), std::string::npos) << err;
    EXPECT_EQ(run(program, "matrix --shard 9/8 " TRK_SAMPLE_MEDIUM), 2);
    EXPECT_EQ(run(program, "matrix " + folder.path.string()), 2) << "no driver";
    EXPECT_EQ(out, "");
}
