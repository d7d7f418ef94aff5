// The cells of a matrix, real runs of some of them, and the forms of what came of it.
#include "rehearsal/matrix/runner.h"
#include "rehearsal/temporary_folder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <set>
#include <sstream>

using namespace rehearsal::matrix;

namespace {

Package package_with(bool usb) {
    return {"Label 100 Driver", "1.2.3.4", "Label_100_Series", usb};
}

std::set<std::string> names_of(const std::vector<Cell>& cells) {
    std::set<std::string> names;
    for (const Cell& cell : cells)
        names.insert(cell.name());
    return names;
}

Result result_of(const char* road, const char* fault, int status, bool success_box) {
    Result result;
    result.cell = {"de", "x64", "current", 'D', road, fault};
    result.status = status;
    result.success_box = success_box;
    result.verdict = "<script>alert(1)</script>";
    result.box = "a \"box\" & more\x01";
    result.stayed = {"queue </td>"};
    return result;
}

} // namespace

TEST(MatrixCells, StatesAndRoadsAreThoseThatTheDriverCanComeTo) {
    const struct {
        bool usb;
        std::set<std::string> expected; // of one language, system and Windows
    } table[] = {
        {true,
         {"A/network", "A/two", "A/typed", "A/none", "C/leave", "D/network", "D/two", "D/typed", "D/none",
          "D/usb"}},
        {false,
         {"B/network", "B/two", "B/typed", "B/none", "C/leave", "E/network", "E/two", "E/typed", "E/none"}},
    };
    for (const auto& row : table) {
        std::set<std::string> expected;
        for (const std::string& name : row.expected)
            expected.insert("ja/x86/vista/" + name);
        const std::vector<Cell> cells = all_cells(package_with(row.usb));
        EXPECT_EQ(names_of(only_cells(cells, {"ja/x86/vista"})), expected);
        EXPECT_EQ(cells.size(), names_of(cells).size()) << "no name twice";
        EXPECT_EQ(cells.size(), 7 * 2 * 3 * row.expected.size());
    }
}

TEST(MatrixCells, PatternsChooseByPartsAndShardsShareAll) {
    std::vector<Cell> cells = all_cells(package_with(true));
    add_faults(cells, only_cells(cells, {"en-US/x64/current/D/usb"}).front(), {"CopyFileW", "CreateFileW"});
    EXPECT_EQ(only_cells(cells, {"de", "fr/x86"}).size(), 60u + 30);
    EXPECT_EQ(names_of(only_cells(cells, {"*/*/*/D/usb"})).size(), 7u * 2 * 3) << "a fault isn't asked for";
    EXPECT_EQ(
        names_of(only_cells(cells, {"*/*/*/*/*/C*FileW"})),
        (std::set<std::string>{"en-US/x64/current/D/usb/CopyFileW", "en-US/x64/current/D/usb/CreateFileW"}));
    EXPECT_THROW(only_cells(cells, {"de", "nl"}), std::runtime_error);
    std::set<std::string> shared;
    for (std::size_t number = 1; number <= 8; ++number)
        for (const std::string& name : names_of(shard_of(cells, number, 8)))
            EXPECT_TRUE(shared.insert(name).second) << name;
    EXPECT_EQ(shared, names_of(cells));
}

TEST(MatrixRuns, ARealRunTellsItsVerdictAndASilentFailureStandsFirst) {
    const rehearsal::TemporaryFolder folder("trk-matrix-test");
    const Package package = read_package(TRK_SAMPLE_MEDIUM);
    EXPECT_EQ(package.driver, "Label 100 Driver");
    EXPECT_EQ(package.version, "1.2.3.4");
    std::vector<Cell> cells = only_cells(all_cells(package), {"de/x86/7/A/two", "ja/x64/current/C"});
    const Cell road = only_cells(base_cells(package), {"*/*/*/D/network"}).front();
    add_faults(cells, road, {"AddPrinterW", "SetPrinterDataExA"});
    std::size_t told = 0;
    RunSettings settings;
    settings.program = TRK_PROGRAM;
    settings.medium = TRK_SAMPLE_MEDIUM;
    settings.folder = folder.path();
    settings.jobs = 2;
    settings.progress = [&](std::size_t done, std::size_t) { told = std::max(told, done); };
    Matrix matrix = run_cells(cells, package, settings);
    ASSERT_EQ(matrix.results.size(), 4u);
    EXPECT_EQ(told, 4u);
    for (std::size_t i : {std::size_t{0}, std::size_t{1}})
        EXPECT_EQ(matrix.results[i].status, 0) << matrix.results[i].verdict;
    const auto left = [&](const char* what) {
        const auto& stayed = matrix.results[0].stayed;
        return std::any_of(stayed.begin(), stayed.end(),
                           [&](const std::string& thing) { return thing.find(what) != std::string::npos; });
    };
    EXPECT_TRUE(left("queue Label 100 Series on TRK_10.0.0.8")) << "the second printer";
    EXPECT_TRUE(left("shortcut "));
    EXPECT_TRUE(matrix.results[1].box.empty()) << "nothing can be installed over another version";
    EXPECT_FALSE(matrix.failed()) << "a run with a fault may fail";
    matrix.sort();
    EXPECT_TRUE(matrix.results[0].silent_failure());
    EXPECT_EQ(matrix.results[0].cell.fault, "SetPrinterDataExA") << matrix.results[0].verdict;
}

TEST(MatrixRuns, AProgramThatFailsIsNoGoodRun) {
    const rehearsal::TemporaryFolder folder("trk-matrix-test");
    RunSettings settings;
    settings.program = "/bin/false";
    settings.medium = TRK_SAMPLE_MEDIUM;
    settings.folder = folder.path();
    const std::vector<Cell> cells = only_cells(all_cells(package_with(true)), {"de/x64/7"});
    Matrix matrix = run_cells(cells, package_with(true), settings);
    EXPECT_EQ(matrix.results.size(), cells.size());
    EXPECT_TRUE(matrix.failed()) << "a program that fails is no good run";
    settings.program = "/no such program";
    EXPECT_THROW(run_cells(cells, package_with(true), settings), std::runtime_error);
}

TEST(MatrixForms, JsonComesBackAndOnlyPlainFailuresFail) {
    Matrix matrix{"medium", {result_of("network", "", 0, true), result_of("usb", "CopyFileW", 1, true)}, 3};
    EXPECT_FALSE(matrix.failed());
    matrix.results.push_back(result_of("typed", "", 1, false));
    EXPECT_TRUE(matrix.failed());
    const rehearsal::TemporaryFolder folder("trk-matrix-test");
    const std::string file = folder.path() / "one.json";
    std::ofstream stream(file);
    print_json(stream, matrix);
    stream.close();
    std::ostringstream again, first;
    print_json(again, read_json(file));
    print_json(first, matrix);
    EXPECT_EQ(again.str(), first.str());
    std::ofstream(file) << "{\"schema\": \"another\"}";
    EXPECT_THROW(read_json(file), std::runtime_error);
}

TEST(MatrixForms, WhatComesFromFilesCantBreakOutOfPages) {
    Matrix matrix{"<medium>", {result_of("network", "", 1, true)}, 0};
    std::ostringstream html, junit;
    print_html(html, matrix);
    print_junit(junit, matrix);
    for (const std::string& page : {html.str(), junit.str()}) {
        EXPECT_EQ(page.find("<script>alert"), std::string::npos);
        EXPECT_EQ(page.find('\x01'), std::string::npos);
        EXPECT_NE(page.find("&lt;script&gt;alert"), std::string::npos);
    }
    EXPECT_NE(html.str().find("queue &lt;/td&gt;"), std::string::npos);
    EXPECT_NE(html.str().find("data-result=\"silent failure\""), std::string::npos);
}
