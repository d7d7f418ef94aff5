// The machine as a file: JSON with a key for each thing that the machine holds, described in
// docs/rehearsal.md. A key that is missing leaves what the default machine has; an unknown key, a wrong type
// or a value outside its range or one that no machine can have is an error.
#pragma once

#include "machine/machine.h"

#include <filesystem>
#include <stdexcept>
#include <string>
#include <string_view>

namespace platform {

// what() is "<file>:<line>:<column>: <reason>", or "<file>: <reason>" where there is no place to name.
struct MachineFileError : std::runtime_error {
    using std::runtime_error::runtime_error;
};

// The file's name is only for messages.
Machine parse_machine(std::string_view text, const std::string& file);
std::string machine_text(const Machine& machine);

Machine load_machine(const std::filesystem::path& file);
// Writes a new file beside the old one and renames it over it, so that the old one stays whole until then.
// What is saved loads as the very same machine.
void save_machine(const Machine& machine, const std::filesystem::path& file);

} // namespace platform
