// The sub-command trk matrix: its options and its help.
#include "rehearsal/commands.h"
#include "rehearsal/matrix/matrix.h"

#include <CLI/CLI.hpp>

#include <memory>

namespace rehearsal {
namespace {

constexpr char matrix_footer[] =
    R"(A run is called language/system/Windows/state/road, such as de/x64/current/D/network, and /CALL behind it
where that call fails. There are 7 languages (en-US, en-GB, fr, de, es, zh, ja), x86 and x64, vista, 7 and current
(what each later Windows shows to a program), and the states and roads that the medium's driver can come to:
A the same version is installed, C another one, D none; without USB B, C and E. Roads: network (a printer is
found), two (the second is chosen), typed (an address), none (none is found), usb (in D), leave (in C).

--faults takes each of these runs that ended well once more for each call, which fails at its first coming: with all
each call that could have failed in that run, with some these, where they come:
AddPrinterW, CopyFileW, CreateDirectoryW, EnumPrinterDriversW, IPersistFile::Save,
InstallPrinterDriverFromPackageW, OpenPrinterW, SetDefaultPrinterW, SetPrinterDataExA,
UploadPrinterDriverPackageW, XcvDataW, socket.
A silent failure is a box of success with something missing on the machine; those come first.

Exit status: 0 every run without a failing call ended well; 1 one didn't, or something wasn't run; 2 wrong usage or
an unreadable file; 128 and the signal's number when one ended it.

Example:
  trk matrix samples/medium
  trk matrix --only 'de/x64/*/D' --faults some --html matrix.html samples/medium
  trk matrix --only 'ja/x86/7/D/network/*Printer*' samples/medium
  trk matrix --shard 3/8 --faults all --format json samples/medium > shard3.json
  trk matrix --merge shard*.json --format junit)";

} // namespace

void add_matrix(CLI::App& app, int& status) {
    const auto kept = std::make_shared<matrix::MatrixOptions>();
    matrix::MatrixOptions& options = *kept;
    CLI::App* const command =
        app.add_subcommand("matrix", "Rehearse all that a release has to survive, in one table");
    CLI::Option* const medium = command->add_option("medium", options.medium, "The distribution folder")
                                    ->check(CLI::ExistingDirectory);
    command->add_option("--faults", options.faults, "Further runs with one failing call each")
        ->check(CLI::IsMember({"none", "some", "all"}))
        ->capture_default_str();
    CLI::Option* const only =
        command
            ->add_option("--only", options.only, "The runs whose names begin so, '*' for any text in a part")
            ->type_name("NAME,...")
            ->delimiter(',')
            ->allow_extra_args(false);
    command->add_option("--format", options.format, "How results are written")
        ->check(CLI::IsMember({"text", "json", "junit", "html"}))
        ->capture_default_str();
    command->add_option("--html", options.html, "The results as a page to look at, with filters")
        ->type_name("FILE");
    command->add_option("--shard", options.shard, "One part of the runs, for one of several computers")
        ->type_name("N/COUNT");
    CLI::Option* const merge =
        command
            ->add_option("--merge", options.merge, "Tell of these JSON results as one, in place of running")
            ->type_name("FILES...")
            ->check(CLI::ExistingFile);
    command->add_option("--time", options.time, "Begin no run after so many seconds")->type_name("SECONDS");
    command->add_option("--jobs", options.jobs, "How many runs side by side; 0: one for each processor")
        ->check(CLI::Range(0, 1024))
        ->capture_default_str();
    command
        ->add_option("--write", options.write,
                     "One run's machine and script into this folder, for trk rehearse")
        ->type_name("FOLDER")
        ->needs(only)
        ->excludes(merge);
    command->footer(matrix_footer);
    command->callback([kept, medium, merge, &status] {
        if (medium->empty() == merge->empty())
            throw CLI::RequiredError("either the distribution folder or --merge");
        status = matrix::run_matrix(*kept);
    });
}

} // namespace rehearsal
