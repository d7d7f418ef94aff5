#include "rehearsal/machine_view.h"

#include "calls/shell/link_reader.h"
#include "machine/little_endian.h"
#include "machine/text.h"
#include "machine/whole_file.h"

#include <algorithm>

namespace rehearsal {
namespace {

using platform::to_utf8;

template<class T>
bool holds(const std::vector<T>& all, const T& one) {
    return std::find(all.begin(), all.end(), one) != all.end();
}

std::string data_text(const platform::PrinterDataValue& value) {
    constexpr std::uint32_t number_type = 4;
    if (value.type == number_type && value.data.size() == 4)
        return std::to_string(static_cast<std::int32_t>(platform::ByteReader(value.data).number(4)));
    std::u16string text = platform::utf16_text(value.data);
    while (!text.empty() && text.back() == 0)
        text.pop_back();
    return to_utf8(text);
}

void print_queue(std::ostream& out, const platform::PrintQueue& queue, bool is_default) {
    out << "    queue     " << to_utf8(queue.name) << (is_default ? "  (default printer)" : "") << "\n"
        << "                on port " << to_utf8(queue.port) << ", driver " << to_utf8(queue.driver) << ", "
        << to_utf8(queue.processor) << ", " << to_utf8(queue.datatype) << "\n";
    for (const auto& [key, values] : queue.data) {
        out << "                " << to_utf8(key) << ":";
        for (const char16_t* name : {u"name", u"width", u"length", u"units", u"version"}) {
            const auto value = values.find(name);
            if (value != values.end())
                out << " " << to_utf8(name) << "=" << data_text(value->second);
        }
        out << "\n";
    }
}

void print_spooler(std::ostream& out, const Outcome& outcome) {
    const platform::SpoolerState& before = outcome.before.spooler;
    const platform::SpoolerState& after = outcome.after.spooler;
    for (const platform::PrinterDriver& driver : after.drivers)
        if (!holds(before.drivers, driver))
            out << "    driver    " << to_utf8(driver.name) << " " << version_text(driver.version) << "\n"
                << "                " << to_utf8(driver.inf_path) << "\n";
    for (const platform::PrintPort& port : after.ports)
        if (!holds(before.ports, port))
            out << "    port      " << to_utf8(port.name) << " (" << to_utf8(port.monitor) << "), address "
                << to_utf8(port.host_address) << ", " << (port.protocol == 1 ? "RAW" : "not RAW")
                << ", TCP port " << port.port_number << (port.snmp_enabled ? ", SNMP on" : ", SNMP off")
                << "\n";
    for (const platform::PrintQueue& queue : after.queues)
        if (!holds(before.queues, queue))
            print_queue(out, queue, queue.name == after.default_printer);
    if (before.default_printer != after.default_printer)
        out << "    default   " << (after.default_printer.empty() ? "none" : to_utf8(after.default_printer))
            << "\n";
}

// What was made or changed, each folder's own files together; a made folder without files is there too.
std::map<std::string, std::vector<std::string>> files_by_folder(const Outcome& outcome) {
    std::map<std::string, std::vector<std::string>> folders;
    for (const auto& [path, file] : outcome.files_after) {
        if (!was_made(outcome, path))
            continue;
        const std::size_t separator = path.rfind('\\');
        if (file.folder)
            folders[path];
        else
            folders[path.substr(0, separator)].push_back(path.substr(separator + 1));
    }
    return folders;
}

void print_link(std::ostream& out, const platform::LinkFile& link) {
    out << "                  to " << to_utf8(link.target) << "\n                  in "
        << to_utf8(link.working_folder) << ", \"" << to_utf8(link.description) << "\"\n";
}

} // namespace

std::string version_text(std::uint64_t version) {
    return std::to_string(version >> 48) + "." + std::to_string((version >> 32) & 0xffff) + "." +
           std::to_string((version >> 16) & 0xffff) + "." + std::to_string(version & 0xffff);
}

platform::LinkFile read_shortcut(const Outcome& outcome, const std::filesystem::path& drive_c,
                                 const std::string& path) {
    std::string reason;
    return platform::read_link(platform::read_whole_file(on_linux(drive_c, path)).value_or(""),
                               outcome.after.code_page, reason)
        .value_or(platform::LinkFile{});
}

std::map<std::string, platform::LinkFile> read_shortcuts(const Outcome& outcome,
                                                         const std::filesystem::path& drive_c) {
    std::map<std::string, platform::LinkFile> links;
    for (const auto& [path, file] : outcome.files_after) {
        if (!was_made(outcome, path) || !path.ends_with(".lnk"))
            continue;
        links[path] = read_shortcut(outcome, drive_c, path);
    }
    return links;
}

void print_machine(std::ostream& out, const Outcome& outcome, const std::filesystem::path& drive_c) {
    out << "\n  == What the run left on the machine ==\n";
    print_spooler(out, outcome);
    const std::map<std::string, platform::LinkFile> links = read_shortcuts(outcome, drive_c);
    for (const auto& [folder, files] : files_by_folder(outcome)) {
        out << "    folder    " << folder << "\n";
        for (const std::string& name : files) {
            const std::string path = folder + "\\" + name;
            out << "                " << name << "  (" << outcome.files_after.at(path).size << " bytes)\n";
            const auto link = links.find(path);
            if (link != links.end())
                print_link(out, link->second);
        }
    }
}

} // namespace rehearsal
