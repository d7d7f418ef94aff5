// trk network: a command among label printers, on a network that ends with it.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace rehearsal {

struct NetworkOptions {
    std::filesystem::path printers; // their list
    std::vector<std::string> command;
};

// The command finds in its environment TRK_NETWORK, "namespaces" or "loopback", and TRK_PROGRAM_ADDRESS, the
// address to search from. The printers have 10.77.0.11 or 127.0.0.11 and the numbers behind it; they end with
// the command, as does every process that it leaves behind. What they told comes on standard error in the
// end. The command's exit status, 128 and the signal's number when one ended it, 126 or 127 when it can't be
// started; wrong_usage, with the reason told, when the printers can't be set up.
int run_network(const NetworkOptions& options);

} // namespace rehearsal
