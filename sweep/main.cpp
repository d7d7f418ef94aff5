// trk_sweep: every road under every failing call, lie about a size and event of the user, each in a process
// of its own. One line, with what repeats it, for each bad run.
#include "sweep/cases.h"
#include "sweep/processes.h"
#include "sweep/quiet.h"
#include "sweep/soak.h"

#include <chrono>
#include <cstdlib>
#include <iomanip>
#include <iostream>
#include <regex>
#include <thread>

#include <unistd.h>

namespace {

using namespace sweep;

constexpr unsigned seconds_of_a_process = 120;

struct Options {
    unsigned jobs = std::max(1u, std::thread::hardware_concurrency());
    std::size_t sample = 0; // runs, evenly spread over all; 0: all
    unsigned long soak = 0; // installs and removals in place of the sweep
    bool list = false;
    std::vector<std::string> names; // beginnings of the wanted cases; empty: all
};

constexpr char usage[] =
    "usage: trk_sweep [--jobs N] [--sample N] [--list] [NAME]...\n"
    "       trk_sweep --soak N\n"
    "  --jobs N    processes side by side; as many as there are cores\n"
    "  --sample N  that many runs, evenly spread over the chosen ones\n"
    "  --list      the names alone\n"
    "  --soak N    that many installs and removals, one after the other in one process\n"
    "  NAME        the runs whose name begins so: network, network/CreateFileW/3/ever/5\n";

unsigned long number(const char* text) {
    char* end = nullptr;
    const unsigned long value = text == nullptr ? 0 : std::strtoul(text, &end, 10);
    if (text == nullptr || *end != 0 || value == 0) {
        std::cerr << usage;
        std::exit(2);
    }
    return value;
}

Options parse(char** arguments) {
    Options options;
    while (*++arguments != nullptr) {
        const std::string word = *arguments;
        if (word == "--jobs")
            options.jobs = static_cast<unsigned>(number(*++arguments));
        else if (word == "--sample")
            options.sample = number(*++arguments);
        else if (word == "--soak")
            options.soak = number(*++arguments);
        else if (word == "--list")
            options.list = true;
        else if (word.starts_with("-")) {
            std::cerr << usage;
            std::exit(2);
        } else
            options.names.push_back(word);
    }
    return options;
}

bool wanted(const Options& options, const std::string& name) {
    return options.names.empty() ||
           std::any_of(options.names.begin(), options.names.end(),
                       [&](const std::string& begin) { return name.starts_with(begin); });
}

std::vector<Case> choose(const Options& options, const std::vector<PreparedRoad>& prepared) {
    std::vector<Case> chosen;
    for (const PreparedRoad& road : prepared)
        for (const Case& one : cases_of(road))
            if (wanted(options, one.name()))
                chosen.push_back(one);
    if (options.sample == 0 || options.sample >= chosen.size())
        return chosen;
    std::vector<Case> sample;
    for (std::size_t index = 0; index < options.sample; ++index)
        sample.push_back(chosen[index * chosen.size() / options.sample]);
    return sample;
}

// Tells of the runs as they end: a line for each bad one, and on a terminal how far it is.
class Progress {
public:
    Progress(std::string program, std::size_t count) : program_(std::move(program)), count_(count) {}

    void ended(const std::string& name, const std::string& complaint) {
        ++done_;
        if (!complaint.empty()) {
            ++bad_;
            std::cout << (terminal_ ? "\r" : "") << program_ << " " << name << "\n    "
                      << std::regex_replace(complaint, std::regex("\n"), "\n    ") << std::endl;
        }
        if (terminal_)
            std::cerr << "\r" << done_ << " of " << count_ << " runs, " << bad_ << " bad" << std::flush;
    }

    // The exit status.
    int close() const {
        const std::chrono::duration<double> passed = std::chrono::steady_clock::now() - begin_;
        std::cout << (terminal_ ? "\r" : "") << done_ << " runs in " << std::fixed << std::setprecision(1)
                  << passed.count() << " s, " << bad_ << " bad\n";
        return bad_ == 0 ? 0 : 1;
    }

private:
    const std::string program_;
    const std::size_t count_;
    const bool terminal_ = isatty(STDERR_FILENO) != 0;
    const std::chrono::steady_clock::time_point begin_ = std::chrono::steady_clock::now();
    std::size_t done_ = 0;
    std::size_t bad_ = 0;
};

int sweep_roads(const Options& options, const std::string& program) {
    std::vector<PreparedRoad> prepared;
    for (const Road& road : roads())
        prepared.push_back(prepare(road));
    const std::vector<Case> cases = choose(options, prepared);
    if (options.list) {
        for (const Case& one : cases)
            std::cout << one.name() << "\n";
        return 0;
    }
    Progress progress(program, cases.size());
    run_side_by_side(
        cases.size(), {options.jobs, seconds_of_a_process},
        [&](std::size_t index) { return run_case(cases[index]); },
        [&](std::size_t index, const std::string& complaint) {
            progress.ended(cases[index].name(), complaint);
        });
    return progress.close();
}

int soak_alone(unsigned long rounds) {
    std::string told, wrong;
    {
        const Quiet quiet;
        wrong = soak(rounds, told);
    }
    std::cout << (wrong.empty() ? told : "bad: " + wrong) << "\n";
    return wrong.empty() ? 0 : 1;
}

} // namespace

// Each run begins with a copy of this process, which is the quicker made the less memory it has.
extern "C" const char* __asan_default_options() {
    return "malloc_context_size=2:quarantine_size_mb=4:detect_leaks=0";
}

int main(int, char** arguments) {
    try {
        const Options options = parse(arguments);
        return options.soak != 0 ? soak_alone(options.soak) : sweep_roads(options, arguments[0]);
    } catch (const std::exception& error) {
        std::cerr << "trk_sweep: " << error.what() << "\n";
        return 2;
    }
}
