#include "calls/run/failed_steps.h"

#include "calls/run/session.h"

#include <failed_step.h>

#include <mutex>

namespace platform {
namespace {

struct SaidSteps {
    std::mutex mutex;
    std::vector<FailedStep> steps;
    unsigned warnings = 0;
};

thread_local std::u16string last_line;

// Readers of texts are tested without a session, and then nobody asks.
void note(FailedStep step) {
    if (!in_session())
        return;
    while (!step.text.empty() && (step.text.back() == u'\n' || step.text.back() == u'\r'))
        step.text.pop_back();
    auto& noted = session().area<SaidSteps>();
    const std::lock_guard lock(noted.mutex);
    if (noted.steps.empty() || noted.steps.back() != step)
        noted.steps.push_back(std::move(step));
}

} // namespace

std::vector<FailedStep> failed_steps() {
    auto& noted = session().area<SaidSteps>();
    const std::lock_guard lock(noted.mutex);
    return noted.steps;
}

unsigned announced_warnings() {
    auto& noted = session().area<SaidSteps>();
    const std::lock_guard lock(noted.mutex);
    return noted.warnings;
}

} // namespace platform

void line_logged(const WCHAR* line) {
    platform::last_line = line;
}

void line_failed() {
    platform::note({platform::last_line, true});
}

void step_failed(const WCHAR* what) {
    platform::note({what, false});
}

void warning_follows() {
    auto& noted = platform::session().area<platform::SaidSteps>();
    const std::lock_guard lock(noted.mutex);
    ++noted.warnings;
}
