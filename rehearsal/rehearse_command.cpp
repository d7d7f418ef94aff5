// The sub-command trk rehearse: its options and its help.
#include "rehearsal/action_script.h"
#include "rehearsal/commands.h"
#include "rehearsal/rehearse.h"

#include <CLI/CLI.hpp>

#include <memory>

namespace rehearsal {
namespace {

constexpr char rehearse_footer[] =
    R"(

A line "OK: ..." or "FAIL: ..." closes the run. Machine, drive and report are kept as a whole or not at all.

Exit status: 0 the run ended well; 1 something failed or is missing, or a script couldn't be followed to its
end; 2 wrong usage, or a file that can't be read or written; 3 the program asked for what the layer doesn't model.

Example:
  cp samples/machines/two_printers.json laptop.json
  trk rehearse --machine laptop.json --script samples/install.actions samples/medium
  trk rehearse --profile german --script samples/install.actions samples/medium)";

} // namespace

void add_rehearse(CLI::App& app, int& status) {
    const auto kept = std::make_shared<RehearseOptions>();
    RehearseOptions& options = *kept;
    CLI::App* const command =
        app.add_subcommand("rehearse", "Run the whole setup program against a simulated machine");
    command->add_option("medium", options.medium, "The distribution folder")
        ->required()
        ->check(CLI::ExistingDirectory);
    CLI::Option* const machine =
        command
            ->add_option("--machine", options.machine_file,
                         "The machine before and, rewritten, after (JSON); none: a fresh one that isn't kept")
            ->check(CLI::ExistingFile);
    command->add_option("--profile", options.profile, "A machine of trk profiles, which isn't kept")
        ->type_name("NAME")
        ->excludes(machine);
    command->add_option("--drive-c", options.drive_c, drive_c_help);
    CLI::Option* const script =
        command
            ->add_option(
                "--script", options.script,
                "The user's actions, one a line; none: a person at a terminal, else a user who leaves")
            ->check(CLI::ExistingFile);
    command
        ->add_option("--record", options.record,
                     "What a person does, as a script; without a terminal it is read from standard input")
        ->type_name("FILE")
        ->excludes(script);
    command->add_option("--command-line", options.command_line, "What the program gets as arguments");
    command->add_option("--report", options.report,
                        "The outcome as JSON, to a file or to standard output with -");
    command->add_option("--html", options.html, "The run as a page to look at")->type_name("FILE");
    command->add_flag("--quiet", options.quiet, "No running commentary");
    command->footer(std::string("What a script or a person can do:\n  ") + action_help + rehearse_footer);
    command->callback([kept, &status] { status = rehearse(*kept); });
}

} // namespace rehearsal
