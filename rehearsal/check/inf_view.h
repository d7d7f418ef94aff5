// The driver's INF as its two readers see it: the setup, which looks for exact texts one behind the other,
// and the system, which reads the INF language.
#pragma once

#include "machine/inf_package.h"
#include "machine/inf_text.h"
#include "rehearsal/check/medium.h"

#include <array>
#include <cstdint>
#include <string>
#include <vector>

namespace rehearsal::check {

// What the setup's reader takes from one file. Texts are the file's bytes.
struct SetupReading {
    bool accepted = false;
    std::string driver_name;
    std::string models_section; // as far as the reader came
    std::string model;
    std::uint64_t version = 0;
    bool has_usb = false;
    std::string log; // the reader's own account, by which is known where it stopped
};

enum Environment { x86, amd64, arm64, environment_count };
const char* name_of(Environment environment); // "x86", ...

struct DriverInf {
    const MediumEntry* entry = nullptr; // a folder has no readings
    bool by_short_name = false;         // "*.inf" finds it by its short name alone, like a backup "x.inf_old"
    SetupReading setup;
    std::u16string text;   // as the system decodes it under code page 1252
    platform::InfText inf; // empty when it can't be parsed
    bool parsed = false;
    std::array<platform::InfPackage, environment_count> packages; // each with its fault
};

struct DriverInfs {
    std::vector<DriverInf>
        files; // those that the setup's search finds, in the order in which it delivers them
};

// Read once for a medium.
// The first that its reader accepts, which the setup takes; null when there is none.
const DriverInf* taken_inf(const DriverInfs& infs);

const DriverInfs& driver_infs(const Medium& medium);

std::string shown_version(std::uint64_t version); // "1.2.3.4"

// A place of the system's reader in the file.
Place place_in(const DriverInf& inf, const platform::TextPlace& place);

// The file's bytes as text of the ANSI code page.
std::u16string in_code_page(const Medium& medium, std::string_view bytes, std::uint32_t code_page);

} // namespace rehearsal::check
