// The steps of which the program said itself that they failed.
#pragma once

#include <string>
#include <vector>

namespace platform {

struct FailedStep {
    std::u16string text; // the log's line without its line end, or the step's name
    bool logged = false; // it is a line of the log
    bool operator==(const FailedStep&) const = default;
};

// In the order in which they failed. A step that fails again and again at once, as a log that can't be
// written does, is there once.
std::vector<FailedStep> failed_steps();

// How many of the run's boxes with the exclamation icon were announced as warnings.
unsigned announced_warnings();

} // namespace platform
