// What the machine holds after a run, for people.
#pragma once

#include "calls/shell/link_reader.h"
#include "rehearsal/outcome.h"

#include <map>
#include <ostream>

namespace rehearsal {

// Driver, ports, queues with their label sizes, the default printer, files and shortcuts: what the run made.
void print_machine(std::ostream& out, const Outcome& outcome, const std::filesystem::path& drive_c);

// "1.2.3.4"
std::string version_text(std::uint64_t version);

// One shortcut by its path on drive C; empty when it can't be read.
platform::LinkFile read_shortcut(const Outcome& outcome, const std::filesystem::path& drive_c,
                                 const std::string& path);

// The shortcuts that the run made, read back from their files; one that can't be read is left empty.
std::map<std::string, platform::LinkFile> read_shortcuts(const Outcome& outcome,
                                                         const std::filesystem::path& drive_c);

} // namespace rehearsal
