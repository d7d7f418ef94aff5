// Which models section of a manufacturer a system takes: the TargetOSVersion decorations of [Manufacturer],
// by the published rules of INF files.
#pragma once

#include "machine/inf_text.h"

#include <cstdint>
#include <optional>
#include <string_view>

namespace platform {

// The system that a package is read for: a workstation of this version.
struct InfSystem {
    std::uint32_t major = 10;
    std::uint32_t minor = 0;
    std::uint32_t build = 19045;
    bool operator==(const InfSystem&) const = default;
};

// "NT[processor][.major[.minor[.product type[.suites[.build]]]]]"; what is missing or empty says nothing.
struct InfTarget {
    std::u16string_view processor;
    std::optional<std::uint32_t> major, minor, product_type, suites, build;
};

// False for a text of another form.
bool parse_inf_target(std::u16string_view text, InfTarget& target);

// `processor` is "x86", "amd64" or "arm64". A target without a processor stands for x86 alone. A build counts
// on a system of the very version that is named.
bool target_fits(const InfTarget& target, std::u16string_view processor, const InfSystem& system);

// Of a manufacturer's entry the target that is closest to the system, or null when none fits: the highest
// version, then build, product type and suites, then the one that names its processor.
const InfValue* closest_target(const InfLine& maker, std::u16string_view processor, const InfSystem& system);

} // namespace platform
