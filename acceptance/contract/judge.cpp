#include "judge.h"

#include <algorithm>
#include <cstdio>
#include <fstream>

namespace {

// A cell without the blanks and backquotes around it.
std::string cell_text(const std::string& cell) {
    const std::size_t first = cell.find_first_not_of(" `");
    if (first == std::string::npos)
        return "";
    return cell.substr(first, cell.find_last_not_of(" `") - first + 1);
}

bool names_a_test(const std::string& text) {
    return text.find('.') != std::string::npos && text.find(' ') == std::string::npos;
}

} // namespace

std::vector<Deviation> read_deviations(const char* file) {
    std::vector<Deviation> rows;
    std::ifstream in(file);
    for (std::string line; std::getline(in, line);) {
        const std::size_t second = line.find('|', 1);
        const std::size_t third = second == std::string::npos ? second : line.find('|', second + 1);
        if (!line.starts_with("|") || third == std::string::npos)
            continue;
        const Deviation row{cell_text(line.substr(1, second - 1)),
                            cell_text(line.substr(second + 1, third - second - 1))};
        if (names_a_test(row.test))
            rows.push_back(row);
    }
    return rows;
}

void Judge::OnTestStart(const testing::TestInfo& test) {
    test_ = std::string(test.test_suite_name()) + "." + test.name();
    ran_.push_back(test_);
}

void Judge::OnTestPartResult(const testing::TestPartResult& part) {
    if (!part.failed())
        return;
    const std::string message = part.message();
    const auto known = std::find_if(deviations_.begin(), deviations_.end(), [&](const Deviation& row) {
        return row.test == test_ && message.find(row.where) != std::string::npos;
    });
    if (known != deviations_.end()) {
        known->seen = true;
        ++excused_;
        return;
    }
    ++faults_;
    std::printf("%s, line %d:\n%s\n", test_.c_str(), part.line_number(), message.c_str());
}

bool Judge::give_verdict() const {
    int idle = 0;
    for (const Deviation& row : deviations_) {
        if (row.seen || std::find(ran_.begin(), ran_.end(), row.test) == ran_.end())
            continue;
        ++idle;
        std::printf("%s: nothing deviates any more at '%s'\n", row.test.c_str(), row.where.c_str());
    }
    std::printf("%zu tests of the platform's calls: %d known deviations, %d other failures\n", ran_.size(),
                excused_, faults_);
    return faults_ == 0 && idle == 0 && !ran_.empty();
}
