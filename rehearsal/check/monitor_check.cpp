// A packaging with a port monitor of its own: the folder monitor, or monitor.inf beside the setup. What is in
// the monitor's INF is asked of the program's own reader.
#include "machine/text.h"
#include "package/monitor_inf.h"
#include "package/package_file.h"
#include "rehearsal/check/program_view.h"
#include "rehearsal/check/settings_text.h"
#include "rehearsal/check/subjects.h"

#include <algorithm>
#include <array>

namespace rehearsal::check {
namespace {

constexpr std::array<std::string_view, 4> monitor_keys = {"name=", "prefix=", "DLL32=", "DLL64="};

constexpr Rule monitor_rules[] = {
    {"monitor-inf", Severity::error, "The folder monitor has no INF",
     "The monitor's name and file are read from the first *.inf of the folder; without one no monitor can be "
     "installed.",
     "Put the monitor's INF into the folder.", "monitor/x86 without a monitor/monitor.inf"},
    {"monitor-several", Severity::warning, "The folder monitor has several INF files",
     "Only the first that the system delivers is read, whatever its name.", "Keep one.",
     "monitor/a.inf beside monitor/monitor.inf"},
    {"monitor-encoding", Severity::error, "The monitor's INF isn't 8-bit text",
     "The reader looks for bytes: UTF-16 holds none of its keys, and the monitor has no name.",
     "Save the file as 8-bit text.", "a file that an editor saved as \"Unicode\""},
    {"monitor-key", Severity::error, "A key of the monitor's INF isn't found",
     "Four keys are looked for in this case and without blanks, each behind the value before: name=, "
     "prefix=, DLL32=, "
     "DLL64=, all within the first 4,095 bytes. The first that is missing ends the search.",
     "Write the four keys in this order.", "DLL32 = lblmon.dll"},
    {"monitor-value", Severity::warning,
     "A value of the monitor's INF has quotes, blanks at its ends or is too long",
     "The value is taken as it stands, quotes and blanks included, and cut behind 63 characters; the spooler "
     "then looks for "
     "a file or a monitor of that very name.",
     "Write the bare value behind the equals sign.", "name=\"Label Port\""},
    {"monitor-file", Severity::warning, "A file of the layout with a monitor isn't there",
     "This layout copies the removers from the medium's own folder and the libraries from monitor/x86. A "
     "file that is missing "
     "leaves a line in the log, and the deployment goes on without it.",
     "Put the file there.", "no monitor/x86/zelcore.dll"},
    {"monitor-profiles", Severity::warning, "The layout with a monitor has no profiles",
     "Profiles are copied from monitor/profiles, and of these *.tkp alone.",
     "Put the *.tkp files into monitor/profiles.", "profiles/*.tkp beside a folder monitor"},
};

// Those that the layout copies by name; what lies in wrenchbay it has in common with the plain one.
constexpr const char* monitor_layout_files[] = {"trk_remove64.exe",         "trk_remove.exe",
                                                "monitor/x86/zelcore.dll",  "monitor/x86/zelmodel.dat",
                                                "monitor/x86/zelmodel.dll", "monitor/x86/iconv.dll"};

class MonitorInf {
public:
    MonitorInf(const Medium& medium, const MediumEntry& file, Findings& findings)
        : medium_(medium), file_(file), findings_(findings),
          text_(medium.bytes(file).substr(0, chunk_bytes)) {}

    void check(const MonitorInfo& info) {
        if (is_wide_text(text_))
            return findings_.add("monitor-encoding", {file_.path},
                                 "the file is UTF-16 or has a zero byte in it");
        const std::array<std::string, 4> values = {
            platform::to_utf8(info.name), platform::to_utf8(info.prefix), platform::to_utf8(info.DLL32),
            platform::to_utf8(info.DLL64)};
        std::size_t at = 0;
        for (std::size_t i = 0; i < monitor_keys.size(); ++i) {
            const std::size_t place = text_.find(monitor_keys[i], at);
            if (place == text_.npos)
                return tell_missing(monitor_keys[i]);
            at = std::min(text_.find_first_of("\r\n", place), text_.size());
            const std::size_t value = place + monitor_keys[i].size();
            check_value(monitor_keys[i], std::string_view(text_).substr(value, at - value), value, values[i]);
        }
    }

private:
    void add(std::string_view id, std::size_t offset, std::string reason) {
        findings_.add(id, medium_.place(file_, offset), std::move(reason));
    }

    // The line that was meant, if there is one.
    void tell_missing(std::string_view key) {
        const std::string_view word = key.substr(0, key.size() - 1);
        const std::string wanted = "the reader finds no \"" + std::string(key) + "\"";
        for (const TextLine& line : lines_of(medium_.bytes(file_))) {
            const std::string_view written = without_blanks(line.text.substr(0, line.text.find('=')));
            if (!same_text(written, word) && nearest(written, {word}).empty())
                continue;
            return add("monitor-key", line.offset,
                       wanted + (line.offset >= text_.size() ? " within the first 4,095 bytes"
                                 : line.text.starts_with(key)
                                     ? " behind the value before: the keys have an order"
                                     : "; this line reads " + in_quotes(line.text)));
        }
        findings_.add("monitor-key", {file_.path}, wanted);
    }

    void check_value(std::string_view key, std::string_view written, std::size_t offset,
                     std::string_view taken) {
        const std::string shown = std::string(key) + std::string(written.substr(0, 80));
        if (written.empty())
            add("monitor-key", offset, "no value follows " + in_quotes(key));
        else if (without_blanks(written) != written || written.find('"') != written.npos)
            add("monitor-value", offset, in_quotes(shown) + ": blanks and quotes are part of the value");
        else if (taken.size() < written.size() && written.starts_with(taken))
            add("monitor-value", offset,
                in_quotes(shown) + ": only " + std::to_string(taken.size()) + " bytes are taken");
    }

    const Medium& medium_;
    const MediumEntry& file_;
    Findings& findings_;
    const std::string text_;
};

void check_monitor_inf(const Medium& medium, bool in_folder, Findings& findings) {
    MonitorInfo info = {};
    int found = 0;
    with_program(medium, [&] { found = read_monitor_inf(&info, in_folder ? 1 : 0); });
    const std::string path = (in_folder ? "monitor/" : "") + platform::to_utf8(info.file);
    const MediumEntry* const file = found != 0 ? medium.find_file(path) : nullptr;
    if (file != nullptr)
        return MonitorInf(medium, *file, findings).check(info);
    if (in_folder)
        findings.add("monitor-inf", {medium.find("monitor")->path}, "no *.inf lies in the folder");
}

void check_monitor_layout(const Medium& medium, Findings& findings) {
    std::size_t count = 0;
    for (const MediumEntry* const entry : medium.in_folder("monitor"))
        count += entry->is_file() && folded(entry->name()).ends_with(".INF") ? 1U : 0U;
    if (count > 1)
        findings.add("monitor-several", {medium.find("monitor")->path},
                     std::to_string(count) + " *.inf files lie in the folder, and only the first is read");
    for (const char* const path : monitor_layout_files)
        if (medium.find_file(path) == nullptr)
            findings.add("monitor-file", {medium.find("monitor")->path}, std::string(path) + " isn't there");
    const std::vector<const MediumEntry*> profiles = medium.in_folder("monitor/profiles");
    if (std::none_of(profiles.begin(), profiles.end(), [](const auto* entry) {
            return entry->is_file() && folded(entry->name()).ends_with(".TKP");
        }))
        findings.add("monitor-profiles", {medium.find("monitor")->path}, "no *.tkp lies in monitor/profiles");
}

} // namespace

std::span<const Rule> rules_of_monitor() {
    return monitor_rules;
}

void check_monitor(const Medium& medium, Findings& findings) {
    if (medium.find_file("monitor.inf") != nullptr)
        check_monitor_inf(medium, false, findings);
    const MediumEntry* const folder = medium.find("monitor");
    if (folder == nullptr || !folder->is_folder())
        return;
    check_monitor_inf(medium, true, findings);
    check_monitor_layout(medium, findings);
}

} // namespace rehearsal::check
