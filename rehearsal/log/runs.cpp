#include "rehearsal/log/runs.h"

#include "rehearsal/log/log_text.h"
#include "rehearsal/log/run_reader.h"

#include <iterator>

namespace rehearsal::logs {
namespace {

// Without a banner, a text is an install log when at least so many lines are the program's, and half of them.
constexpr std::size_t fewest_lines = 3;

bool is_banner(std::string_view text) {
    Fields fields;
    const Line* line = find_line(text, true, fields);
    return line != nullptr && line->role == Role::banner;
}

bool is_part_of_a_run(const RunReader& reader, std::size_t texts) {
    return reader.recognised() >= fewest_lines && reader.recognised() * 2 >= texts;
}

// What the last line was going to say isn't known; without its end alone it may still be whole.
void doubt_cut_run(Run& run) {
    if (!is_good(run.verdict) || run.lines.empty() || run.lines.back().known != nullptr)
        return;
    run.verdict = Verdict::unfinished;
    run.reason = "The log ends in the middle of a line.";
}

} // namespace

Reading read_log(std::string_view text) {
    Reading reading;
    const std::vector<std::string_view> texts = split_log(text, reading.cut);
    RunReader reader;
    bool begun = false;
    std::size_t taken = 0;
    const auto close = [&] {
        if (begun || is_part_of_a_run(reader, taken))
            reading.runs.push_back(reader.finish());
        reader = RunReader();
        taken = 0;
    };
    for (std::size_t i = 0; i < texts.size(); ++i) {
        if (is_banner(texts[i])) {
            close();
            begun = true;
        }
        taken += texts[i].find_first_not_of(" \t") != std::string_view::npos;
        reader.take(i + 1, texts[i]);
    }
    close();
    if (reading.cut && !reading.runs.empty())
        doubt_cut_run(reading.runs.back());
    return reading;
}

bool is_good(Verdict verdict) {
    return verdict == Verdict::installed || verdict == Verdict::left;
}

const char* verdict_name(Verdict verdict) {
    switch (verdict) {
    case Verdict::installed:
        return "installed";
    case Verdict::left:
        return "nothing installed";
    case Verdict::incomplete:
        return "not complete";
    case Verdict::failed:
        return "failed";
    case Verdict::blocked:
        return "blocked";
    case Verdict::unfinished:
        return "unfinished";
    }
    return "";
}

std::string state_text(const Run& run) {
    switch (run.state) {
    case 'A':
        return "A: the driver is installed in this version; only the network is offered";
    case 'B':
        return "B: the driver is installed in this version; it has no USB, so the network list comes at once";
    case 'C':
        return "C: the driver is installed in version " + run.installed_version + "; only Cancel is offered";
    case 'D':
        return "D: the driver isn't installed; USB and network are offered";
    case 'E':
        return "E: the driver isn't installed; it has no USB, so the network list comes at once";
    default:
        return "";
    }
}

std::string language_text(const Run& run) {
    static constexpr const char* names[] = {
        "English", "English (United Kingdom)", "French", "German", "Chinese", "Spanish", "Japanese"};
    if (run.language < 0)
        return "";
    const auto index = static_cast<std::size_t>(run.language);
    const std::string name =
        index < std::size(names) ? names[index] : "index " + std::to_string(run.language);
    return name + (run.language_from_setting ? ", by settings.inf" : ", as the system has it");
}

} // namespace rehearsal::logs
