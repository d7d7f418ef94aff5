#include "rehearsal/check/catalogue_rules.h"

#include "rehearsal/check/subjects.h"

#include <algorithm>
#include <chrono>
#include <cstdio>

namespace rehearsal::check {
namespace {

constexpr Rule catalogue_rules[] = {
    {"catalogue-none", Severity::warning, "The INF names no catalogue",
     "A package without a catalogue isn't signed: 64-bit systems since Windows 8 refuse it, older ones ask "
     "the user.",
     "Have the package signed, and name its catalogue in [Version].",
     "[Version] without CatalogFile=lbl.cat"},
    {"catalogue-missing", Severity::error, "The catalogue that the INF names isn't there",
     "The package can't be put into the driver store.", "Put the signed catalogue beside the INF.",
     "CatalogFile=lbl.cat without Drivers/lbl.cat"},
    {"catalogue-unreadable", Severity::error, "The catalogue can't be read",
     "Windows takes the package for unsigned.", "Put the catalogue there as it came from signing.",
     "a text file that bears the catalogue's name"},
    {"catalogue-inf-changed", Severity::error, "The INF isn't the one that was signed",
     "A catalogue lists the digest of every file. An INF that was edited afterwards, be it a blank or a line "
     "end, isn't "
     "in it, and Windows refuses the package or takes it for unsigned.",
     "Undo the change, or have the package signed again.", "a corrected DriverVer in Drivers/lbl.inf"},
    {"catalogue-file", Severity::error, "A file of the package isn't the one that was signed",
     "Windows looks each file up by its digest and refuses a package with a file that isn't listed. Programs "
     "and "
     "libraries are looked up by the digest of their image, all else by that of their bytes.",
     "Put the signed file there, or have the package signed again.",
     "a newer zelcore.dll beside the old lbl.cat"},
    {"catalogue-signature", Severity::error, "The catalogue's signature doesn't hold",
     "The list was changed after signing, or nobody has signed it; Windows takes the package for unsigned.",
     "Put the catalogue there as it came from signing.", "a catalogue as it is before signing"},
    {"catalogue-signer", Severity::error, "The catalogue is signed by a certificate for something else",
     "Windows accepts signatures of drivers from certificates for code signing alone.",
     "Sign with a code signing certificate.", "a certificate for a web server"},
    {"catalogue-self-signed", Severity::warning, "The catalogue's signer vouches for itself",
     "Only systems on which this very certificate was entered as trusted accept the package.",
     "Sign with a certificate that systems trust, before the medium leaves the house.", "a test certificate"},
    {"catalogue-expired", Severity::error, "The signer's certificate isn't valid",
     "A signature counts at the time of its stamp, or, without one, today. The certificate has to be valid "
     "then.",
     "Sign again with a valid certificate, and with a time stamp.", "a certificate that ended last year"},
    {"catalogue-time-stamp", Severity::warning, "The catalogue has no time stamp",
     "On the day on which the signer's certificate ends, the package counts as unsigned.",
     "Sign again with a time stamp.", "a catalogue signed without a time stamp server"},
    {"catalogue-stamp-broken", Severity::error, "The catalogue's time stamp doesn't hold",
     "It was made for another signature, was changed, or comes from a certificate for something else. "
     "Windows doesn't "
     "accept the signature.",
     "Sign again with a time stamp.", "a catalogue that was signed a second time"},
    {"catalogue-date", Severity::warning, "The driver's date is later than the signature",
     "Either the INF was edited after signing, or a clock was wrong. The tools that make catalogues refuse "
     "such a date.",
     "Set DriverVer to the day of the build, and sign again.", "DriverVer=07/30/2024 signed on 27 July 2024"},
    {"catalogue-systems", Severity::warning, "The catalogue isn't for the systems that the INF is for",
     "A catalogue names the systems that it was made for. On others Windows may take the package for "
     "unsigned.",
     "Have the catalogue made for all the systems that the INF has models for.",
     "a catalogue for 7X64,_v100_X64 with an INF for NTx86 too"},
    {"catalogue-trust", Severity::note, "Whether the signer is trusted",
     "Which authorities a system trusts, and what its policy demands of drivers, is only known there.",
     "Try the package on each kind of system that it is for.",
     "a catalogue signed by a company's own authority"},
};

std::string in_capitals(std::string_view text) {
    std::string capitals(text);
    for (char& letter : capitals)
        letter = letter >= 'a' && letter <= 'z' ? static_cast<char>(letter - 'a' + 'A') : letter;
    return capitals;
}

// The processor that a system's name speaks of: "VistaX86", "7X64", "_v100", "_v100_X64_22H2",
// "_v100_ARM64_22H2"; empty when it doesn't tell. The newer names have none for x86.
std::string_view processor_of(std::string_view system) {
    const std::string name = in_capitals(system);
    if (name.find("ARM64") != name.npos)
        return "arm64";
    if (name.find("X64") != name.npos)
        return "amd64";
    if (name.find("X86") != name.npos)
        return "x86";
    if (name.find("ARM") != name.npos || name.find("IA64") != name.npos)
        return "other";
    return name.starts_with("_V") && name.find("SERVER") == name.npos ? "x86" : "";
}

} // namespace

std::span<const Rule> rules_of_catalogue() {
    return catalogue_rules;
}

std::string shown_day(std::int64_t seconds) {
    using namespace std::chrono;
    const year_month_day day(floor<days>(sys_seconds(std::chrono::seconds(seconds))));
    char text[32];
    std::snprintf(text, sizeof text, "%d-%02u-%02u", static_cast<int>(day.year()),
                  static_cast<unsigned>(day.month()), static_cast<unsigned>(day.day()));
    return text;
}

std::optional<std::int64_t> driver_date(std::string_view text) {
    using namespace std::chrono;
    unsigned numbers[3] = {}; // month, day, year
    std::size_t field = 0;
    for (const char letter : text) {
        if ((letter == '/' || letter == '-') && field < 2)
            ++field;
        else if (letter >= '0' && letter <= '9' && numbers[field] < 10000)
            numbers[field] = numbers[field] * 10 + static_cast<unsigned>(letter - '0');
        else
            return std::nullopt;
    }
    const year_month_day day(year(static_cast<int>(numbers[2])), month(numbers[0]),
                             std::chrono::day(numbers[1]));
    if (field != 2 || !day.ok())
        return std::nullopt;
    return sys_seconds(sys_days(day)).time_since_epoch().count();
}

bool names_systems_of(std::string_view systems, std::string_view processor) {
    while (!systems.empty()) {
        const std::size_t comma = std::min(systems.find(','), systems.size());
        const std::string_view found = processor_of(systems.substr(0, comma));
        if (found.empty() || found == processor)
            return true;
        systems.remove_prefix(std::min(comma + 1, systems.size()));
    }
    return false;
}

} // namespace rehearsal::check
