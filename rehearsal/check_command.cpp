// The sub-command trk check: its options and its help.
#include "rehearsal/check/check.h"
#include "rehearsal/commands.h"
#include "rehearsal/exit_status.h"

#include <CLI/CLI.hpp>

#include <iostream>
#include <memory>

namespace rehearsal {
namespace {

constexpr char check_footer[] = R"(Each finding has a place, an id and a remedy:
  Drivers/lbl.inf:12:1: error: ... [inf-class]
An error makes an installation fail or leaves something out of it; a warning is about what works
only here or only for now; "unjudged" is what only Windows itself can tell.

Exit status: 0 no errors; 1 errors; 2 wrong usage or an unreadable file.

Example:
  trk check samples/medium
  trk check --explain inf-class
  trk check --format sarif --ignore files-empty samples/medium > findings.sarif)";

} // namespace

void add_check(CLI::App& app, int& status) {
    const auto kept = std::make_shared<check::CheckOptions>();
    check::CheckOptions& options = *kept;
    CLI::App* const command = app.add_subcommand("check", "Tell what is wrong with a distribution folder");
    CLI::Option* const medium = command->add_option("medium", options.medium, "The distribution folder")
                                    ->check(CLI::ExistingDirectory);
    command->add_option("--explain", options.explain, "Say more about the finding of this id, or about all")
        ->excludes(medium)
        ->type_name("ID");
    command->add_option("--format", options.format, "How findings are written")
        ->check(CLI::IsMember({"text", "json", "sarif", "junit"}))
        ->capture_default_str();
    command->add_option("--only", options.only, "Look for these findings alone")
        ->type_name("ID,...")
        ->delimiter(',')
        ->allow_extra_args(false);
    command->add_option("--ignore", options.ignore, "Leave these findings out")
        ->type_name("ID,...")
        ->delimiter(',')
        ->allow_extra_args(false);
    command->add_option("--html", options.html, "The findings beside their lines as a page to look at")
        ->type_name("FILE");
    command->add_flag("--strict", options.strict, "Warnings are errors");
    command->add_flag("--brief", options.brief, "One line for each finding, without its remedy");
    command->footer(check_footer);
    command->callback([kept, &status] {
        if (kept->medium.empty() && kept->explain.empty()) {
            std::cerr << "trk: a distribution folder or --explain is needed; see trk check --help\n";
            status = wrong_usage;
            return;
        }
        status = check::run_check(*kept);
    });
}

} // namespace rehearsal
