// The sub-command trk printer: its options and its help.
#include "rehearsal/commands.h"
#include "rehearsal/printer_run.h"

#include <CLI/CLI.hpp>

#include <memory>

namespace rehearsal {
namespace {

constexpr char printer_footer[] =
    R"(The first line of the output begins with "ready". Exit status: 0 when the printer served until a
limit or a signal; 2 when it couldn't be set up.

Example, on loopback (port 427 needs root's rights):
  trk printer --address 127.0.0.11 --model Label_100_Series --name "Shelf A")";

} // namespace

void add_printer(CLI::App& app, int& status) {
    const auto kept = std::make_shared<PrinterOptions>();
    PrinterOptions& options = *kept;
    CLI::App* const command =
        app.add_subcommand("printer", "Be a label printer that answers searches and takes jobs");
    command->add_option("--address", options.address, "The printer's IPv4 address")->capture_default_str();
    command->add_option("--model", options.model, "The model in the printer's device id")
        ->capture_default_str();
    command->add_option("--name", options.name, "The printer's name")->capture_default_str();
    command->add_option("--location", options.location, "Where the printer stands");
    command->add_flag("--empty", options.empty, "Be an agent that answers, but has nothing to offer");
    command->add_option("--slp-port", options.discovery_port, "UDP port of searches, 0 for a free one")
        ->capture_default_str();
    command->add_option("--raw-port", options.raw_port, "TCP port of print data, 0 for a free one")
        ->capture_default_str();
    command->add_option("--save", options.save, "Folder to keep the jobs' bytes in")
        ->check(CLI::ExistingDirectory);
    command->add_option("--delay", options.delay, "Milliseconds before an answer goes out")
        ->check(CLI::Range(0u, 60000u));
    command->add_option("--count", options.count, "End after so many answered searches");
    command->add_option("--seconds", options.seconds, "End after so long without any event")
        ->capture_default_str()
        ->check(CLI::Range(1u, 86400u));
    command->footer(printer_footer);
    command->callback([kept, &status] { status = run_printer(*kept); });
}

} // namespace rehearsal
