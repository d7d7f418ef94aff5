// Machines to rehearse with that come with the tool, by name.
#pragma once

#include "machine/machine.h"

#include <filesystem>
#include <string>
#include <vector>

namespace rehearsal {

struct Profile {
    std::string name;
    std::string what; // a line: the machine, and what a network install on it comes to
};

// In the order in which they are told.
std::vector<Profile> profiles();

// The machine of the profile. Where it has the medium's driver in some version, or a printer of its model,
// these are what the setup finds on the medium; on one without a driver they are made up. Throws
// std::runtime_error when there is no profile of that name, with those that may have been meant.
platform::Machine profile_machine(const std::string& name, const std::filesystem::path& medium);

} // namespace rehearsal
