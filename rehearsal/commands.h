// The sub-commands of trk. Each has a file of its own, which owns its options, its help and what is done for
// it: add_NAME enters all of it, and when the sub-command was given, its callback leaves the exit status in
// `status`.
#pragma once

namespace CLI {
class App;
}

namespace rehearsal {

void add_rehearse(CLI::App& app, int& status);
void add_remove(CLI::App& app, int& status);
void add_printer(CLI::App& app, int& status);
void add_network(CLI::App& app, int& status);
void add_log(CLI::App& app, int& status);
void add_new(CLI::App& app, int& status);
void add_facts(CLI::App& app, int& status);
void add_check(CLI::App& app, int& status);
void add_matrix(CLI::App& app, int& status);
void add_profiles(CLI::App& app, int& status);

// For the sub-commands that work on a machine file.
inline constexpr char drive_c_help[] =
    "The folder that is its drive C; none: the machine's file with .drive-c behind it";

} // namespace rehearsal
