// trk log: reads an install log as a customer sends it.
#pragma once

#include <cstdint>
#include <filesystem>
#include <string>

namespace rehearsal {

struct LogOptions {
    std::string file; // "-" for standard input
    std::uint32_t code_page = 1252;
    bool last = false; // the last run alone
    bool explain = false;
    bool json = false;
    std::filesystem::path html; // file of the reading as a page; empty for none
    bool lines = false;         // no file: the table of all lines
};

// The exit status: ended_well when all runs shown are good, ended_badly when one isn't, wrong_usage without a
// log.
int read_install_log(const LogOptions& options);

} // namespace rehearsal
