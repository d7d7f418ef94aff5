#include "sweep/soak.h"

#include "rehearsal/judge.h"
#include "sweep/roads.h"

#include <algorithm>
#include <filesystem>
#include <iterator>

#include <malloc.h>

// The sanitizer's, where there is one: its heap isn't the library's.
extern "C" std::size_t __sanitizer_get_current_allocated_bytes() __attribute__((weak));

namespace sweep {
namespace {

namespace fs = std::filesystem;

// What is allotted once, by whichever round comes to it first, is over by then.
constexpr unsigned long first_rounds = 20;
// Growth of the whole soak that still counts as none: buckets of tables that grow by steps.
constexpr long unnoticed_bytes = 4096;

struct Held {
    long bytes = 0; // of the heap
    long files = 0; // open descriptors
};

Held held_now() {
    const auto files = std::distance(fs::directory_iterator("/proc/self/fd"), fs::directory_iterator());
    const struct mallinfo2 heap = mallinfo2();
    const std::size_t bytes = __sanitizer_get_current_allocated_bytes != nullptr
                                  ? __sanitizer_get_current_allocated_bytes()
                                  : heap.uordblks + heap.hblkhd;
    return {static_cast<long>(bytes), files};
}

// "" when the run ended well.
std::string install_once(Scenario& scenario) {
    scenario.entry = {};
    scenario.actions = network_install;
    const rehearsal::Verdict verdict = judge_install(scenario.run(), scenario.medium(), scenario.drive_c());
    return verdict.status == 0 ? "" : "install: " + verdict.line;
}

std::string remove_once(Scenario& scenario) {
    prepare_removal_run(scenario);
    const rehearsal::Verdict verdict = judge_removal(scenario.run(), last_removal);
    fs::remove(scenario.drive_c() / "Windows/Temp/trk_install.log"); // it is meant to grow
    return verdict.status == 0 ? "" : "removal: " + verdict.line;
}

} // namespace

std::string soak(unsigned long rounds, std::string& told) {
    Scenario scenario;
    Held first;
    for (unsigned long round = 0; round < rounds; ++round) {
        if (round == std::min(first_rounds, rounds / 2))
            first = held_now();
        std::string wrong = install_once(scenario);
        if (wrong.empty())
            wrong = remove_once(scenario);
        if (!wrong.empty())
            return "round " + std::to_string(round + 1) + ", " + wrong;
    }
    const Held last = held_now();
    told = std::to_string(rounds) + " installs and removals: heap " + std::to_string(last.bytes) +
           " bytes, grown by " + std::to_string(last.bytes - first.bytes) + "; " +
           std::to_string(last.files) + " open files, grown by " + std::to_string(last.files - first.files);
    return last.files > first.files || last.bytes > first.bytes + unnoticed_bytes ? told : "";
}

} // namespace sweep
