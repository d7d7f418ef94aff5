// The sub-command trk log: its options and its help.
#include "rehearsal/commands.h"
#include "rehearsal/log/log.h"

#include <CLI/CLI.hpp>

#include <memory>

namespace rehearsal {
namespace {

constexpr char log_footer[] =
    R"(Tells for each run what was installed from where, the printers found, every step that failed with the
system's error by name and number, what to do about it, what stayed on the machine, and a verdict.

Exit status: 0 all runs ended well; 1 a run failed, or something is missing behind its success box;
2 wrong usage, or no install log.

Examples:
  trk log trk_install.log
  unzip -p case4711.zip trk_install.log | trk log --code-page 932 --last --explain -)";

} // namespace

void add_log(CLI::App& app, int& status) {
    const auto kept = std::make_shared<LogOptions>();
    LogOptions& options = *kept;
    CLI::App* const command = app.add_subcommand("log", "Read an install log as a customer sends it");
    CLI::Option* const file = command->add_option("file", options.file, "The log; - for standard input");
    command->add_option("--code-page", options.code_page, "The ANSI code page of the machine that wrote it")
        ->capture_default_str();
    command->add_flag("--last", options.last, "The last run alone");
    command->add_flag("--explain", options.explain, "Each line with its meaning beside it");
    command->add_flag("--json", options.json, "For other programs");
    command->add_option("--html", options.html, "The reading as a page to look at")->type_name("FILE");
    command->add_flag("--lines", options.lines, "All lines that the program can write, as Markdown")
        ->excludes(file);
    command->footer(log_footer);
    command->callback([kept, &status] {
        if (kept->file.empty() && !kept->lines)
            throw CLI::RequiredError("file");
        status = read_install_log(*kept);
    });
}

} // namespace rehearsal
