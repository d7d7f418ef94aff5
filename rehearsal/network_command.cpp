// The sub-command trk network: its options and its help.
#include "rehearsal/commands.h"
#include "rehearsal/network.h"

#include <CLI/CLI.hpp>

#include <memory>

namespace rehearsal {
namespace {

constexpr char network_footer[] =
    R"(The list is JSON: {"printers": [{"model": "Label_100_Series", "name": "Shelf A"}, ...]}, with these keys:
model, name, location, delay (milliseconds), empty (true: nothing to offer), and in place of all these
replies, a list of {"attributes": TEXT} or {"hex": DIGITS}, each with "times", sent as they are.

The printers have 10.77.0.11, 10.77.0.12, ... in a network namespace of their own; the command has
10.77.0.2 in another one (TRK_PROGRAM_ADDRESS). Where namespaces aren't permitted all are on loopback.
Printers, namespaces and what the command leaves running end with it.

Exit status: that of the command; 126 or 127 when it can't be started; 2 wrong usage, an unreadable list,
or printers that can't be set up.

Example; its adapter is {"addresses": ["10.77.0.2"], "network": "real"}:
  trk network --printers samples/printers.json -- trk rehearse --machine real.json samples/medium)";

} // namespace

void add_network(CLI::App& app, int& status) {
    const auto kept = std::make_shared<NetworkOptions>();
    CLI::App* const command =
        app.add_subcommand("network", "Run a command on a network of label printers, which ends with it");
    command->add_option("--printers", kept->printers, "The list of the printers (JSON)")
        ->required()
        ->check(CLI::ExistingFile)
        ->type_name("FILE");
    command->add_option("command", kept->command, "The command and its arguments, behind --")
        ->required()
        ->type_name("");
    command->footer(network_footer);
    command->callback([kept, &status] { status = run_network(*kept); });
}

} // namespace rehearsal
