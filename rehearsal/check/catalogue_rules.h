// The rules of the signature catalogue's check, and the small judgements that it is made of.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace rehearsal::check {

// A date without a time may be meant in any time zone, of which the farthest is 14 hours ahead.
constexpr std::int64_t most_ahead_of_utc = std::int64_t{14} * 3600;

// Seconds since 1970 as a day in UTC: "2024-07-27".
std::string shown_day(std::int64_t seconds);

// The beginning of an INF's date, month/day/year, in UTC; none when it isn't one.
std::optional<std::int64_t> driver_date(std::string_view text);

// Whether a catalogue's list of systems ("VistaX86,7X64,_v100_X64,...") has one of the processor: x86, amd64
// or arm64. A list with a name that doesn't tell its processor isn't judged and has all.
bool names_systems_of(std::string_view systems, std::string_view processor);

} // namespace rehearsal::check
