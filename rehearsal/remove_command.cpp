// The sub-command trk remove: its options and its help.
#include "rehearsal/commands.h"
#include "rehearsal/remove.h"

#include <CLI/CLI.hpp>

#include <memory>

namespace rehearsal {
namespace {

constexpr char remove_footer[] =
    R"(The remover is made of the library's operations alone: it lists the driver's queues, deletes them
with their ports, and removes group, driver package and program folder.

Exit status: 0 all is gone; 1 something stayed, or there was nothing to remove; 2 wrong usage or an
unreadable file; 3 the remover asked for what the layer doesn't model.

Example; fresh.json is a copy of laptop.json from before the first rehearsal:
  trk remove --machine laptop.json --before fresh.json)";

} // namespace

void add_remove(CLI::App& app, int& status) {
    const auto kept = std::make_shared<RemoveOptions>();
    RemoveOptions& options = *kept;
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
    command->callback([kept, &status] { status = remove(*kept); });
}

} // namespace rehearsal
