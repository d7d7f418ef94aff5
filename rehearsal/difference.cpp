#include "rehearsal/difference.h"

#include "machine/text.h"

#include <algorithm>

namespace rehearsal {
namespace {

using platform::to_utf8;

// Names what one record is called; equal names with other contents count as a change.
template<class T, class Name>
void compare(std::vector<std::string>& lines, const char* kind, const std::vector<T>& before,
             const std::vector<T>& after, Name name) {
    const auto find = [&](const std::vector<T>& all, const T& one) {
        return std::find_if(all.begin(), all.end(), [&](const T& other) { return name(other) == name(one); });
    };
    for (const T& one : before)
        if (find(after, one) == after.end())
            lines.push_back(std::string("- ") + kind + " " + to_utf8(name(one)));
    for (const T& one : after) {
        const auto old = find(before, one);
        if (old == before.end())
            lines.push_back(std::string("+ ") + kind + " " + to_utf8(name(one)));
        else if (!(*old == one))
            lines.push_back(std::string("* ") + kind + " " + to_utf8(name(one)));
    }
}

void compare_files(std::vector<std::string>& lines, const DriveFiles& before, const DriveFiles& after) {
    const auto kind = [](const DriveFile& file) { return file.folder ? " folder " : " file "; };
    for (const auto& [path, file] : before)
        if (!after.contains(path))
            lines.push_back("-" + (kind(file) + path));
    for (const auto& [path, file] : after) {
        const auto old = before.find(path);
        if (old == before.end())
            lines.push_back("+" + (kind(file) + path));
        else if (old->second != file)
            lines.push_back("*" + (kind(file) + path));
    }
}

} // namespace

std::vector<std::string> difference(const MachineState& before, const MachineState& after) {
    const auto by_name = [](const auto& record) { return record.name; };
    const platform::SpoolerState& old_spooler = before.machine.spooler;
    const platform::SpoolerState& new_spooler = after.machine.spooler;
    std::vector<std::string> lines;
    compare(lines, "driver", old_spooler.drivers, new_spooler.drivers, by_name);
    compare(lines, "package", old_spooler.packages, new_spooler.packages,
            [](const platform::StoredPackage& package) { return package.inf_path; });
    compare(lines, "monitor", old_spooler.monitors, new_spooler.monitors, by_name);
    compare(lines, "port", old_spooler.ports, new_spooler.ports, by_name);
    compare(lines, "queue", old_spooler.queues, new_spooler.queues, by_name);
    if (old_spooler.default_printer != new_spooler.default_printer)
        lines.push_back("* default printer \"" + to_utf8(old_spooler.default_printer) + "\" -> \"" +
                        to_utf8(new_spooler.default_printer) + "\"");
    compare_files(lines, before.files, after.files);
    return lines;
}

} // namespace rehearsal
