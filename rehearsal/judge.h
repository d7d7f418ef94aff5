// The judgement over a rehearsed run: what the user asked for and the program claimed, held against what the
// machine then has, and what failed on the way.
#pragma once

#include "rehearsal/outcome.h"

#include <filesystem>
#include <ostream>
#include <string>
#include <vector>

namespace rehearsal {

struct Verdict {
    int status = 0;                      // an ExitStatus
    std::string line;                    // "OK: ..." or "FAIL: ...", without a line end
    std::vector<std::string> missing;    // what should be there and isn't; after a removal what stayed
    std::vector<std::string> complaints; // all else that failed, in the order in which it did
};

// An install: behind the box that tells of success there are, on every road, the driver, the files, the
// folder and both shortcuts, and on the network road a queue with the driver on a port with the address, with
// a label size for each good row of the medium's table, the default one if the user ticked the box. `drive_c`
// holds the files of outcome.files_after. A run that installed nothing is judged by its complaints alone.
Verdict judge_install(const Outcome& outcome, const std::filesystem::path& medium,
                      const std::filesystem::path& drive_c);

// What a removal was to take away.
struct Removal {
    std::u16string model;
    std::u16string driver;         // empty: the installation doesn't tell
    std::u16string inf_name;       // of the driver package; likewise
    std::u16string install_folder; // without a backslash at its end
};

// A removal: the driver's queues, the ports that they alone stood on, the package, the Start-menu group and
// the program folder are gone.
Verdict judge_removal(const Outcome& outcome, const Removal& removal);

// Closes a run: the line goes to `out`; what there is to complain about goes to standard error, each on a
// line of its own.
void tell_verdict(const Verdict& verdict, std::ostream& out);

} // namespace rehearsal
