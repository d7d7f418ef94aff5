// A driver package as its INF describes it: which printer drivers it holds for an environment, their version,
// and the files that belong to them.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace platform {

struct PackageModel {
    std::u16string driver_name;
    std::u16string install_section;
    std::u16string hardware_id; // may be empty
};

struct PackageFile {
    std::u16string path;   // below the INF's folder, with backslashes
    bool optional = false; // may come with the system instead
};

struct InfPackage {
    std::uint64_t version = 0; // four 16-bit fields, major on top
    std::vector<PackageModel> models;
    std::vector<PackageFile> files; // each once, without the INF
};

// The published results for a bad INF; 0 when it was read.
namespace inf_error {
constexpr std::uint32_t general_syntax = 0x800F0003;
constexpr std::uint32_t wrong_style = 0x800F0100; // no [Version] with a signature
constexpr std::uint32_t section_not_found = 0x800F0101;
constexpr std::uint32_t line_not_found = 0x800F0102;
constexpr std::uint32_t class_mismatch = 0x800F0201; // not of class Printer
} // namespace inf_error

// `environment` is a spooler environment's name. Models in sections without a platform count for every
// environment as long as the manufacturer's entry names no platforms. A version of the system behind a
// platform isn't looked at.
std::uint32_t read_inf_package(std::u16string_view text, std::u16string_view environment,
                               InfPackage& package);

} // namespace platform
