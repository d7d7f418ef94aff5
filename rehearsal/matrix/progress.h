// The progress of a matrix on a terminal.
#pragma once

#include "rehearsal/matrix/runner.h"

#include <chrono>
#include <string>

namespace rehearsal::matrix {

// "120 of about 460 done, 0 failed, 12 s left". Cells without a fault that are still to come will bring as
// many others as those before did.
std::string progress_text(const RunCounts& counts, std::size_t without_fault,
                          std::chrono::milliseconds passed);

// One line on standard error where that is a terminal; it is gone with this.
class ProgressLine {
public:
    explicit ProgressLine(std::size_t without_fault);
    ~ProgressLine();
    ProgressLine(const ProgressLine&) = delete;
    ProgressLine& operator=(const ProgressLine&) = delete;

    void show(const RunCounts& counts);

private:
    using Clock = std::chrono::steady_clock;
    const bool terminal_;
    const std::size_t without_fault_;
    const Clock::time_point begun_ = Clock::now();
    Clock::time_point shown_at_;
    bool shown_ = false;
};

} // namespace rehearsal::matrix
