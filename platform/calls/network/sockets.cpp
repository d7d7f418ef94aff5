#include "calls/network/real_network.h"
#include "calls/network/scripted_network.h"
#include "calls/run/session.h"

#include <winsock2.h>
#include <ws2tcpip.h>

#include <algorithm>
#include <atomic>
#include <cstring>

namespace platform {
namespace {

struct SocketsLibrary {
    std::atomic<int> started = 0; // WSAStartup calls that no WSACleanup has met yet
};

struct SocketObject : Object {
    const char* kind() const override { return "socket"; }
    SocketOptions options;
    std::unique_ptr<Transport> transport; // set while bound
};

int fail(std::uint32_t error) {
    set_last_error(error);
    return SOCKET_ERROR;
}

int fail(SocketError error) {
    return fail(static_cast<std::uint32_t>(error));
}

void* handle_value(SOCKET handle) {
    return reinterpret_cast<void*>(handle);
}

SOCKET socket_value(void* handle) {
    return reinterpret_cast<SOCKET>(handle);
}

// What a call on a socket is known by at the gate: the address that it is bound to, if any.
std::string address_of(SOCKET handle) {
    const auto object = std::dynamic_pointer_cast<SocketObject>(session().handles.peek(handle_value(handle)));
    return object && object->transport ? dotted(object->transport->local().address) : std::string();
}

std::string option_name(int level, int option) {
    if (level == SOL_SOCKET && option == SO_RCVTIMEO)
        return "SO_RCVTIMEO";
    if (level == SOL_SOCKET && option == SO_REUSEADDR)
        return "SO_REUSEADDR";
    if (level == SOL_SOCKET && option == SO_EXCLUSIVEADDRUSE)
        return "SO_EXCLUSIVEADDRUSE";
    if (level == IPPROTO_IP && option == IP_MULTICAST_TTL)
        return "IP_MULTICAST_TTL";
    return "level " + std::to_string(level) + " option " + std::to_string(option);
}

// " 1000"; nothing when it isn't of a known size.
std::string option_value(const char* value, int length) {
    std::uint32_t number = 0;
    if (value == nullptr || (length != 1 && length != 4))
        return "";
    std::memcpy(&number, value, static_cast<std::size_t>(length));
    return " " + std::to_string(number);
}

bool started() {
    return session().area<SocketsLibrary>().started > 0;
}

// The socket behind a handle, or null with the last error set.
std::shared_ptr<SocketObject> find_socket(SOCKET handle) {
    if (!started()) {
        set_last_error(WSANOTINITIALISED);
        return nullptr;
    }
    std::shared_ptr<SocketObject> object = session().handles.find<SocketObject>(handle_value(handle));
    if (!object)
        set_last_error(WSAENOTSOCK);
    return object;
}

// The IPv4 name in a caller's record; otherwise the code to fail with.
std::uint32_t read_name(const sockaddr* name, int length, Endpoint& endpoint) {
    if (name == nullptr || length < static_cast<int>(sizeof(sockaddr_in)))
        return WSAEFAULT;
    sockaddr_in record;
    std::memcpy(&record, name, sizeof record);
    if (record.sin_family != AF_INET)
        return WSAEAFNOSUPPORT;
    endpoint = {__builtin_bswap32(record.sin_addr.s_addr), __builtin_bswap16(record.sin_port)};
    return 0;
}

bool write_name(const Endpoint& endpoint, sockaddr* name, int* length) {
    if (length == nullptr || *length < static_cast<int>(sizeof(sockaddr_in)))
        return false;
    sockaddr_in record{};
    record.sin_family = AF_INET;
    record.sin_port = __builtin_bswap16(endpoint.port);
    record.sin_addr.s_addr = __builtin_bswap32(endpoint.address);
    std::memcpy(name, &record, sizeof record);
    *length = static_cast<int>(sizeof record);
    return true;
}

// Sharing and exclusive use rule each other out; whichever comes second is refused.
int set_sharing(SocketObject& object, int option, bool on) {
    const bool other = option == SO_REUSEADDR ? object.options.exclusive : object.options.reuse_address;
    if (on && other)
        return fail(WSAEINVAL);
    (option == SO_REUSEADDR ? object.options.reuse_address : object.options.exclusive) = on;
    return 0;
}

int set_ttl(SocketObject& object, std::uint32_t value) {
    if (value > 255)
        return fail(WSAEINVAL);
    object.options.multicast_ttl = static_cast<std::uint8_t>(value);
    return 0;
}

} // namespace

std::unique_ptr<Transport> make_transport(std::uint32_t address) {
    const std::vector<Adapter>& adapters = session().machine.adapters;
    if (address == INADDR_ANY) {
        const bool real = std::any_of(adapters.begin(), adapters.end(),
                                      [](const Adapter& adapter) { return adapter.real_sockets; });
        if (real)
            return std::make_unique<RealSocket>();
        return std::make_unique<ScriptedSocket>();
    }
    if (const std::optional<std::size_t> adapter = adapter_with(address)) {
        if (adapters[*adapter].real_sockets)
            return std::make_unique<RealSocket>();
        return std::make_unique<ScriptedSocket>();
    }
    // Every machine has loopback, whatever its adapters are.
    return is_loopback(address) ? std::make_unique<RealSocket>() : nullptr;
}

} // namespace platform

using platform::Call;
using platform::Endpoint;
using platform::session;
using platform::SocketError;

int WSAStartup(WORD version, LPWSADATA data) {
    constexpr WORD highest = 0x0202;
    Call call("WSAStartup");
    if (call.fails(WSASYSNOTREADY))
        return static_cast<int>(call.error());
    if (data == nullptr)
        return WSAEFAULT;
    const int major = version & 0xff; // the major number stands in the low byte
    const int minor = version >> 8;
    if (major == 0)
        return WSAVERNOTSUPPORTED;
    const bool newer = major > 2 || (major == 2 && minor > 2);
    *data = {};
    data->wVersion = newer ? highest : version;
    data->wHighVersion = highest;
    static constexpr char description[] = "WinSock 2.0";
    static constexpr char status[] = "Running";
    std::copy_n(description, sizeof description, data->szDescription);
    std::copy_n(status, sizeof status, data->szSystemStatus);
    ++session().area<platform::SocketsLibrary>().started;
    return 0;
}

int WSACleanup() {
    Call call("WSACleanup");
    if (call.fails(WSAENETDOWN))
        return SOCKET_ERROR;
    if (!platform::started())
        return platform::fail(WSANOTINITIALISED);
    --session().area<platform::SocketsLibrary>().started;
    return 0;
}

int WSAGetLastError() {
    Call call("WSAGetLastError");
    return static_cast<int>(platform::last_error());
}

SOCKET socket(int family, int type, int protocol) {
    Call call("socket");
    if (call.fails(WSAENOBUFS))
        return INVALID_SOCKET;
    if (!platform::started()) {
        platform::set_last_error(WSANOTINITIALISED);
        return INVALID_SOCKET;
    }
    if (family != AF_INET || type != SOCK_DGRAM || (protocol != IPPROTO_UDP && protocol != 0))
        call.refuse("only IPv4 datagram sockets are modelled");
    return platform::socket_value(session().handles.open(std::make_shared<platform::SocketObject>()));
}

int closesocket(SOCKET handle) {
    Call call("closesocket", platform::address_of(handle));
    if (call.fails(WSAENETDOWN) || !platform::find_socket(handle))
        return SOCKET_ERROR;
    session().handles.close(platform::handle_value(handle));
    return 0;
}

int setsockopt(SOCKET handle, int level, int option, const char* value, int length) {
    Call call("setsockopt", platform::option_name(level, option) + platform::option_value(value, length));
    if (call.fails(WSAENETDOWN))
        return SOCKET_ERROR;
    const auto object = platform::find_socket(handle);
    if (!object)
        return SOCKET_ERROR;
    // The time-to-live is taken as one byte too; every other option is a 32-bit word.
    const bool ttl = level == IPPROTO_IP && option == IP_MULTICAST_TTL;
    if (value == nullptr || (length != 4 && !(ttl && length == 1)))
        return platform::fail(WSAEFAULT);
    std::uint32_t number = 0;
    std::memcpy(&number, value, static_cast<std::size_t>(length));
    if (ttl)
        return platform::set_ttl(*object, number);
    if (level == SOL_SOCKET && option == SO_RCVTIMEO) {
        object->options.receive_timeout = number;
        return 0;
    }
    if (level == SOL_SOCKET && (option == SO_REUSEADDR || option == SO_EXCLUSIVEADDRUSE))
        return platform::set_sharing(*object, option, number != 0);
    call.refuse("this socket option isn't modelled");
}

int bind(SOCKET handle, const sockaddr* name, int length) {
    Endpoint local;
    const std::uint32_t unreadable = platform::read_name(name, length, local);
    Call call("bind", platform::dotted(local.address));
    if (call.fails(WSAEADDRNOTAVAIL))
        return SOCKET_ERROR;
    const auto object = platform::find_socket(handle);
    if (!object)
        return SOCKET_ERROR;
    if (unreadable != 0)
        return platform::fail(unreadable);
    if (object->transport)
        return platform::fail(WSAEINVAL);
    std::unique_ptr<platform::Transport> transport = platform::make_transport(local.address);
    if (!transport)
        return platform::fail(WSAEADDRNOTAVAIL);
    const SocketError error = transport->bind(local, object->options);
    if (error != SocketError::none)
        return platform::fail(error);
    object->transport = std::move(transport);
    return 0;
}

int getsockname(SOCKET handle, sockaddr* name, int* length) {
    Call call("getsockname", platform::address_of(handle));
    if (call.fails(WSAENETDOWN))
        return SOCKET_ERROR;
    const auto object = platform::find_socket(handle);
    if (!object)
        return SOCKET_ERROR;
    if (!object->transport)
        return platform::fail(WSAEINVAL);
    if (name == nullptr || !platform::write_name(object->transport->local(), name, length))
        return platform::fail(WSAEFAULT);
    return 0;
}

int sendto(SOCKET handle, const char* data, int length, int flags, const sockaddr* to, int to_length) {
    Call call("sendto", platform::address_of(handle));
    if (call.fails(WSAENETUNREACH))
        return SOCKET_ERROR;
    const auto object = platform::find_socket(handle);
    if (!object)
        return SOCKET_ERROR;
    if (flags != 0)
        call.refuse("flags aren't modelled");
    Endpoint target;
    if (const std::uint32_t unreadable = platform::read_name(to, to_length, target); unreadable != 0)
        return platform::fail(unreadable);
    if (data == nullptr || length < 0)
        return platform::fail(WSAEFAULT);
    if (target.port == 0 || target.address == INADDR_ANY)
        return platform::fail(WSAEADDRNOTAVAIL);
    if (!object->transport)
        call.refuse("the socket isn't bound, so the system would choose the adapter");
    const auto* bytes = reinterpret_cast<const std::uint8_t*>(data);
    const SocketError error =
        object->transport->send({bytes, static_cast<std::size_t>(length)}, target, object->options);
    return error == SocketError::none ? length : platform::fail(error);
}

int recvfrom(SOCKET handle, char* data, int length, int flags, sockaddr* from, int* from_length) {
    Call call("recvfrom", platform::address_of(handle));
    if (call.fails(WSAETIMEDOUT))
        return SOCKET_ERROR;
    const auto object = platform::find_socket(handle);
    if (!object)
        return SOCKET_ERROR;
    if (flags != 0)
        call.refuse("flags aren't modelled");
    if (!object->transport)
        return platform::fail(WSAEINVAL);
    const int room = sizeof(sockaddr_in);
    if (data == nullptr || length < 0 || (from != nullptr && (from_length == nullptr || *from_length < room)))
        return platform::fail(WSAEFAULT);
    platform::Datagram datagram;
    const SocketError error = object->transport->receive(datagram, object->options);
    if (error != SocketError::none)
        return platform::fail(error);
    // A datagram larger than the buffer fills it, tells its sender, and is a failure; its rest is lost.
    const std::size_t taken = std::min(datagram.bytes.size(), static_cast<std::size_t>(length));
    std::copy_n(datagram.bytes.begin(), taken, data);
    if (from != nullptr)
        platform::write_name(datagram.from, from, from_length);
    return taken < datagram.bytes.size() ? platform::fail(WSAEMSGSIZE) : static_cast<int>(taken);
}
