// How trk ends, as exit status of every sub-command.
#pragma once

namespace rehearsal {

enum ExitStatus {
    ended_well = 0,   // no failure box, and nothing failed behind a success box
    ended_badly = 1,  // a failure box, a failure in the log, or a script that couldn't be followed
    wrong_usage = 2,  // or an unreadable file
    layer_refused = 3 // the program asked for something that the layer doesn't model
};

} // namespace rehearsal
