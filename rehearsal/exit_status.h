// How trk ends, as exit status of every sub-command.
#pragma once

namespace rehearsal {

enum ExitStatus {
    ended_well = 0,   // nothing failed, and the machine has what the user asked for
    ended_badly = 1,  // something failed or is missing, or a script couldn't be followed to its end
    wrong_usage = 2,  // or an unreadable file
    layer_refused = 3 // the program asked for something that the layer doesn't model
};

} // namespace rehearsal
