// What two states of a machine differ in, its drive included.
#pragma once

#include "machine/machine.h"
#include "rehearsal/drive_files.h"

#include <string>
#include <vector>

namespace rehearsal {

struct MachineState {
    platform::Machine machine;
    DriveFiles files;
};

// A line for each thing that came ("+"), went ("-") or changed ("*"), in a fixed order: drivers, packages of
// the driver store, monitors, ports, queues, the default printer, folders and files.
std::vector<std::string> difference(const MachineState& before, const MachineState& after);

} // namespace rehearsal
