#include "rehearsal/outcome.h"

#include "machine/fault_rules.h"

#include <set>
#include <sstream>
#include <utility>

namespace rehearsal {
namespace {

// What the program's log lines of failed steps begin with. A missing profilenames.inf isn't among them: it is
// optional, and its line tells so by the file's name.
constexpr const char* failure_lines[] = {
    "AddPrinter ",
    "bind failed",
    "Call to GetAdaptersInfo failed",
    "CoCreateInstance failed",
    "copy file failed",
    "CreateDialog failed",
    "current folder too long",
    "error ",
    "Error ",
    "failed",
    "FindFirstFile error",
    "Get CommonPrograms failed",
    "Get ProgramFiles failed",
    "Install thread failed",
    "InstallPrinterDriverFromPackage error",
    "Invalid DriverVer",
    "license file open failed",
    "LoadString fail",
    "media.inf empty",
    "No active networks found",
    "No printer selected",
    "not a folder name",
    "Printer Driver install fail",
    "QueryInterface failed",
    "UploadPrinterDriverPackage error",
};

bool starts_with_any(const std::string& line) {
    for (const char* const start : failure_lines)
        if (line.rfind(start, 0) == 0)
            return true;
    return false;
}

// "XcvData AddPort <result> <needed> <status> <last error> [...]": refused when the call failed or the status
// isn't 0. A port that is there from an earlier install (b7) serves as it is.
bool is_refused_port(const std::string& line) {
    std::istringstream words(line);
    std::string xcv, command, result, needed, status;
    words >> xcv >> command >> result >> needed >> status;
    return xcv == "XcvData" && command == "AddPort" && (result == "0" || (status != "0" && status != "b7"));
}

} // namespace

std::vector<std::string> find_failures(const Outcome& outcome) {
    std::vector<std::string> failures;
    std::istringstream lines(outcome.log);
    for (std::string line; std::getline(lines, line);) {
        while (!line.empty() && line.back() == '\r')
            line.pop_back();
        const bool optional = line.find("profilenames.inf") != std::string::npos;
        if ((starts_with_any(line) && !optional) || is_refused_port(line))
            failures.push_back("log: " + line);
    }
    constexpr std::uint32_t icon_mask = 0xF0;
    constexpr std::uint32_t exclamation = 0x30;
    // The warning that the discovery port is taken comes before every other box, and the search goes on.
    bool port_warning =
        outcome.log.find("\nWarning: another process is using the discovery port!") != std::string::npos;
    for (const platform::BoxView& box : outcome.boxes) {
        if ((box.flags & icon_mask) != exclamation)
            continue;
        if (!std::exchange(port_warning, false))
            failures.push_back("box: " + box.text);
    }
    return failures;
}

std::vector<std::string> find_idle_faults(const Outcome& outcome) {
    platform::FaultCounts counts;
    std::set<const platform::Fault*> struck;
    for (const platform::JournalEntry& entry : outcome.journal)
        if (entry.can_fail)
            struck.insert(counts.due(outcome.before.faults, entry.call, entry.argument));
    std::vector<std::string> idle;
    for (const platform::Fault& fault : outcome.before.faults)
        if (!struck.contains(&fault))
            idle.push_back(fault.call);
    return idle;
}

bool was_made(const Outcome& outcome, const std::string& path) {
    const auto before = outcome.files_before.find(path);
    const auto after = outcome.files_after.find(path);
    return after != outcome.files_after.end() &&
           (before == outcome.files_before.end() || before->second != after->second);
}

} // namespace rehearsal
