// The sub-command trk profiles: its options and its help.
#include "machine/machine_json.h"
#include "rehearsal/commands.h"
#include "rehearsal/exit_status.h"
#include "rehearsal/own_output.h"
#include "rehearsal/profiles.h"
#include "rehearsal/shown_text.h"

#include <CLI/CLI.hpp>

#include <iomanip>
#include <iostream>
#include <memory>

namespace rehearsal {
namespace {

constexpr char profiles_footer[] =
    R"(What a line promises is what comes of samples/install.actions; with no-network, of specify_ip.actions.
With a name and a medium it writes the profile's machine file, for one's own changes.

Exit status: 0 told; 2 wrong usage, no such profile, or a medium that can't be read.

Example:
  trk profiles
  trk rehearse --profile driver-older samples/medium
  trk profiles port-taken samples/medium > laptop.json)";

struct ProfilesOptions {
    std::string name;
    std::filesystem::path medium;
};

int tell_profiles(const ProfilesOptions& options) {
    try {
        OwnOutput own;
        if (!options.name.empty())
            own.stream() << platform::machine_text(profile_machine(options.name, options.medium));
        else
            for (const Profile& profile : profiles())
                own.stream() << std::left << std::setw(22) << profile.name << profile.what << "\n";
        own.check();
        return ended_well;
    } catch (const std::exception& error) {
        std::cerr << "trk: " << shown_text(error.what()) << "\n";
        return wrong_usage;
    }
}

} // namespace

void add_profiles(CLI::App& app, int& status) {
    const auto kept = std::make_shared<ProfilesOptions>();
    CLI::App* const command =
        app.add_subcommand("profiles", "List the machines that come with trk, for rehearse --profile");
    CLI::Option* const name = command->add_option("name", kept->name, "Write the machine file of this one");
    CLI::Option* const medium =
        command->add_option("medium", kept->medium, "The distribution folder whose driver and model it has")
            ->check(CLI::ExistingDirectory);
    name->needs(medium);
    command->footer(profiles_footer);
    command->callback([kept, &status] { status = tell_profiles(*kept); });
}

} // namespace rehearsal
