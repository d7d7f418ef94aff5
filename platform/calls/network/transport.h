// What stands behind a bound datagram socket: the scripted network of the machine, or a real socket.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace platform {

// The codes that WSAGetLastError gives; named here because the real network's source can't include
// winsock2.h.
enum class SocketError : std::uint32_t {
    none = 0,
    access_denied = 10013,
    invalid = 10022,
    message_size = 10040,
    address_in_use = 10048,
    address_not_available = 10049,
    network_unreachable = 10051,
    no_buffers = 10055,
    timed_out = 10060,
};

struct Endpoint {
    std::uint32_t address = 0; // host order
    std::uint16_t port = 0;
};

struct SocketOptions {
    bool reuse_address = false;
    bool exclusive = false;
    std::uint32_t receive_timeout = 0; // milliseconds; 0 waits for ever
    std::uint8_t multicast_ttl = 1;
};

struct Datagram {
    Endpoint from;
    std::vector<std::uint8_t> bytes;
};

class Transport {
public:
    virtual ~Transport() = default;
    virtual SocketError bind(const Endpoint& local, const SocketOptions& options) = 0;
    virtual SocketError send(std::span<const std::uint8_t> bytes, const Endpoint& to,
                             const SocketOptions& options) = 0;
    // Waits for the next datagram, whole, or for the time-out.
    virtual SocketError receive(Datagram& datagram, const SocketOptions& options) = 0;
    virtual Endpoint local() const = 0;
};

constexpr bool is_loopback(std::uint32_t address) {
    return (address >> 24) == 127;
}
constexpr bool is_multicast(std::uint32_t address) {
    return (address >> 28) == 0xe;
}
std::string dotted(std::uint32_t address);
std::optional<std::uint32_t> parse_dotted(const std::string& text); // exactly four decimal numbers

// The transport for a socket bound to this address: real for loopback addresses and adapters marked so,
// otherwise scripted. Null when the address belongs to no adapter. The any address goes by the adapters.
std::unique_ptr<Transport> make_transport(std::uint32_t address);

} // namespace platform
