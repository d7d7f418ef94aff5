// trk: rehearses the setup program without Windows.
#include "rehearsal/commands.h"
#include "rehearsal/exit_status.h"

#include <CLI/CLI.hpp>

namespace {

constexpr char version[] = "trk 0.0.0.36";

constexpr char footer[] = R"(Each subcommand has a --help of its own, with an example. A first one:
  trk rehearse samples/medium)";

} // namespace

int main(int argc, char** argv) {
    CLI::App app{"Rehearses the setup program of the label printers without Windows"};
    app.set_version_flag("--version", version);
    app.require_subcommand(1);
    app.footer(footer);
    int status = rehearsal::ended_well;
    rehearsal::add_rehearse(app, status);
    rehearsal::add_remove(app, status);
    rehearsal::add_printer(app, status);
    rehearsal::add_log(app, status);
    rehearsal::add_new(app, status);
    rehearsal::add_facts(app, status);
    rehearsal::add_check(app, status);
    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& error) {
        return app.exit(error) == 0 ? rehearsal::ended_well : rehearsal::wrong_usage;
    }
    return status;
}
