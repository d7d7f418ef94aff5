// The sub-command trk new: its options and its help.
#include "rehearsal/commands.h"
#include "rehearsal/new/new_medium.h"

#include <CLI/CLI.hpp>

#include <memory>

namespace rehearsal {
namespace {

constexpr char new_footer[] =
    R"(The folder must not exist, or be empty. What only its maker can supply, the driver's files, the catalogue and
the programs, is listed; the rest is written in the exact form that the setup reads, with comments where
its readers pass them over.

Exit status: 0 written; 2 wrong usage, or the folder can't be written.

Example:
  trk new label300 --model "Label 300" --driver "Label 300 Driver" --languages ENU DEU FRA)";

} // namespace

void add_new(CLI::App& app, int& status) {
    const auto kept = std::make_shared<skeleton::NewOptions>();
    skeleton::NewOptions& options = *kept;
    CLI::App* const command = app.add_subcommand("new", "Write the skeleton of a distribution folder");
    command->add_option("folder", options.folder, "The folder to be made")->required();
    command
        ->add_option("--model", options.model,
                     "The model's name for people: queue and folders bear it, printers answer with it")
        ->required();
    command->add_option("--driver", options.driver, "The driver's name, as the spooler will know it")
        ->required();
    command
        ->add_option(
            "--languages", options.languages,
            "ENU, ENG, FRA, DEU, CH, ES, JPN; none: all. license.txt, which is ENU's, is always written")
        ->delimiter(',');
    command->footer(new_footer);
    command->callback([kept, &status] { status = skeleton::new_medium(*kept); });
}

} // namespace rehearsal
