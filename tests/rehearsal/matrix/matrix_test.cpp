// The cells of a matrix, which of them are chosen, and the forms of what came of them.
#include "calls/run/call_names.h"
#include "rehearsal/matrix/progress.h"
#include "rehearsal/matrix/results.h"
#include "rehearsal/pages/matrix_page.h"
#include "rehearsal/temporary_folder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <set>
#include <sstream>

using namespace rehearsal::matrix;

namespace {

std::vector<Cell> cells_with(bool usb) {
    return all_cells({"Label 100 Driver", "Label_100_Series", "lbl.inf", 0x0001000200030004, usb});
}

std::set<std::string> names_of(const std::vector<Cell>& cells) {
    std::set<std::string> names;
    for (const Cell& cell : cells)
        names.insert(cell.name());
    EXPECT_EQ(names.size(), cells.size()) << "a name stands twice";
    return names;
}

Result result_of(const Cell& cell, int status, bool success_box, std::vector<std::string> missing = {}) {
    Result result;
    result.cell = cell;
    result.status = status;
    result.success_box = success_box;
    result.missing = std::move(missing);
    result.verdict = "FAIL: <script>alert(1)</script>";
    result.box = "a \"box\" & more\x01";
    result.stayed = {"queue </td>"};
    return result;
}

Cell cell_of(const char* road, const char* fault, const char* language = "de") {
    return {language, "x64", "current", 'D', road, fault};
}

std::string json_of(const Matrix& matrix) {
    std::ostringstream out;
    print_json(out, matrix);
    return out.str();
}

// Written as files, read as one.
Matrix merged(const std::vector<Matrix>& matrices) {
    const rehearsal::TemporaryFolder folder("trk-matrix-test");
    std::vector<std::string> files;
    for (const Matrix& matrix : matrices) {
        files.push_back(folder.path() / std::to_string(files.size()));
        std::ofstream(files.back()) << json_of(matrix);
    }
    return merge_files(files);
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
        const std::vector<Cell> all = cells_with(row.usb);
        EXPECT_EQ(names_of(Selection({"ja/x86/vista"}, "none").first_cells(all)), expected);
        EXPECT_EQ(names_of(all).size(), 7 * 2 * 3 * row.expected.size());
        EXPECT_TRUE(std::is_sorted(all.begin(), all.end()));
    }
}

TEST(MatrixSelection, FaultsAreThoseThatPatternsAndOptionName) {
    const std::vector<std::string> calls = {"AddPrinterW", "CopyFileW", "GetDlgItem"};
    const std::vector<Cell> all = cells_with(true);
    const struct {
        std::vector<std::string> patterns;
        const char* faults;
        std::size_t first;              // cells that are run at once
        std::set<std::string> expected; // faults of en-US/x64/7/D/usb then
    } table[] = {
        {{}, "none", 420, {}},
        {{}, "some", 420, {"AddPrinterW", "CopyFileW"}},
        {{}, "all", 420, {"AddPrinterW", "CopyFileW", "GetDlgItem"}},
        {{"de", "fr/x86", "de/x64"}, "all", 90, {}},
        {{"*/*/7/D/usb"}, "none", 14, {}},
        {{"*/*/7/D/usb/C*FileW"}, "none", 14, {"CopyFileW"}},
        {{"en-US/x64/7/D/usb/GetDlgItem"}, "all", 1, {}},
        {{"en-US/x64/7/D/usb/GetDlgItem", "en-US"}, "all", 61, {"AddPrinterW", "CopyFileW"}},
    };
    const Cell usb = {"en-US", "x64", "7", 'D', "usb", ""};
    for (const auto& row : table) {
        const Selection selection(row.patterns, row.faults);
        EXPECT_EQ(names_of(selection.first_cells(all)).size(), row.first)
            << testing::PrintToString(row.patterns);
        if (!row.patterns.empty() && row.patterns[0] == "de")
            continue;
        std::set<std::string> faults;
        for (const Cell& cell : selection.faults_of(usb, calls))
            faults.insert(cell.fault);
        EXPECT_EQ(faults, row.expected) << testing::PrintToString(row.patterns) << row.faults;
    }
    for (const char* const wrong :
         {"nl", "de/x64/7/D/usb/AddPrinterV", "de/x64/7/B", "de/x64/7/D/usb/bind/x"})
        EXPECT_THROW(Selection({wrong}, "none").first_cells(all), std::runtime_error) << wrong;
    for (const std::string& call : some_faults())
        EXPECT_TRUE(std::binary_search(platform::call_names().begin(), platform::call_names().end(), call))
            << call;
}

TEST(MatrixSelection, ShardsShareAllAndEachHasSomeOfAll) {
    const std::vector<Cell> all = cells_with(true);
    for (const std::size_t count : {std::size_t{1}, std::size_t{8}, std::size_t{10}}) {
        std::set<std::string> shared;
        for (std::size_t number = 1; number <= count; ++number) {
            const std::vector<Cell> part = shard_of(all, {number, count});
            std::set<std::string> kinds;
            for (const Cell& cell : part) {
                EXPECT_TRUE(shared.insert(cell.name()).second) << cell.name();
                kinds.insert(cell.kind());
            }
            EXPECT_LE(part.size(), all.size() / count + 1);
            EXPECT_GE(kinds.size(), 6u) << "shard " << number << " of " << count;
        }
        EXPECT_EQ(shared, names_of(all));
    }
    EXPECT_EQ(read_shard("3/8"), (Shard{3, 8}));
    for (const char* const wrong : {"", "3", "0/8", "9/8", "3/8 ", "a/8", "/8", "3/-8"})
        EXPECT_THROW(read_shard(wrong), std::runtime_error) << wrong;
}

TEST(MatrixResults, EndingsAreToldApartAndTheWorstStandFirst) {
    Matrix matrix{"medium", "Label 100 Driver", "1.2.3.4", "some", {}, {}, {}, 0, false, ""};
    matrix.results = {result_of(cell_of("network", ""), 0, true),
                      result_of(cell_of("two", "", "ja"), 1, true),
                      result_of(cell_of("two", ""), 1, true),
                      result_of(cell_of("network", "bind"), 1, true),
                      result_of(cell_of("network", "CopyFileW"), 1, false),
                      result_of(cell_of("network", "GetDC"), 1, false),
                      result_of(cell_of("network", "AddPrinterW"), 1, true, {"no queue"}),
                      result_of(cell_of("network", "AddPortW"), 3, false)};
    matrix.results[4].failure_box = true;
    EXPECT_FALSE(matrix.passed());
    matrix.sort();
    std::string order;
    for (const Group& group : groups_of(matrix))
        order += std::string(name_of(group.ending)) + " " + group.name + " " +
                 std::to_string(group.results.size()) + "\n";
    EXPECT_EQ(order, "silent AddPrinterW 1\nfailed D/two 2\nunmodelled AddPortW 1\nunheard GetDC 1\n"
                     "told CopyFileW 1\nharmless bind 1\nwell D/network 1\n");
    EXPECT_EQ(matrix.results[1].cell.language, "de") << "in the order of the table";
    EXPECT_EQ(summary_of(matrix),
              "3 runs: 1 ended well, 2 failed; 5 runs with a failing call: 1 harmless, 1 told, "
              "1 not told, 1 not modelled, 1 failed silently");
    std::erase_if(matrix.results, [](const Result& one) { return one.ending() == Ending::failed; });
    EXPECT_TRUE(matrix.passed()) << "a run with a failing call may fail";
    matrix.not_run = 3;
    EXPECT_FALSE(matrix.passed());
    EXPECT_EQ(repeat_command({"it's mine", "", "", "", {}, {}, {}, 0, false, ""},
                             cell_of("usb", "IPersistFile::Save")),
              "trk matrix --only de/x64/current/D/usb/IPersistFile::Save 'it'\\''s mine'");
}

TEST(MatrixResults, PartsComeTogetherAndALostOneIsTold) {
    Matrix first{"medium", "Label 100 Driver", "1.2.3.4", "some", {}, {{1, 3}}, {}, 2,
                 true,     "--time 5 was over"};
    first.results = {result_of(cell_of("usb", "CopyFileW"), 1, true, {"no file"})};
    Matrix second = first, other = first;
    second.shards = {{3, 3}};
    second.not_run = 1;
    second.results = {result_of(cell_of("usb", ""), 0, true)};
    EXPECT_EQ(json_of(merged({second})).find("\"passed\": true"), std::string::npos);
    const Matrix both = merged({first, second});
    EXPECT_EQ(both.results.size(), 2u);
    EXPECT_FALSE(both.passed());
    EXPECT_EQ(summary_of(both),
              "1 run: 1 ended well; 1 run with a failing call: 1 failed silently; at least 3 not "
              "run (--time 5 was over; no file has shard 2/3)");
    EXPECT_EQ(json_of(merged({both})).size(),
              json_of(both).size() + std::string("; no file has shard 2/3").size());
    EXPECT_THROW(merged({first, first}), std::runtime_error) << "twice";
    second.results = first.results;
    EXPECT_THROW(merged({first, second}), std::runtime_error) << "the same run in two";
    other.version = "1.2.3.5";
    other.shards = {{2, 3}};
    EXPECT_THROW(merged({first, other}), std::runtime_error) << "of another driver";
    const rehearsal::TemporaryFolder folder("trk-matrix-test");
    for (const char* const text : {"", "[]", "{\"schema\": \"another\"}", "{\"schema\": \"trk-matrix-1\"}"}) {
        const std::string file = folder.path() / "file";
        std::ofstream(file) << text;
        EXPECT_THROW(merge_files({file}), std::runtime_error) << text;
    }
}

TEST(MatrixForms, WhatComesFromFilesCantBreakOutOfPages) {
    Matrix matrix{"<medium>", "<b>", "1.2.3.4", "some", {}, {}, {}, 0, false, ""};
    matrix.results = {result_of(cell_of("network", ""), 1, true),
                      result_of(cell_of("usb", "bind"), 1, true, {"x"})};
    matrix.sort();
    std::ostringstream junit;
    print_junit(junit, matrix);
    for (const std::string& page : {rehearsal::pages::matrix_page(matrix), junit.str()}) {
        EXPECT_EQ(page.find("<script>alert"), std::string::npos);
        EXPECT_EQ(page.find('\x01'), std::string::npos);
        EXPECT_NE(page.find("&lt;script&gt;alert"), std::string::npos);
        EXPECT_NE(page.find("queue &lt;/td&gt;"), std::string::npos);
    }
    EXPECT_NE(junit.str().find("tests=\"1\" failures=\"1\" errors=\"0\""), std::string::npos);
    EXPECT_NE(junit.str().find("de/x64/current/D/usb/bind: a silent failure"), std::string::npos);
    matrix.cut = "--time 5 was over";
    matrix.not_run = 7;
    std::ostringstream cut;
    print_junit(cut, matrix);
    EXPECT_NE(cut.str().find("tests=\"2\" failures=\"1\" errors=\"1\""), std::string::npos);
}

TEST(MatrixProgress, CountsWhatIsStillToCome) {
    using std::chrono::milliseconds;
    EXPECT_EQ(progress_text({0, 0, 420, 420}, 420, milliseconds(0)), "0 of 420 done, 0 failed");
    EXPECT_EQ(progress_text({105, 2, 315, 315}, 420, milliseconds(1000)),
              "105 of 420 done, 2 failed, 3 s left");
    // A tenth of the cells has brought 80 others.
    EXPECT_EQ(progress_text({10, 0, 170, 90}, 100, milliseconds(1000)),
              "10 of about 900 done, 0 failed, 89 s left");
    EXPECT_EQ(progress_text({100, 0, 800, 0}, 100, milliseconds(60000)),
              "100 of 900 done, 0 failed, 8 min left");
}
