#include "discovery/network_search.h"

#include <winsock2.h>
#include <ws2tcpip.h>

#include <iphlpapi.h>

#include "discovery/slp.h"
#include "support/install_log.h"
#include "support/memory.h"
#include "support/text.h"

#include <failed_step.h>

#include <cstdio>
#include <iterator>

AdapterEntry adapter_table[adapter_capacity];
DWORD adapter_count;

namespace {

constexpr WORD sockets_version = 0x0202;
constexpr ULONG first_adapter_buffer = 648; // bytes: one IP_ADAPTER_INFO of a 32-bit program
constexpr USHORT discovery_port = 427;
constexpr char discovery_group[] = "239.255.255.253";
constexpr DWORD receive_timeout = 1000; // milliseconds
constexpr int receive_turns = 10;       // for each interface

// Link-local addresses, 169.254.x.x, in network order in a little-endian word. The test is one of bits: it
// takes 169.255.x.x and 171.254.x.x with it, and the all-ones value of a text that isn't an address.
constexpr DWORD link_local_bits = 0xFEA9;

int usable_address(DWORD address) {
    return address != 0 && (address & link_local_bits) != link_local_bits;
}

void add_adapters(const IP_ADAPTER_INFO* adapter) {
    for (; adapter != nullptr; adapter = adapter->Next) {
        const DWORD address = inet_addr(adapter->IpAddressList.IpAddress.String);
        if (!usable_address(address))
            continue;
        if (adapter_count == adapter_capacity) {
            log_line(TEXT("Adapter table full\r\n"));
            return;
        }
        AdapterEntry* entry = &adapter_table[adapter_count++];
        entry->address = address;
        copy_ansi(entry->description, std::size(entry->description), adapter->Description);
    }
}

// A list of the size that the first call asks for, or of one adapter. Null when there is no memory.
void* size_adapter_list(ULONG* size) {
    *size = first_adapter_buffer;
    void* list = allocate_bytes(*size);
    if (list == nullptr ||
        GetAdaptersInfo(static_cast<IP_ADAPTER_INFO*>(list), size) != ERROR_BUFFER_OVERFLOW)
        return list;
    release_bytes(list);
    return allocate_bytes(*size);
}

sockaddr_in internet_address(DWORD address, USHORT port) {
    sockaddr_in name = {};
    name.sin_family = AF_INET;
    name.sin_addr.s_addr = address;
    name.sin_port = htons(port);
    return name;
}

int bind_to(SOCKET handle, DWORD address, USHORT port) {
    const sockaddr_in name = internet_address(address, port);
    return bind(handle, reinterpret_cast<const sockaddr*>(&name), sizeof name);
}

int set_socket_option(SOCKET handle, int option, DWORD value) {
    return setsockopt(handle, SOL_SOCKET, option, reinterpret_cast<const char*>(&value), sizeof value);
}

// The longest way that a request may go. This option takes a single byte.
int set_multicast_ttl(SOCKET handle) {
    const char ttl = static_cast<char>(255);
    return setsockopt(handle, IPPROTO_IP, IP_MULTICAST_TTL, &ttl, sizeof ttl);
}

// The socket's options and its address: 1, or 0 when the whole search has to stop. Binding is all that ties
// the multicast to the interface.
int prepare_socket(SOCKET handle, DWORD address) {
    int result = set_socket_option(handle, SO_RCVTIMEO, receive_timeout);
    if (result < 0) {
        log_failure(TEXT("failed to SO_RCVTIMEO %d %d\r\n"), result, WSAGetLastError());
        return 0;
    }
    result = set_socket_option(handle, SO_REUSEADDR, 1);
    if (result < 0) {
        log_failure(TEXT("failed to SO_REUSEADDR %d %d\r\n"), result, WSAGetLastError());
        return 0;
    }
    if (set_multicast_ttl(handle) < 0) {
        log_failure(TEXT("failed to IP_MULTICAST_TTL\r\n"));
        return 0;
    }
    // The platform refuses this one behind SO_REUSEADDR; nothing depends on it.
    set_socket_option(handle, SO_EXCLUSIVEADDRUSE, 1);
    if (bind_to(handle, address, 0) == SOCKET_ERROR) {
        log_failure(TEXT("bind failed with:%d \r\n"), WSAGetLastError());
        return 0;
    }
    return 1;
}

int send_request(SOCKET handle) {
    BYTE request[1000] = {};
    build_slp_request(request);
    const int length = static_cast<int>(read_be_number(3, request + 2));
    const sockaddr_in group = internet_address(inet_addr(discovery_group), discovery_port);
    if (sendto(handle, reinterpret_cast<const char*>(request), length, 0,
               reinterpret_cast<const sockaddr*>(&group), sizeof group) < 0) {
        log_failure(TEXT("failed to send slp\r\n"));
        return 0;
    }
    return 1;
}

// Takes datagrams until a second of silence, a failure or the last turn.
void receive_replies(SOCKET handle, const char* model_tag, PrinterFound found) {
    char datagram[4000];
    for (int turn = 0; turn < receive_turns; ++turn) {
        sockaddr_in sender = {};
        int sender_size = sizeof sender;
        const int length = recvfrom(handle, datagram, sizeof datagram, 0,
                                    reinterpret_cast<sockaddr*>(&sender), &sender_size);
        if (length < 0)
            return;
        char address[printer_address_capacity];
        char name[printer_name_capacity];
        if (read_slp_reply(reinterpret_cast<const BYTE*>(datagram), length, model_tag, sender.sin_addr.s_addr,
                           address, name))
            found(address, name);
    }
}

// 1 also when the request couldn't be sent, which ends this interface alone.
int search_with_socket(SOCKET handle, DWORD address, const char* model_tag, PrinterFound found) {
    if (!prepare_socket(handle, address))
        return 0;
    if (send_request(handle)) {
        receive_replies(handle, model_tag, found);
        log_line(TEXT("close interface\r\n"));
    }
    return 1;
}

int search_adapters(const char* model, PrinterFound found) {
    char model_tag[model_tag_capacity];
    format_ansi(model_tag, std::size(model_tag), "MDL:%s;", model);
    log_line(TEXT("Search for model %S\r\n"), model_tag);
    for (DWORD i = 0; i < adapter_count; ++i) {
        log_line(TEXT("Interface %d/%d\r\n"), i, adapter_count);
        const SOCKET handle = socket(AF_INET, SOCK_DGRAM, IPPROTO_UDP);
        if (handle == INVALID_SOCKET) {
            log_failure(TEXT("failed to open socket\r\n"));
            return 0;
        }
        const int served = search_with_socket(handle, adapter_table[i].address, model_tag, found);
        closesocket(handle);
        if (!served)
            return 0;
    }
    log_line(TEXT("find slp cleanup\r\n"));
    return 1;
}

// Without SO_EXCLUSIVEADDRUSE the bind could share the port with its holder and tell nothing.
int port_in_use(SOCKET handle) {
    set_socket_option(handle, SO_EXCLUSIVEADDRUSE, 1);
    return bind_to(handle, INADDR_ANY, discovery_port) == SOCKET_ERROR && WSAGetLastError() == WSAEADDRINUSE;
}

} // namespace

DWORD collect_adapters() {
    adapter_count = 0;
    ULONG size = 0;
    void* list = size_adapter_list(&size);
    // The second answer decides, also where the first was good already.
    if (list != nullptr && GetAdaptersInfo(static_cast<IP_ADAPTER_INFO*>(list), &size) == ERROR_SUCCESS)
        add_adapters(static_cast<const IP_ADAPTER_INFO*>(list));
    else
        log_failure(TEXT("Call to GetAdaptersInfo failed.\n"));
    release_bytes(list);
    return adapter_count;
}

int find_slp(const char* model, PrinterFound found) {
    if (collect_adapters() == 0) {
        log_failure(TEXT("No active networks found!\n"));
        return 0;
    }
    WSADATA data;
    const int error = WSAStartup(sockets_version, &data);
    if (error != 0) {
        char line[64];
        format_ansi(line, std::size(line), "WSAStartup failed with error:  %d\r\n", error);
        std::fputs(line, stdout);
        step_failed(TEXT("WSAStartup"));
        return 0;
    }
    const int served = search_adapters(model, found);
    WSACleanup();
    if (served)
        log_line(TEXT("find slp complete\r\n"));
    return served;
}

int probe_discovery_port() {
    WSADATA data;
    if (WSAStartup(sockets_version, &data) != 0) {
        step_failed(TEXT("WSAStartup"));
        return 0;
    }
    int in_use = 0;
    const SOCKET handle = socket(AF_INET, SOCK_DGRAM, IPPROTO_UDP);
    if (handle != INVALID_SOCKET) {
        in_use = port_in_use(handle);
        closesocket(handle);
    } else {
        step_failed(TEXT("probing the discovery port"));
    }
    WSACleanup();
    return in_use;
}
