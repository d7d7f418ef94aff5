// Real datagram sockets, for traffic that stays on this computer: on loopback addresses, or on an interface
// that the rehearsal made in a network namespace of its own. Everything else stops the run.
#pragma once

#include "calls/network/transport.h"

#include <iosfwd>

namespace platform {

class RealSocket : public Transport {
public:
    RealSocket() = default;
    ~RealSocket() override;
    RealSocket(const RealSocket&) = delete;
    RealSocket& operator=(const RealSocket&) = delete;

    SocketError bind(const Endpoint& local, const SocketOptions& options) override;
    SocketError send(std::span<const std::uint8_t> bytes, const Endpoint& to,
                     const SocketOptions& options) override;
    SocketError receive(Datagram& datagram, const SocketOptions& options) override;
    Endpoint local() const override { return local_; }

private:
    int descriptor_ = -1;
    Endpoint local_;
};

// Why real traffic from this address might leave the computer; empty when it can't. Two things are asked of
// an address that isn't loopback: no route of this network namespace leads elsewhere, and the address is that
// of an interface whose name begins with "trk", as the rehearsal names those that it makes.
std::string why_unsafe(std::uint32_t address);

// Whether a table in the form of /proc/net/route has a route to elsewhere, a default one or one by a gateway.
// One that can't be read counts as having one.
bool lists_way_out(std::istream& table);

} // namespace platform
