#include "calls/network/scripted_network.h"

#include "calls/run/session.h"
#include "machine/slp_agent.h"

#include <algorithm>

namespace platform {
namespace {

constexpr std::uint16_t first_free_port = 49152;

std::uint32_t sender_address(const std::string& text) {
    const std::optional<std::uint32_t> address = parse_dotted(text);
    if (!address)
        session().gate.refuse("a scripted answer comes from '" + text + "', which is no IPv4 address");
    return *address;
}

} // namespace

std::vector<ScriptedDatagram> ScriptedSearches::next(std::size_t adapter) {
    const std::lock_guard lock(mutex_);
    const auto& searches = session().machine.adapters[adapter].searches;
    const std::size_t search = used_[adapter]++;
    return search < searches.size() ? searches[search] : std::vector<ScriptedDatagram>();
}

std::optional<std::size_t> adapter_with(std::uint32_t address) {
    const std::vector<Adapter>& adapters = session().machine.adapters;
    for (std::size_t index = 0; index < adapters.size(); ++index) {
        const std::vector<std::string>& addresses = adapters[index].addresses;
        if (std::find(addresses.begin(), addresses.end(), dotted(address)) != addresses.end())
            return index;
    }
    return std::nullopt;
}

SocketError ScriptedSocket::bind(const Endpoint& local, const SocketOptions& options) {
    // A holder that wants to share lets others that want it too in; a plain or exclusive bind is refused.
    if (local.port == slp_port && session().machine.discovery_port_taken && !options.reuse_address)
        return SocketError::address_in_use;
    local_ = local;
    if (local_.port == 0)
        local_.port = first_free_port;
    return SocketError::none;
}

SocketError ScriptedSocket::send(std::span<const std::uint8_t> bytes, const Endpoint& to,
                                 const SocketOptions&) {
    const std::optional<std::size_t> adapter = adapter_with(local_.address);
    if (!adapter)
        session().gate.refuse("sending from the any address isn't modelled: no adapter is chosen by it");
    const bool to_agents = to.address == parse_dotted(std::string(slp_group)) && to.port == slp_port;
    if (!to_agents || !parse_attribute_request(bytes))
        return SocketError::none;
    for (ScriptedDatagram& answer : session().area<ScriptedSearches>().next(*adapter))
        waiting_.push_back({{sender_address(answer.from), slp_port}, std::move(answer.bytes)});
    return SocketError::none;
}

SocketError ScriptedSocket::receive(Datagram& datagram, const SocketOptions& options) {
    if (waiting_.empty()) {
        if (options.receive_timeout == 0)
            session().gate.refuse("a receive without time-out and without anything to come never ends");
        session().clock.pass(options.receive_timeout);
        return SocketError::timed_out;
    }
    datagram = std::move(waiting_.front());
    waiting_.pop_front();
    return SocketError::none;
}

} // namespace platform
