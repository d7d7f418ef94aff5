#include "rehearsal/log/log.h"

#include "machine/whole_file.h"
#include "rehearsal/exit_status.h"
#include "rehearsal/log/log_text.h"
#include "rehearsal/log/log_views.h"
#include "rehearsal/output_file.h"
#include "rehearsal/pages/log_page.h"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <iostream>
#include <optional>

#include <unistd.h>

namespace rehearsal {
namespace {

int no_log(const std::string& file, const std::string& reason) {
    std::cerr << "trk: " << file << ": " << reason << "\n";
    return wrong_usage;
}

bool read_bytes(const std::string& file, std::string& bytes) {
    errno = 0;
    const std::optional<std::string> read = platform::read_whole_file(file == "-" ? "/dev/stdin" : file);
    bytes = read.value_or("");
    return read.has_value();
}

void print_runs(const logs::Reading& reading, std::size_t first, const LogOptions& options) {
    const char* no_colour = std::getenv("NO_COLOR");
    logs::ViewOptions view;
    view.explain = options.explain;
    view.colour = isatty(STDOUT_FILENO) != 0 && (no_colour == nullptr || *no_colour == 0);
    for (std::size_t i = first; i < reading.runs.size(); ++i)
        std::cout << (i == first ? "" : "\n")
                  << logs::draw_run(reading.runs[i], i + 1, reading.runs.size(), view);
    if (reading.cut)
        std::cout << "\nThe file ends in the middle of a line.\n";
}

bool write_page(const logs::Reading& reading, std::size_t first, const LogOptions& options) {
    try {
        write_file(options.html, pages::log_page(reading, first, options.file));
        return true;
    } catch (const std::exception& error) { // with its name and reason
        std::cerr << "trk: " << error.what() << "\n";
        return false;
    }
}

} // namespace

int read_install_log(const LogOptions& options) {
    if (options.lines) {
        std::cout << logs::lines_as_markdown() << "\n### the system's codes\n\n"
                  << logs::errors_as_markdown();
        return ended_well;
    }
    if (!logs::code_page_is_known(options.code_page))
        return no_log(options.file, "code page " + std::to_string(options.code_page) + " isn't known");
    std::string bytes;
    if (!read_bytes(options.file, bytes))
        return no_log(options.file, std::string("can't be read: ") + std::strerror(errno));
    logs::Reading reading = logs::read_log(logs::decode_log(bytes, options.code_page));
    if (reading.runs.empty())
        return no_log(options.file, "no install log: no line begins a run (\"Vorlane Installer\")");
    const std::size_t first = options.last ? reading.runs.size() - 1 : 0;
    const bool good =
        std::all_of(reading.runs.begin() + static_cast<std::ptrdiff_t>(first), reading.runs.end(),
                    [](const logs::Run& run) { return logs::is_good(run.verdict); });
    if (!options.html.empty() && !write_page(reading, first, options))
        return wrong_usage;
    if (options.json) {
        reading.runs.erase(reading.runs.begin(), reading.runs.begin() + static_cast<std::ptrdiff_t>(first));
        std::cout << logs::reading_as_json(reading, options.file, options.explain);
    } else {
        print_runs(reading, first, options);
    }
    return good ? ended_well : ended_badly;
}

} // namespace rehearsal
