#include "machine/monitor_ports.h"

#include "machine/text.h"

#include <algorithm>

namespace platform {
namespace {

constexpr std::uint32_t network_port = 1 | 2 | 8; // PORT_TYPE_WRITE, PORT_TYPE_READ, PORT_TYPE_NET_ATTACHED

MonitorAnswer status_only(std::uint32_t status) {
    return {status, 0, {}};
}

PrintPort* find_port_of(SpoolerState& state, const PortMonitor& monitor, std::u16string_view name) {
    PrintPort* port = find_port(state, name);
    return port != nullptr && same_name(port->monitor, monitor.name) ? port : nullptr;
}

std::uint32_t add_port(SpoolerState& state, const PortMonitor& monitor, Bytes input) {
    PortRequest request;
    if (const std::uint32_t status = read_add_port(input, request); status != 0)
        return status;
    // Only the Standard TCP/IP monitor is told the address here; the custom ones learn it from their block.
    if (monitor.standard_tcpip && (request.host_address.empty() || request.port_number == 0))
        return spooler_error::invalid_parameter;
    if (find_port(state, request.port_name) != nullptr)
        return spooler_error::already_exists;
    PrintPort port;
    port.name = request.port_name;
    port.monitor = port.description = monitor.name;
    port.type = network_port;
    if (monitor.standard_tcpip) {
        port.host_address = request.host_address;
        port.ip_address = request.ip_address;
        port.protocol = request.protocol;
        port.port_number = request.port_number;
        port.snmp_enabled = request.snmp_enabled != 0;
    } else {
        port.configuration = new_configuration(monitor.configuration_size, request.port_name);
    }
    state.ports.push_back(std::move(port));
    return 0;
}

std::uint32_t delete_port(SpoolerState& state, const PortMonitor& monitor, Bytes input) {
    std::u16string name;
    if (const std::uint32_t status = read_delete_port(input, name); status != 0)
        return status;
    const PrintPort* port = find_port_of(state, monitor, name);
    if (port == nullptr)
        return spooler_error::unknown_port;
    if (std::any_of(state.queues.begin(), state.queues.end(),
                    [&](const auto& queue) { return same_name(queue.port, name); }))
        return spooler_error::busy;
    state.ports.erase(state.ports.begin() + (port - state.ports.data()));
    return 0;
}

MonitorAnswer get_configuration(SpoolerState& state, const PortMonitor& monitor, Bytes input,
                                std::uint32_t output_size) {
    const auto name = read_block_text(input, 0, input.size() / 2);
    if (!name || input.size() != 2 * (name->size() + 1))
        return status_only(spooler_error::invalid_parameter);
    PrintPort* port = find_port_of(state, monitor, *name);
    if (port == nullptr)
        return status_only(spooler_error::unknown_port);
    if (output_size < monitor.configuration_size)
        return {spooler_error::insufficient_buffer, monitor.configuration_size, {}};
    if (port->configuration.size() != monitor.configuration_size)
        port->configuration = new_configuration(monitor.configuration_size, port->name);
    return {0, monitor.configuration_size, port->configuration};
}

// The block names its port by the text that "GetConfig" put there.
std::uint32_t set_configuration(SpoolerState& state, const PortMonitor& monitor, Bytes input) {
    if (input.size() != monitor.configuration_size)
        return spooler_error::invalid_data;
    const auto name = read_block_text(input, configuration_name_offset, configuration_name_capacity);
    PrintPort* port = name ? find_port_of(state, monitor, *name) : nullptr;
    if (port == nullptr)
        return spooler_error::unknown_port;
    port->configuration.assign(input.begin(), input.end());
    return 0;
}

} // namespace

MonitorAnswer answer_monitor(SpoolerState& state, const PortMonitor& monitor, std::uint32_t access,
                             std::u16string_view command, Bytes input, std::uint32_t output_size) {
    if ((access & spooler_access::server_administer) == 0)
        return status_only(spooler_error::access_denied);
    if (command == u"AddPort")
        return status_only(add_port(state, monitor, input));
    if (monitor.standard_tcpip && command == u"DeletePort")
        return status_only(delete_port(state, monitor, input));
    if (!monitor.standard_tcpip && command == u"GetConfig")
        return get_configuration(state, monitor, input, output_size);
    if (!monitor.standard_tcpip && command == u"SetConfig")
        return status_only(set_configuration(state, monitor, input));
    return status_only(spooler_error::invalid_parameter);
}

bool has_transceive_interface(const PortMonitor& monitor) {
    return monitor.standard_tcpip || monitor.configuration_size != 0;
}

} // namespace platform
