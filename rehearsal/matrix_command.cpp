// The sub-command trk matrix: its options and its help.
#include "rehearsal/commands.h"
#include "rehearsal/matrix/matrix.h"

#include <CLI/CLI.hpp>

#include <memory>

namespace rehearsal {
namespace {

constexpr char matrix_footer[] =
    R"(A run's name tells what it rehearses: language/system/Windows/starting state/road, such as
de/x64/current/D/network; with a failing call that stands behind it. Roads: network, two (printers),
typed (address), none (found), usb, and leave where nothing else can be done. A driver with USB has the
starting states A (same version installed), C (another one) and D (none); one without has B, C and E.

Exit status: 0 every run without a failing call ended well; 1 one didn't; 2 wrong usage or an
unreadable file.

Example:
  trk matrix samples/medium
  trk matrix --only 'de/x64/*/D' --faults some samples/medium
  trk matrix --shard 3/8 --format json samples/medium > shard3.json
  trk matrix --merge shard1.json --merge shard2.json --format junit)";

} // namespace

void add_matrix(CLI::App& app, int& status) {
    const auto kept = std::make_shared<matrix::MatrixOptions>();
    matrix::MatrixOptions& options = *kept;
    CLI::App* const command =
        app.add_subcommand("matrix", "Rehearse all that a release of a distribution folder has to survive");
    CLI::Option* const medium = command->add_option("medium", options.medium, "The distribution folder")
                                    ->check(CLI::ExistingDirectory);
    command->add_option("--faults", options.faults, "Further runs with one failing call each")
        ->check(CLI::IsMember({"none", "some", "all"}))
        ->capture_default_str();
    command->add_option("--format", options.format, "How results are written")
        ->check(CLI::IsMember({"text", "json", "junit", "html"}))
        ->capture_default_str();
    command->add_option("--only", options.only, "The runs whose names begin so, '*' for any text")
        ->type_name("NAME,...")
        ->delimiter(',')
        ->allow_extra_args(false);
    command->add_option("--shard", options.shard, "One part of the runs, for one of several computers")
        ->type_name("N/COUNT");
    CLI::Option* const merge =
        command->add_option("--merge", options.merge, "Read the results of these files in place of running")
            ->type_name("FILE")
            ->check(CLI::ExistingFile)
            ->allow_extra_args(false);
    command->add_option("--time", options.time, "Begin no run after so many seconds");
    command->add_option("--jobs", options.jobs, "How many runs side by side; 0: one for each processor");
    command->add_flag("--list", options.list, "The names alone");
    command->footer(matrix_footer);
    command->callback([kept, medium, merge, &status] {
        if (medium->empty() == merge->empty())
            throw CLI::RequiredError("either the distribution folder or --merge");
        status = matrix::run_matrix(*kept);
    });
}

} // namespace rehearsal
