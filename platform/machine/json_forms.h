// The forms that single things have in the machine file where they aren't plain numbers or texts. A wrapper
// holds what is read or written; the archives take it as they take a plain field.
#pragma once

#include "machine/json_fields.h"
#include "machine/machine.h"

#include <optional>

namespace platform {

// A driver's version, "1.2.3.4".
struct VersionText {
    std::uint64_t& version;
};

// An IPv4 address, "10.0.0.7".
struct DottedAddress {
    std::string& text;
};
struct DottedAddresses {
    std::vector<std::string>& list;
};

// Local time, "2024-07-04T09:05:01", or empty.
struct ClockText {
    std::string& text;
};

// "x64" or "x86".
struct SystemWord {
    System& system;
};

// A code page that the layer can convert.
struct CodePageNumber {
    std::uint32_t& number;
};

// A service's state by name: "stopped", "start_pending", "stop_pending", "running" ...
struct StateName {
    std::uint32_t& state;
};

// "real" or "scripted".
struct NetworkWord {
    bool& real;
};

// A number from 1.
struct CountFromOne {
    unsigned& number;
};

// A number that may be missing.
struct OptionalNumber {
    std::optional<std::uint32_t>& number;
};

void from_json_value(const JsonPlace& place, const VersionText& form);
void from_json_value(const JsonPlace& place, const DottedAddress& form);
void from_json_value(const JsonPlace& place, const DottedAddresses& form);
void from_json_value(const JsonPlace& place, const ClockText& form);
void from_json_value(const JsonPlace& place, const SystemWord& form);
void from_json_value(const JsonPlace& place, const CodePageNumber& form);
void from_json_value(const JsonPlace& place, const StateName& form);
void from_json_value(const JsonPlace& place, const NetworkWord& form);
void from_json_value(const JsonPlace& place, const CountFromOne& form);
void from_json_value(const JsonPlace& place, const OptionalNumber& form);
Json json_value(const VersionText& form);
Json json_value(const DottedAddress& form);
Json json_value(const DottedAddresses& form);
Json json_value(const ClockText& form);
Json json_value(const SystemWord& form);
Json json_value(const CodePageNumber& form);
Json json_value(const StateName& form);
Json json_value(const NetworkWord& form);
Json json_value(const CountFromOne& form);
Json json_value(const OptionalNumber& form);

// {"type": "sz" | "expand_sz" | "dword" | "binary", "value": ...}; a text that lacks its terminator or isn't
// well-formed, a dword of another size and any other type have "hex" in place of "value".
void from_json_value(const JsonPlace& place, RegistryValue& value);
void from_json_value(const JsonPlace& place, PrinterDataValue& value);
Json json_value(const RegistryValue& value);
Json json_value(const PrinterDataValue& value);

// A text: the driver's description.
void from_json_value(const JsonPlace& place, UsbDriverEntry& value);
Json json_value(const UsbDriverEntry& value);

// {"from": address, "text": ...}, an attribute reply (RFC 2608) with that attribute list, or with "hex" the
// datagram as it is.
void from_json_value(const JsonPlace& place, ScriptedDatagram& value);
Json json_value(const ScriptedDatagram& value);

} // namespace platform
