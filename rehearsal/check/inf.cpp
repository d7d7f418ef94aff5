// The driver's INF: which files the setup's search finds, which one it takes, and what is wrong with it.
#include "rehearsal/check/inf_rules.h"
#include "rehearsal/check/subjects.h"

#include "machine/text.h"

#include <algorithm>

namespace rehearsal::check {
namespace {

bool is_printer_inf(const DriverInf& file) {
    return file.setup.accepted || platform::same_name(file.inf.value(u"Version", u"Class"), u"Printer") ||
           std::any_of(file.packages.begin(), file.packages.end(),
                       [](const auto& package) { return !package.models.empty(); });
}

bool same_driver(const DriverInf& a, const DriverInf& b) {
    return a.setup.driver_name == b.setup.driver_name && a.setup.version == b.setup.version &&
           a.setup.model == b.setup.model;
}

std::string shown_driver(const DriverInf& inf) {
    return "\"" + inf.setup.driver_name + "\" " + shown_version(inf.setup.version) + " of " + inf.entry->path;
}

void report_missing(const Medium& medium, Findings& findings) {
    if (const MediumEntry* const drivers = medium.find("Drivers")) {
        findings.add("inf-missing", {drivers->path},
                     drivers->is_folder() ? "there is no *.inf in it, so that the setup has no driver"
                                          : "it is no folder, so that the setup has no driver");
        return;
    }
    std::vector<std::string_view> folders;
    for (const MediumEntry* const entry : medium.in_folder(""))
        if (entry->is_folder())
            folders.push_back(entry->path);
    const std::string_view near = nearest("Drivers", folders);
    findings.add("inf-missing", {std::string(near)},
                 near.empty()
                     ? "there is no folder Drivers, so that the setup has no driver"
                     : "the setup looks for its driver in a folder Drivers, not " + std::string(near));
}

// What else the search finds beside the INF that is taken, or was meant to be.
void check_others(const std::vector<DriverInf>& files, const DriverInf* taken, Findings& findings) {
    for (const DriverInf& file : files) {
        if (&file != taken && file.by_short_name && !file.entry->is_folder())
            findings.add(
                "inf-backup", {file.entry->path},
                "\"*.inf\" finds this file too, by its short name, and the setup may take it for its INF");
        else if (&file != taken && taken != nullptr && file.setup.accepted && !same_driver(file, *taken))
            findings.add("inf-several", {file.entry->path},
                         "the setup takes " + shown_driver(*taken) + ", and never " + shown_driver(file) +
                             ", as long as its file system delivers them in this order");
    }
    if (taken != nullptr && taken->by_short_name)
        findings.add("inf-backup-taken", {taken->entry->path},
                     "the setup takes this file, which \"*.inf\" finds by its short name, for its INF");
}

// 8-bit text of no code page, or of one that the system doesn't ask for.
void check_encoding(const Medium& medium, const DriverInf& inf, Findings& findings) {
    const std::string& bytes = medium.bytes(*inf.entry);
    if (bytes.starts_with("\xEF\xBB\xBF"))
        findings.add("inf-utf8", medium.place(*inf.entry, 0),
                     "the file begins with the mark of UTF-8, and both its readers take 8-bit text");
}

void check_file(const Medium& medium, const DriverInf& file, Findings& findings) {
    check_encoding(medium, file, findings);
    check_inf_letters(medium, file, findings);
    if (!file.setup.accepted)
        explain_refusal(medium, file, findings);
    check_inf_language(file, findings);
    check_driver_version(file, findings);
    // A text that was taken for a name by mistake isn't looked at any further.
    if (file.setup.accepted && compare_readers(medium, file, findings))
        check_inf_names(medium, file, findings);
}

} // namespace

void check_inf(const Medium& medium, Findings& findings) {
    const DriverInfs& infs = driver_infs(medium);
    const DriverInf* const taken = taken_inf(infs);
    bool any = false;
    for (const DriverInf& file : infs.files) {
        if (!file.entry->is_file()) {
            findings.add("inf-folder", {file.entry->path},
                         "it is a folder, and the setup looks for a file of such a name");
            continue;
        }
        // Beside the one that is taken there may be INFs of other devices.
        const bool meant =
            &file == taken ||
            (!file.by_short_name && (taken == nullptr || (!file.setup.accepted && is_printer_inf(file))));
        any = any || meant;
        if (meant)
            check_file(medium, file, findings);
    }
    if (!any)
        report_missing(medium, findings);
    check_others(infs.files, taken, findings);
}

} // namespace rehearsal::check
