#include "machine/spooler_model.h"

#include "machine/text.h"

#include <algorithm>
#include <array>

namespace platform {
namespace {

constexpr std::size_t longest_queue_name = 220;

template<class Record>
Record* find_named(std::vector<Record>& records, std::u16string_view name) {
    const auto found = std::find_if(records.begin(), records.end(),
                                    [name](const Record& record) { return same_name(record.name, name); });
    return found == records.end() ? nullptr : &*found;
}

bool listed(const std::vector<std::u16string>& names, std::u16string_view name) {
    return std::any_of(names.begin(), names.end(),
                       [name](const auto& entry) { return same_name(entry, name); });
}

void pass_default_printer_on(SpoolerState& state, std::u16string_view gone) {
    if (!same_name(state.default_printer, gone))
        return;
    const auto next = std::find_if(state.queues.begin(), state.queues.end(),
                                   [](const auto& queue) { return !queue.deleting; });
    state.default_printer = next == state.queues.end() ? std::u16string() : next->name;
}

} // namespace

bool known_environment(std::u16string_view name) {
    static constexpr std::array<std::u16string_view, 6> names = {
        u"Windows x64", u"Windows NT x86", u"Windows ARM64", u"Windows ARM", u"Windows IA64", u"Windows 4.0"};
    return std::any_of(names.begin(), names.end(), [name](auto known) { return same_name(known, name); });
}

PrintQueue* find_queue(SpoolerState& state, std::u16string_view name) {
    return find_named(state.queues, name);
}

PortMonitor* find_monitor(SpoolerState& state, std::u16string_view name) {
    return find_named(state.monitors, name);
}

PrintPort* find_port(SpoolerState& state, std::u16string_view name) {
    return find_named(state.ports, name);
}

bool is_local(const PrintQueue& queue) {
    constexpr std::uint32_t network_connection = 0x10; // PRINTER_ATTRIBUTE_NETWORK
    return (queue.attributes & network_connection) == 0;
}

bool valid_queue_name(std::u16string_view name) {
    return !name.empty() && name.size() <= longest_queue_name && name.find_first_of(u"\\,!") == name.npos;
}

bool known_datatype(std::u16string_view datatype) {
    static constexpr std::array<std::u16string_view, 8> names = {
        u"RAW",          u"RAW [FF appended]", u"RAW [FF auto]", u"NT EMF 1.003",
        u"NT EMF 1.006", u"NT EMF 1.007",      u"NT EMF 1.008",  u"TEXT"};
    return std::any_of(names.begin(), names.end(),
                       [datatype](auto known) { return same_name(known, datatype); });
}

std::uint32_t open_queue(SpoolerState& state, std::u16string_view name, std::uint32_t access) {
    const PrintQueue* queue = find_queue(state, name);
    if (queue == nullptr)
        return spooler_error::invalid_printer_name;
    if (queue->deny_open && (access & spooler_access::printer_administer) != 0)
        return spooler_error::access_denied;
    return 0;
}

std::uint32_t add_queue(SpoolerState& state, PrintQueue queue) {
    if (!valid_queue_name(queue.name))
        return spooler_error::invalid_printer_name;
    if (find_queue(state, queue.name) != nullptr)
        return spooler_error::printer_already_exists;
    if (find_named(state.drivers, queue.driver) == nullptr)
        return spooler_error::unknown_driver;
    if (find_port(state, queue.port) == nullptr)
        return spooler_error::unknown_port;
    if (!listed(state.processors, queue.processor))
        return spooler_error::unknown_processor;
    if (queue.datatype.empty())
        queue.datatype = u"RAW";
    else if (!known_datatype(queue.datatype))
        return spooler_error::invalid_datatype;
    state.queues.push_back(std::move(queue));
    return 0;
}

std::uint32_t delete_queue(SpoolerState& state, std::u16string_view name, std::uint32_t access) {
    PrintQueue* queue = find_queue(state, name);
    if (queue == nullptr || queue->deleting)
        return spooler_error::printer_deleted;
    if (queue->deny_delete || (access & spooler_access::delete_object) == 0)
        return spooler_error::access_denied;
    const std::u16string gone = queue->name;
    if (queue->jobs > 0)
        queue->deleting = true;
    else
        state.queues.erase(state.queues.begin() + (queue - state.queues.data()));
    pass_default_printer_on(state, gone);
    return 0;
}

std::uint32_t set_default_printer(SpoolerState& state, std::u16string_view name) {
    if (name.empty()) {
        if (find_queue(state, state.default_printer) != nullptr)
            return 0;
        if (state.queues.empty())
            return spooler_error::invalid_printer_name;
        state.default_printer = state.queues.front().name;
        return 0;
    }
    const PrintQueue* queue = find_queue(state, name);
    if (queue == nullptr)
        return spooler_error::invalid_printer_name;
    state.default_printer = queue->name;
    return 0;
}

std::uint32_t add_monitor(SpoolerState& state, std::u16string_view name, std::u16string_view environment,
                          std::u16string_view dll) {
    if (name.empty() || dll.empty())
        return spooler_error::invalid_parameter;
    if (!same_name(environment, state.environment))
        return spooler_error::invalid_environment;
    if (find_monitor(state, name) != nullptr)
        return spooler_error::monitor_already_installed;
    PortMonitor monitor;
    monitor.name = name;
    monitor.environment = environment;
    monitor.dll = dll;
    monitor.configuration_size = same_name(dll, u"dryxmon.dll") ? 4112 : 6168;
    state.monitors.push_back(std::move(monitor));
    return 0;
}

} // namespace platform
