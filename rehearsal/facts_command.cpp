// The sub-command trk facts: its options and its help.
#include "rehearsal/commands.h"
#include "rehearsal/facts.h"

#include <CLI/CLI.hpp>

#include <memory>

namespace rehearsal {
namespace {

constexpr char facts_footer[] =
    R"(Driver and models are read by the setup's own reader; queue, port, folders, files and shortcuts are what a
whole installation leaves on a simulated machine. Folders that differ from machine to machine stand as the
system's variables; <address> is the printer's address.

Exit status: 0 all is told; 1 an installation from the medium fails, so that the driver alone is told;
2 wrong usage, or no driver on the medium.

Example:
  trk facts --json samples/medium)";

} // namespace

void add_facts(CLI::App& app, int& status) {
    const auto kept = std::make_shared<FactsOptions>();
    FactsOptions& options = *kept;
    CLI::App* const command = app.add_subcommand(
        "facts", "Tell what an installation is called and where it lies, for deployment rules");
    command->add_option("medium", options.medium, "The distribution folder")
        ->required()
        ->check(CLI::ExistingDirectory);
    command->add_flag("--json", options.json, "For other programs");
    command->footer(facts_footer);
    command->callback([kept, &status] { status = show_facts(*kept); });
}

} // namespace rehearsal
