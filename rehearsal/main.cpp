// trk: rehearses the setup program without Windows.
#include "rehearsal/commands.h"
#include "rehearsal/exit_status.h"
#include "rehearsal/unknown_words.h"

#include <CLI/CLI.hpp>

#include <iostream>

namespace {

constexpr char version[] = "trk 0.0.0.36";

constexpr char footer[] = R"(Each subcommand has a --help of its own, with an example. A first one:
  trk rehearse samples/medium)";

// The parser tells a mistyped word as one that wasn't expected, or asks for the right one.
std::string unknown_word(const CLI::App& app, int argc, char** argv) {
    rehearsal::KnownWords known;
    for (const CLI::App* command : app.get_subcommands([](const CLI::App*) { return true; }))
        for (const CLI::Option* option : command->get_options())
            for (const std::string& name : option->get_lnames())
                known[command->get_name()].push_back("--" + name);
    return rehearsal::describe_unknown_word({argv + 1, argv + argc}, known);
}

} // namespace

int main(int argc, char** argv) {
    CLI::App app{"Rehearses the setup program of the label printers without Windows"};
    app.set_version_flag("--version", version);
    app.require_subcommand(1);
    app.footer(footer);
    int status = rehearsal::ended_well;
    rehearsal::add_rehearse(app, status);
    rehearsal::add_profiles(app, status);
    rehearsal::add_remove(app, status);
    rehearsal::add_printer(app, status);
    rehearsal::add_network(app, status);
    rehearsal::add_log(app, status);
    rehearsal::add_new(app, status);
    rehearsal::add_facts(app, status);
    rehearsal::add_check(app, status);
    rehearsal::add_matrix(app, status);
    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& error) {
        const std::string unknown = error.get_exit_code() != 0 ? unknown_word(app, argc, argv) : "";
        if (!unknown.empty()) {
            std::cerr << "trk: " << unknown << "\n";
            return rehearsal::wrong_usage;
        }
        return app.exit(error) == 0 ? rehearsal::ended_well : rehearsal::wrong_usage;
    }
    return status;
}
