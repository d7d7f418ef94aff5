// trk: rehearses the setup program without Windows.
#include "rehearsal/action_script.h"
#include "rehearsal/label_printer.h"
#include "rehearsal/rehearse.h"
#include "rehearsal/remove.h"

#include <CLI/CLI.hpp>

namespace {

constexpr char version[] = "trk 0.0.0.36";

constexpr char footer[] = R"(Each subcommand has a --help of its own, with an example. A first one:
  trk rehearse samples/medium)";

constexpr char drive_c_help[] =
    "The folder that is its drive C; none: the machine's file with .drive-c behind it";

constexpr char rehearse_footer[] =
    R"(

Exit status: 0 the run ended well; 1 a failure box, a failed step, or a script that couldn't
be followed; 2 wrong usage or an unreadable file; 3 the program asked for what the layer doesn't model.

Example:
  cp samples/machines/two_printers.json laptop.json
  trk rehearse --machine laptop.json --script samples/install.actions samples/medium)";

void add_rehearse(CLI::App& app, rehearsal::RehearseOptions& options) {
    CLI::App* const command =
        app.add_subcommand("rehearse", "Run the whole setup program against a simulated machine");
    command->add_option("medium", options.medium, "The distribution folder")
        ->required()
        ->check(CLI::ExistingDirectory);
    command
        ->add_option("--machine", options.machine_file,
                     "The machine before and, rewritten, after (JSON); none: a fresh one that isn't kept")
        ->check(CLI::ExistingFile);
    command->add_option("--drive-c", options.drive_c, drive_c_help);
    command
        ->add_option("--script", options.script,
                     "The user's actions, one a line; none: a person at a terminal, else a user who leaves")
        ->check(CLI::ExistingFile);
    command->add_option("--command-line", options.command_line, "What the program gets as arguments");
    command->add_option("--report", options.report,
                        "The outcome as JSON, to a file or to standard output with -");
    command->add_flag("--quiet", options.quiet, "No running commentary");
    command->footer(std::string("What a script or a person can do:\n  ") + rehearsal::action_help +
                    rehearse_footer);
}

constexpr char remove_footer[] =
    R"(The remover is made of the library's operations alone: it lists the driver's queues, deletes them
with their ports, and removes group, driver package and program folder.

Exit status: 0 all is gone; 1 something stayed, or there was nothing to remove; 2 wrong usage or an
unreadable file; 3 the remover asked for what the layer doesn't model.

Example; fresh.json is a copy of laptop.json from before the first rehearsal:
  trk remove --machine laptop.json --before fresh.json)";

void add_remove(CLI::App& app, rehearsal::RemoveOptions& options) {
    CLI::App* const command = app.add_subcommand("remove", "Take an installation off a simulated machine");
    command
        ->add_option("--machine", options.machine_file, "The machine that rehearsals left behind; rewritten")
        ->required()
        ->check(CLI::ExistingFile);
    command->add_option("--drive-c", options.drive_c, drive_c_help);
    command->add_option("--model", options.model,
                        "The model's name; without it the only one that is installed");
    command
        ->add_option("--before", options.before, "Tell the difference from this machine file and its drive")
        ->check(CLI::ExistingFile);
    command->add_flag("--quiet", options.quiet, "No running commentary");
    command->footer(remove_footer);
}

} // namespace

int main(int argc, char** argv) {
    CLI::App app{"Rehearses the setup program of the label printers without Windows"};
    app.set_version_flag("--version", version);
    app.require_subcommand(1);
    app.footer(footer);
    rehearsal::RehearseOptions rehearse_options;
    add_rehearse(app, rehearse_options);
    rehearsal::RemoveOptions remove_options;
    add_remove(app, remove_options);
    rehearsal::PrinterOptions printer_options;
    rehearsal::add_printer(app, printer_options);
    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& error) {
        const int code = app.exit(error);
        return code == 0 ? 0 : rehearsal::wrong_usage;
    }
    if (app.got_subcommand("rehearse"))
        return rehearsal::rehearse(rehearse_options);
    if (app.got_subcommand("remove"))
        return rehearsal::remove(remove_options);
    return rehearsal::run_printer(printer_options);
}
