// A driver package as its INF describes it: which printer drivers it holds for an environment, their version,
// and the files that belong to them.
#pragma once

#include "machine/inf_text.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace platform {

struct PackageModel {
    std::u16string driver_name;
    std::u16string install_section;
    std::u16string hardware_id; // may be empty
    TextPlace place;            // of the entry
    TextPlace section_place;    // of the install section's name in it
};

struct PackageFile {
    std::u16string path;   // below the INF's folder, with backslashes
    bool optional = false; // may come with the system instead
    TextPlace place;       // of the name in the list that asks for it first
};

struct InfPackage {
    std::uint64_t version = 0; // four 16-bit fields, major on top
    std::vector<PackageModel> models;
    std::vector<PackageFile> files; // each once, without the INF
    InfFault fault;                 // when the package is refused
};

// `environment` is a spooler environment's name. Models in sections without a platform count for every
// environment as long as the manufacturer's entry names no platforms. A version of the system behind a
// platform isn't looked at. 0, or the fault's code.
std::uint32_t read_inf_package(std::u16string_view text, std::u16string_view environment,
                               InfPackage& package);

} // namespace platform
