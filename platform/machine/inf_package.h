// A driver package as its INF describes it: which printer drivers it holds for a system, their version, and
// the files that belong to them. The rules are those that the platform publishes for INF files.
#pragma once

#include "machine/inf_target.h"
#include "machine/inf_text.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace platform {

struct PackageModel {
    std::u16string driver_name;
    std::u16string install_section;
    std::u16string hardware_id;    // may be empty
    TextPlace place;               // of the entry
    TextPlace section_place;       // of the install section's name in it
    std::uint64_t version = 0;     // DriverVer of the install section, else of [Version]
    std::u16string actual_section; // the install section with the decoration that is taken
};

struct PackageFile {
    std::u16string path;   // below the INF's folder, with backslashes
    bool optional = false; // may come with the system instead
    TextPlace place;       // of the name in the list that asks for it first
    // What may stand in for it, each below the INF's folder as well: the compressed file `name.dl_`, the
    // cabinet of its disk. Nobody looks into them.
    std::vector<std::u16string> stand_ins;
    bool catalogue = false; // named by [Version], not by a list of files
};

struct InfPackage {
    std::uint64_t version = 0; // of [Version]; four 16-bit fields, major on top
    std::vector<PackageModel> models;
    std::vector<PackageFile> files; // each once, without the INF
    InfFault fault;                 // when the package is refused
};

// `environment` is a spooler environment's name. Of each manufacturer's models sections the closest one alone
// counts, even when it is empty; one without a decoration stands for x86. No models at all are no fault. What
// a CopyFiles list names has to be in [SourceDisksFiles], unless it is one of the system's own driver files
// and the INF refers to the system's lists by Include or LayoutFile. 0, or the fault's code.
std::uint32_t read_inf_package(std::u16string_view text, std::u16string_view environment, InfPackage& package,
                               const InfSystem& system = {});

} // namespace platform
