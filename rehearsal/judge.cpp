#include "rehearsal/judge.h"

#include "machine/text.h"
#include "rehearsal/exit_status.h"
#include "rehearsal/expected_files.h"
#include "rehearsal/machine_view.h"
#include "rehearsal/shown_text.h"

#include <algorithm>
#include <iostream>
#include <set>

namespace rehearsal {
namespace {

using platform::PrintPort;
using platform::PrintQueue;
using platform::SpoolerState;
using platform::to_utf8;

constexpr std::uint32_t raw_port_number = 9100;
constexpr std::uint32_t raw_protocol = 1;
constexpr std::u16string_view own_port_prefix = u"TRK_";

std::string quoted(const std::string& text) {
    return "\"" + text + "\"";
}

std::string quoted(const std::u16string& text) {
    return quoted(to_utf8(text));
}

// The first record of that name, or null.
template<class T>
const T* find_named(const std::vector<T>& all, const std::u16string& name) {
    const auto found = std::find_if(all.begin(), all.end(), [&](const T& one) { return one.name == name; });
    return found == all.end() ? nullptr : &*found;
}

bool claims_success(const Outcome& outcome) {
    constexpr std::uint32_t icon_mask = 0xF0;
    return std::any_of(outcome.boxes.begin(), outcome.boxes.end(),
                       [](const platform::BoxView& box) { return (box.flags & icon_mask) == 0; });
}

bool serves(const PrintPort& port, const std::string& address) {
    return to_utf8(port.host_address) == address && port.port_number == raw_port_number &&
           port.protocol == raw_protocol;
}

// The queue that the run made with the driver, that on a port of the address before any other.
const PrintQueue* find_new_queue(const Outcome& outcome) {
    const PrintQueue* made = nullptr;
    for (const PrintQueue& queue : outcome.after.spooler.queues) {
        if (to_utf8(queue.driver) != outcome.asked.driver ||
            find_named(outcome.before.spooler.queues, queue.name) != nullptr)
            continue;
        const PrintPort* const port = find_named(outcome.after.spooler.ports, queue.port);
        if (port != nullptr && serves(*port, outcome.asked.address))
            return &queue;
        made = &queue;
    }
    return made;
}

std::size_t count_label_sizes(const PrintQueue& queue) {
    return static_cast<std::size_t>(std::count_if(queue.data.begin(), queue.data.end(), [](const auto& key) {
        return key.first.starts_with(u"Label Sizes\\") && key.second.contains(u"name");
    }));
}

void check_queue(const Outcome& outcome, const PrintQueue* queue, std::vector<std::string>& missing) {
    if (queue == nullptr) {
        missing.push_back("no queue with driver " + quoted(outcome.asked.driver));
        return;
    }
    const PrintPort* const port = find_named(outcome.after.spooler.ports, queue->port);
    if (port == nullptr || !serves(*port, outcome.asked.address))
        missing.push_back("no port to " + outcome.asked.address + ", 9100 under queue " +
                          quoted(queue->name));
    const std::size_t sizes = count_label_sizes(*queue);
    if (sizes != outcome.asked.label_sizes)
        missing.push_back(std::to_string(sizes) + " of " + std::to_string(outcome.asked.label_sizes) +
                          " label sizes");
    if (outcome.asked.make_default && outcome.after.spooler.default_printer != queue->name)
        missing.push_back("queue " + quoted(queue->name) + " isn't the default printer");
}

void check_driver(const Outcome& outcome, std::vector<std::string>& missing) {
    for (const platform::PrinterDriver& driver : outcome.after.spooler.drivers)
        if (to_utf8(driver.name) == outcome.asked.driver && driver.version == outcome.asked.version)
            return;
    missing.push_back("no driver " + quoted(outcome.asked.driver) + " " +
                      version_text(outcome.asked.version));
}

// All that went wrong on the way, whatever the machine holds.
std::vector<std::string> collect_complaints(const Outcome& outcome) {
    std::vector<std::string> complaints;
    if (!outcome.problem.empty())
        complaints.push_back(outcome.problem);
    for (const std::string& failure : find_failures(outcome))
        complaints.push_back(failure);
    for (const std::string& call : find_idle_faults(outcome))
        complaints.push_back("the fault of " + call + " never struck");
    for (const std::string& misuse : outcome.misuses)
        complaints.push_back("forbidden by the platform: " + misuse);
    for (const std::string& leak : outcome.leaks)
        complaints.push_back("left open: " + leak);
    if (outcome.exit_code != 0)
        complaints.push_back("the program's exit code is " + std::to_string(outcome.exit_code));
    return complaints;
}

std::string described_install(const Outcome& outcome, const PrintQueue* queue) {
    const Asked& asked = outcome.asked;
    if (!asked.install)
        return "nothing was installed";
    const std::string driver = version_text(asked.version);
    if (!asked.network)
        return "driver " + quoted(asked.driver) + " " + driver + ", waiting for its USB device";
    return "queue " + quoted(queue->name) + " on " + to_utf8(queue->port) + ", driver " + driver + ", " +
           std::to_string(count_label_sizes(*queue)) + " label sizes" +
           (asked.make_default ? ", default" : "");
}

// The status and the failing line; a good one is the caller's to write.
Verdict begin_verdict(const Outcome& outcome, std::vector<std::string> missing) {
    Verdict verdict;
    verdict.missing = std::move(missing);
    if (!outcome.refusal.empty()) {
        verdict.status = layer_refused;
        verdict.complaints = {"the run was stopped: " + outcome.refusal};
    } else {
        verdict.complaints = collect_complaints(outcome);
        verdict.status = verdict.missing.empty() && verdict.complaints.empty() ? ended_well : ended_badly;
    }
    std::string reasons;
    for (const auto* list : {&verdict.missing, &verdict.complaints})
        for (const std::string& one : *list)
            reasons += (reasons.empty() ? "" : "; ") + one;
    if (verdict.status != ended_well)
        verdict.line = "FAIL: " + shown_text(reasons);
    return verdict;
}

void check_queues_gone(const Outcome& outcome, const Removal& removal, std::vector<std::string>& stayed) {
    for (const PrintQueue& queue : outcome.after.spooler.queues)
        if (!removal.driver.empty() && queue.driver == removal.driver)
            stayed.push_back("queue " + quoted(queue.name) + " stayed" +
                             (queue.jobs != 0 ? " with " + std::to_string(queue.jobs) + " jobs" : ""));
}

// A port is the removal's only as long as no other driver's queue stands on it.
void check_ports_gone(const Outcome& outcome, const Removal& removal, std::vector<std::string>& stayed) {
    std::set<std::u16string> own, others;
    for (const PrintQueue& queue : outcome.before.spooler.queues)
        (queue.driver == removal.driver ? own : others).insert(queue.port);
    for (const PrintPort& port : outcome.after.spooler.ports)
        if (own.contains(port.name) && !others.contains(port.name) && port.name.starts_with(own_port_prefix))
            stayed.push_back("port " + quoted(port.name) + " stayed");
}

void check_packages_gone(const Outcome& outcome, const Removal& removal, std::vector<std::string>& stayed) {
    for (const platform::StoredPackage& package : outcome.after.spooler.packages) {
        const std::string file = to_utf8(package.inf_path.substr(package.inf_path.rfind(u'\\') + 1));
        if (!removal.inf_name.empty() && folded(file) == folded(to_utf8(removal.inf_name)))
            stayed.push_back("driver package " + quoted(package.inf_path) + " stayed");
    }
}

void check_folders_gone(const Outcome& outcome, const Removal& removal, std::vector<std::string>& stayed) {
    const std::u16string group = outcome.before.folders.common_programs + u"\\Vorlane\\" + removal.model;
    std::set<std::string> there;
    for (const auto& [path, file] : outcome.files_after)
        there.insert(folded(path));
    for (const std::u16string& folder : {removal.install_folder, group})
        if (there.contains(folded(to_utf8(folder))))
            stayed.push_back("folder " + quoted(folder) + " stayed");
}

} // namespace

Verdict judge_install(const Outcome& outcome, const std::filesystem::path& medium,
                      const std::filesystem::path& drive_c) {
    std::vector<std::string> missing;
    const bool claimed = outcome.asked.install && claims_success(outcome);
    const PrintQueue* queue = nullptr;
    if (claimed) {
        check_driver(outcome, missing);
        if (outcome.asked.network) {
            queue = find_new_queue(outcome);
            check_queue(outcome, queue, missing);
        }
        check_files(outcome, medium, drive_c, missing);
        check_shortcuts(outcome, drive_c, missing);
    } else if (outcome.asked.install && outcome.refusal.empty() && find_failures(outcome).empty()) {
        missing.push_back("no box that tells how the install ended");
    }
    Verdict verdict = begin_verdict(outcome, std::move(missing));
    if (verdict.status == ended_well)
        verdict.line = "OK: " + shown_text(described_install(outcome, queue));
    return verdict;
}

Verdict judge_removal(const Outcome& outcome, const Removal& removal) {
    std::vector<std::string> stayed;
    check_queues_gone(outcome, removal, stayed);
    check_ports_gone(outcome, removal, stayed);
    check_packages_gone(outcome, removal, stayed);
    check_folders_gone(outcome, removal, stayed);
    Verdict verdict = begin_verdict(outcome, std::move(stayed));
    if (verdict.status == ended_well)
        verdict.line = "OK: " + shown_text(quoted(removal.model)) + " is removed";
    return verdict;
}

void tell_verdict(const Verdict& verdict, std::ostream& out) {
    for (const auto* list : {&verdict.missing, &verdict.complaints})
        for (const std::string& one : *list)
            std::cerr << "trk: " << shown_text(one) << "\n";
    std::cerr << std::flush;
    out << verdict.line << "\n" << std::flush;
}

} // namespace rehearsal
