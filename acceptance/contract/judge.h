// The verdict over a run of the tests: which of their failures are known deviations of the system that ran
// them.
#pragma once

#include <gtest/gtest.h>

#include <string>
#include <vector>

// The name under which a copy of this program is the child that tests start.
inline constexpr wchar_t child_name[] = L"The child.exe";

// A known deviation: the failures of one test whose message contains the text, such as a case's name.
struct Deviation {
    std::string test; // Suite.Name
    std::string where;
    bool seen = false;
};

// The rows of the table in a Markdown file whose first cell names a test, by its first two cells. Backquotes
// around a cell don't count. Empty when the file can't be read.
std::vector<Deviation> read_deviations(const char* file);

// Takes the place of GoogleTest's printer and sorts the failures as they come.
class Judge : public testing::EmptyTestEventListener {
public:
    explicit Judge(std::vector<Deviation> deviations) : deviations_(std::move(deviations)) {}

    void OnTestStart(const testing::TestInfo& test) override;
    void OnTestPartResult(const testing::TestPartResult& part) override;

    // Tells what was found on standard output. True when every failure is a known deviation, and every known
    // deviation of a test that ran was seen: a row that nothing needs any more is wrong.
    bool give_verdict() const;

private:
    std::string test_; // the one that runs
    std::vector<std::string> ran_;
    std::vector<Deviation> deviations_;
    int excused_ = 0;
    int faults_ = 0;
};
