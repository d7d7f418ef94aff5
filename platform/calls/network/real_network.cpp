#include "calls/network/real_network.h"

#include "calls/run/session.h"

#include <algorithm>
#include <arpa/inet.h>
#include <cerrno>
#include <chrono>
#include <climits>
#include <fstream>
#include <ifaddrs.h>
#include <iterator>
#include <netinet/in.h>
#include <poll.h>
#include <sstream>
#include <sys/socket.h>
#include <unistd.h>

namespace platform {
namespace {

using SteadyClock = std::chrono::steady_clock;
constexpr std::string_view own_interface_prefix = "trk";
constexpr std::size_t largest_datagram = 65535;

SocketError from_errno(int code) {
    switch (code) {
    case EACCES:
    case EPERM:
        return SocketError::access_denied;
    case EADDRINUSE:
        return SocketError::address_in_use;
    case EADDRNOTAVAIL:
        return SocketError::address_not_available;
    case EMSGSIZE:
        return SocketError::message_size;
    case ENETUNREACH:
    case EHOSTUNREACH:
    case ENETDOWN:
        return SocketError::network_unreachable;
    case ENOBUFS:
    case ENOMEM:
    case EMFILE:
    case ENFILE:
        return SocketError::no_buffers;
    default:
        return SocketError::invalid;
    }
}

sockaddr_in to_native(const Endpoint& endpoint) {
    sockaddr_in native{};
    native.sin_family = AF_INET;
    native.sin_port = htons(endpoint.port);
    native.sin_addr.s_addr = htonl(endpoint.address);
    return native;
}

Endpoint from_native(const sockaddr_in& native) {
    return {ntohl(native.sin_addr.s_addr), ntohs(native.sin_port)};
}

sockaddr* generic(sockaddr_in& address) {
    return reinterpret_cast<sockaddr*>(&address);
}

bool set(int descriptor, int level, int option, const void* value, socklen_t length) {
    return setsockopt(descriptor, level, option, value, length) == 0;
}

bool has_way_out() {
    std::ifstream table("/proc/net/route");
    return lists_way_out(table);
}

std::string interface_of(std::uint32_t address) {
    ifaddrs* list = nullptr;
    if (getifaddrs(&list) != 0)
        return {};
    std::string name;
    for (const ifaddrs* entry = list; entry != nullptr && name.empty(); entry = entry->ifa_next) {
        if (entry->ifa_addr == nullptr || entry->ifa_addr->sa_family != AF_INET)
            continue;
        if (from_native(*reinterpret_cast<const sockaddr_in*>(entry->ifa_addr)).address == address)
            name = entry->ifa_name;
    }
    freeifaddrs(list);
    return name;
}

} // namespace

bool lists_way_out(std::istream& table) {
    std::string line;
    if (!std::getline(table, line)) // the headings
        return true;
    while (std::getline(table, line)) {
        std::istringstream fields(line);
        std::string interface_name, destination, gateway, flags;
        fields >> interface_name >> destination >> gateway >> flags;
        if (destination == "00000000" || gateway != "00000000")
            return true;
    }
    return false;
}

std::string why_unsafe(std::uint32_t address) {
    if (is_loopback(address))
        return {};
    if (has_way_out())
        return "real traffic from " + dotted(address) +
               " could leave this computer: its network namespace has a route to elsewhere";
    const std::string name = interface_of(address);
    if (!name.empty() && !name.starts_with(own_interface_prefix))
        return "real traffic from " + dotted(address) + " would use the interface " + name +
               ", which the rehearsal didn't make";
    return {};
}

RealSocket::~RealSocket() {
    if (descriptor_ >= 0)
        close(descriptor_);
}

SocketError RealSocket::bind(const Endpoint& local, const SocketOptions& options) {
    // A socket on the any address never sends (see send); it is only asked whether the port is free.
    const bool any = local.address == INADDR_ANY;
    if (const std::string reason = any ? std::string() : why_unsafe(local.address); !reason.empty())
        session().gate.refuse(reason);
    descriptor_ = ::socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, IPPROTO_UDP);
    if (descriptor_ < 0)
        return from_errno(errno);
    const int on = 1;
    if (options.reuse_address && !set(descriptor_, SOL_SOCKET, SO_REUSEADDR, &on, sizeof on))
        return from_errno(errno);
    if (any && has_way_out() && !set(descriptor_, SOL_SOCKET, SO_BINDTODEVICE, "lo", 2))
        return from_errno(errno);
    sockaddr_in address = to_native(local);
    if (::bind(descriptor_, generic(address), sizeof address) != 0)
        return from_errno(errno);
    // The kernel steers multicast by the bound address as well; for loopback addresses it is said outright.
    if (!any && !set(descriptor_, IPPROTO_IP, IP_MULTICAST_IF, &address.sin_addr, sizeof address.sin_addr))
        return from_errno(errno);
    socklen_t length = sizeof address;
    if (getsockname(descriptor_, generic(address), &length) != 0)
        return from_errno(errno);
    local_ = from_native(address);
    return SocketError::none;
}

SocketError RealSocket::send(std::span<const std::uint8_t> bytes, const Endpoint& to,
                             const SocketOptions& options) {
    if (local_.address == INADDR_ANY)
        session().gate.refuse("sending from the any address could use the computer's own network card");
    if (const std::string reason = why_unsafe(local_.address); !reason.empty())
        session().gate.refuse(reason);
    if (is_loopback(local_.address) && !is_loopback(to.address) && !is_multicast(to.address))
        session().gate.refuse("a loopback socket sends to " + dotted(to.address));
    const int ttl = options.multicast_ttl;
    if (!set(descriptor_, IPPROTO_IP, IP_MULTICAST_TTL, &ttl, sizeof ttl))
        return from_errno(errno);
    sockaddr_in address = to_native(to);
    const ssize_t sent =
        ::sendto(descriptor_, bytes.data(), bytes.size(), MSG_NOSIGNAL, generic(address), sizeof address);
    return sent < 0 ? from_errno(errno) : SocketError::none;
}

SocketError RealSocket::receive(Datagram& datagram, const SocketOptions& options) {
    if (options.receive_timeout == 0)
        session().gate.refuse("a receive without time-out isn't modelled: it may never end");
    // A stopped run ends in here too.
    const SteadyClock::time_point end =
        SteadyClock::now() + std::chrono::milliseconds(options.receive_timeout);
    pollfd waiting[] = {{descriptor_, POLLIN, 0}, {session().gate.stop_event(), POLLIN, 0}};
    for (int ready = 0; ready <= 0 || waiting[0].revents == 0;) {
        if (session().gate.stopped())
            throw RunStopped(session().gate.stop_reason());
        const auto left = std::chrono::ceil<std::chrono::milliseconds>(end - SteadyClock::now()).count();
        ready =
            poll(waiting, std::size(waiting), static_cast<int>(std::clamp<std::int64_t>(left, 0, INT_MAX)));
        if (ready == 0)
            return SocketError::timed_out;
        if (ready < 0 && errno != EINTR)
            return from_errno(errno);
    }
    datagram.bytes.resize(largest_datagram);
    sockaddr_in sender{};
    socklen_t length = sizeof sender;
    const ssize_t received =
        ::recvfrom(descriptor_, datagram.bytes.data(), datagram.bytes.size(), 0, generic(sender), &length);
    if (received < 0)
        return from_errno(errno);
    datagram.bytes.resize(static_cast<std::size_t>(received));
    datagram.from = from_native(sender);
    return SocketError::none;
}

} // namespace platform
