// The network as the machine's data tells it: each adapter has the answers to its successive searches.
#pragma once

#include "calls/network/transport.h"
#include "machine/machine.h"

#include <deque>
#include <map>
#include <mutex>

namespace platform {

// How far each adapter's answers are used up; one for a session.
class ScriptedSearches {
public:
    // The answers to the next search on the adapter at this place of the machine's list.
    std::vector<ScriptedDatagram> next(std::size_t adapter);

private:
    std::map<std::size_t, std::size_t> used_;
    std::mutex mutex_;
};

// A well-formed request to the discovery group takes the adapter's next answers, as if agents had judged it;
// any other datagram is lost. Time-outs pass on the machine's clock.
class ScriptedSocket : public Transport {
public:
    SocketError bind(const Endpoint& local, const SocketOptions& options) override;
    SocketError send(std::span<const std::uint8_t> bytes, const Endpoint& to,
                     const SocketOptions& options) override;
    SocketError receive(Datagram& datagram, const SocketOptions& options) override;
    Endpoint local() const override { return local_; }

private:
    Endpoint local_;
    std::deque<Datagram> waiting_;
};

// The place in the machine's list of the adapter that has this address, its first or a further one.
std::optional<std::size_t> adapter_with(std::uint32_t address);

} // namespace platform
