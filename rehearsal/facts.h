// trk facts: what an installation from a medium is called and where it lies, for whoever writes the rules by
// which a deployment system detects and removes it. The driver is read by the program's own reader; all else
// is what a whole installation left on a simulated machine.
#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

namespace rehearsal {

// All texts are UTF-8. Paths have the system's variables in place of the folders that differ from machine to
// machine.
struct ModelFact {
    std::string environment; // "Windows x64"
    std::string driver;
    std::string section;     // the install section, by which the setup searches printers
    std::string hardware_id; // empty when the INF gives none
    bool installed = false;  // the one that the setup installs
};

struct ShortcutFact {
    std::string file;
    std::string target;
};

struct MediumFacts {
    std::string driver;
    std::string version;
    std::string inf; // its file name
    std::string model;
    bool usb = false;
    std::vector<ModelFact> models;

    // From here on empty when no installation succeeds.
    std::string queue;
    std::string processor;
    std::string datatype;
    std::size_t label_sizes = 0;
    std::string port; // with <address> in place of the printer's
    std::string monitor;
    std::uint32_t tcp_port = 0;
    std::string package; // the INF in the driver store, with * where the system chooses
    std::vector<std::string> folders;
    std::vector<std::string> files;
    std::vector<ShortcutFact> shortcuts;
    std::string log;
    std::vector<std::string> failures; // why no installation succeeds
};

// std::runtime_error when the medium can't be read or the setup finds no driver on it.
MediumFacts collect_facts(const std::filesystem::path& medium);

std::string facts_as_text(const MediumFacts& facts);
std::string facts_as_json(const MediumFacts& facts);

struct FactsOptions {
    std::filesystem::path medium;
    bool json = false;
};

// The exit status: ended_badly when no installation from the medium succeeds.
int show_facts(const FactsOptions& options);

} // namespace rehearsal
