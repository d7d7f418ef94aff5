#include "rehearsal/matrix/progress.h"

#include <iostream>

#include <unistd.h>

namespace rehearsal::matrix {
namespace {

std::string time_text(std::chrono::milliseconds time) {
    const auto seconds = std::chrono::ceil<std::chrono::seconds>(time).count();
    return seconds < 120 ? std::to_string(seconds) + " s" : std::to_string((seconds + 59) / 60) + " min";
}

} // namespace

std::string progress_text(const RunCounts& counts, std::size_t without_fault,
                          std::chrono::milliseconds passed) {
    const std::size_t known = counts.done + counts.waiting;
    const std::size_t tried = without_fault - counts.without_fault_left;
    std::size_t all = known;
    if (tried != 0 && known > without_fault) // those that were tried have brought the rest
        all += (known - without_fault) * counts.without_fault_left / tried;
    std::string text = std::to_string(counts.done) + " of " + (all == known ? "" : "about ") +
                       std::to_string(all) + " done, " + std::to_string(counts.failed) + " failed";
    if (counts.done != 0)
        text += ", " + time_text(passed * (all - counts.done) / counts.done) + " left";
    return text;
}

ProgressLine::ProgressLine(std::size_t without_fault)
    : terminal_(isatty(STDERR_FILENO) != 0), without_fault_(without_fault) {}

ProgressLine::~ProgressLine() {
    if (shown_)
        std::cerr << "\r\x1b[K" << std::flush;
}

void ProgressLine::show(const RunCounts& counts) {
    using namespace std::chrono;
    const auto now = Clock::now();
    if (!terminal_ || (shown_ && now - shown_at_ < milliseconds(100)))
        return;
    std::cerr << "\r\x1b[K"
              << progress_text(counts, without_fault_, duration_cast<milliseconds>(now - begun_))
              << std::flush;
    shown_at_ = now;
    shown_ = true;
}

} // namespace rehearsal::matrix
