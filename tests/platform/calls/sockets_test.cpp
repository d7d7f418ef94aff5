// The socket calls over real loopback, by the platform's documentation.
// Before any header that brings in the base platform, as the platform demands of this one.
#include <winsock2.h>
#include <ws2tcpip.h>

#include "harness/calls_fixture.h"

#include <cstdint>
#include <string>

namespace {

// What setsockopt and recvfrom take as a time-out in milliseconds; real time, so it is short.
constexpr DWORD brief = 20;
constexpr DWORD patient = 5000;

int set_option(SOCKET handle, int level, int option, const DWORD& value) {
    return setsockopt(handle, level, option, reinterpret_cast<const char*>(&value), sizeof value);
}

sockaddr_in name_of(const char* address, int port) {
    sockaddr_in name{};
    name.sin_family = AF_INET;
    name.sin_port = htons(static_cast<USHORT>(port));
    name.sin_addr.s_addr = inet_addr(address);
    return name;
}

int bind_to(SOCKET handle, const sockaddr_in& name) {
    return bind(handle, reinterpret_cast<const sockaddr*>(&name), sizeof name);
}

int send_text(SOCKET handle, const std::string& text, const sockaddr_in& to) {
    return sendto(handle, text.data(), static_cast<int>(text.size()), 0,
                  reinterpret_cast<const sockaddr*>(&to), sizeof to);
}

class Sockets : public CallsTest {
protected:
    Sockets() {
        WSADATA data;
        EXPECT_EQ(WSAStartup(0x0202, &data), 0);
        EXPECT_EQ(data.wVersion, 0x0202);
    }
    ~Sockets() override { EXPECT_EQ(WSACleanup(), 0); }

    SOCKET open() { return socket(AF_INET, SOCK_DGRAM, IPPROTO_UDP); }

    // A socket on a loopback address with a free port, and its name.
    SOCKET open_bound(const char* address, sockaddr_in& name) {
        const SOCKET handle = open();
        EXPECT_EQ(set_option(handle, SOL_SOCKET, SO_RCVTIMEO, patient), 0);
        EXPECT_EQ(bind_to(handle, name_of(address, 0)), 0);
        int length = sizeof name;
        EXPECT_EQ(getsockname(handle, reinterpret_cast<sockaddr*>(&name), &length), 0);
        EXPECT_NE(name.sin_port, 0);
        return handle;
    }
};

TEST_F(Sockets, DatagramsArriveInOrderWithTheirSender) {
    sockaddr_in first_name, second_name;
    const SOCKET first = open_bound("127.0.0.1", first_name);
    const SOCKET second = open_bound("127.0.0.2", second_name);
    EXPECT_EQ(send_text(second, "one", first_name), 3);
    EXPECT_EQ(send_text(second, "", first_name), 0);
    EXPECT_EQ(send_text(second, "two", first_name), 3);
    for (const std::string expected : {"one", "", "two"}) {
        char buffer[16];
        sockaddr_in from{};
        int length = sizeof from;
        const int received =
            recvfrom(first, buffer, sizeof buffer, 0, reinterpret_cast<sockaddr*>(&from), &length);
        ASSERT_EQ(received, static_cast<int>(expected.size()));
        EXPECT_EQ(std::string(buffer, expected.size()), expected);
        EXPECT_EQ(length, 16);
        EXPECT_EQ(from.sin_addr.s_addr, inet_addr("127.0.0.2"));
        EXPECT_EQ(from.sin_port, second_name.sin_port);
    }
    EXPECT_EQ(closesocket(first), 0);
    EXPECT_EQ(closesocket(second), 0);
}

TEST_F(Sockets, SilenceAndLargeDatagramsAreFailures) {
    sockaddr_in name;
    const SOCKET handle = open_bound("127.0.0.1", name);
    ASSERT_EQ(send_text(handle, "0123456789", name), 10);
    char buffer[5] = "";
    EXPECT_EQ(recvfrom(handle, buffer, 4, 0, nullptr, nullptr), SOCKET_ERROR);
    EXPECT_EQ(WSAGetLastError(), WSAEMSGSIZE);
    EXPECT_STREQ(buffer, "0123");
    // The rest of the datagram is gone.
    ASSERT_EQ(set_option(handle, SOL_SOCKET, SO_RCVTIMEO, brief), 0);
    EXPECT_EQ(recvfrom(handle, buffer, 4, 0, nullptr, nullptr), SOCKET_ERROR);
    EXPECT_EQ(WSAGetLastError(), WSAETIMEDOUT);
    EXPECT_EQ(closesocket(handle), 0);
}

TEST_F(Sockets, AddressesAreTakenOrMissing) {
    sockaddr_in name;
    const SOCKET holder = open_bound("127.0.0.1", name);
    const SOCKET other = open();
    const DWORD on = 1;
    EXPECT_EQ(set_option(other, SOL_SOCKET, SO_EXCLUSIVEADDRUSE, on), 0);
    EXPECT_EQ(bind_to(other, name), SOCKET_ERROR);
    EXPECT_EQ(WSAGetLastError(), WSAEADDRINUSE);
    // 192.0.2.0/24 is kept for documents: no machine has an address of it.
    EXPECT_EQ(bind_to(other, name_of("192.0.2.77", 0)), SOCKET_ERROR);
    EXPECT_EQ(WSAGetLastError(), WSAEADDRNOTAVAIL);
    EXPECT_EQ(bind_to(holder, name_of("127.0.0.1", 0)), SOCKET_ERROR) << "a second bind";
    EXPECT_EQ(WSAGetLastError(), WSAEINVAL);
    EXPECT_EQ(closesocket(holder), 0);
    EXPECT_EQ(closesocket(other), 0);
}

TEST_F(Sockets, CallsCheckWhatTheyGet) {
    const SOCKET handle = open();
    const char ttl = static_cast<char>(255);
    EXPECT_EQ(setsockopt(handle, IPPROTO_IP, IP_MULTICAST_TTL, &ttl, 1), 0) << "one byte will do";
    EXPECT_EQ(setsockopt(handle, SOL_SOCKET, SO_RCVTIMEO, &ttl, 1), SOCKET_ERROR);
    EXPECT_EQ(WSAGetLastError(), WSAEFAULT);
    const sockaddr_in name = name_of("127.0.0.1", 0);
    EXPECT_EQ(bind(handle, reinterpret_cast<const sockaddr*>(&name), 15), SOCKET_ERROR);
    EXPECT_EQ(WSAGetLastError(), WSAEFAULT);
    char byte = 0;
    EXPECT_EQ(set_option(handle, SOL_SOCKET, SO_RCVTIMEO, brief), 0);
    EXPECT_EQ(recvfrom(handle, &byte, 1, 0, nullptr, nullptr), SOCKET_ERROR) << "not bound";
    EXPECT_EQ(WSAGetLastError(), WSAEINVAL);
    EXPECT_EQ(closesocket(handle), 0);
    will_misuse();
    EXPECT_EQ(closesocket(handle), SOCKET_ERROR);
    EXPECT_EQ(WSAGetLastError(), WSAENOTSOCK);
}

using SocketsLibrary = CallsTest;

TEST_F(SocketsLibrary, IsNeededByEverySocketCall) {
    EXPECT_EQ(socket(AF_INET, SOCK_DGRAM, IPPROTO_UDP), INVALID_SOCKET);
    EXPECT_EQ(WSAGetLastError(), WSANOTINITIALISED);
    EXPECT_EQ(WSACleanup(), SOCKET_ERROR);
    EXPECT_EQ(WSAGetLastError(), WSANOTINITIALISED);
    WSADATA data;
    EXPECT_EQ(WSAStartup(0, &data), WSAVERNOTSUPPORTED);
    // Starts are counted: the library ends with the last clean-up.
    ASSERT_EQ(WSAStartup(0x0202, &data), 0);
    ASSERT_EQ(WSAStartup(0x0202, &data), 0);
    EXPECT_EQ(WSACleanup(), 0);
    const SOCKET handle = socket(AF_INET, SOCK_DGRAM, IPPROTO_UDP);
    EXPECT_NE(handle, INVALID_SOCKET);
    EXPECT_EQ(closesocket(handle), 0);
    EXPECT_EQ(WSACleanup(), 0);
    EXPECT_EQ(WSACleanup(), SOCKET_ERROR);
}

TEST_F(SocketsLibrary, ReadsAddressesInTheirDocumentedForms) {
    const struct {
        const char* text;
        std::uint32_t expected; // the first octet is the low byte
    } cases[] = {
        {"10.77.0.2", 0x02004d0a},
        {"0.0.0.0", 0},
        {"255.255.255.255", INADDR_NONE},
        {"127.1", 0x0100007f},
        {"10.1.515", 0x0302010a},
        {"16909060", 0x04030201},
        {"0x7f.0.0.010", 0x0800007f},
        {"10.0.0.2 x", 0x0200000a},
        {" ", 0},
        {"", INADDR_NONE},
        {"10.0.0", 0x0000000a},
        {"10.0.0.256", INADDR_NONE},
        {"10.0.0.", INADDR_NONE},
        {"1.2.3.4.5", INADDR_NONE},
        {"10.0.0.2x", INADDR_NONE},
        {"printer", INADDR_NONE},
        {"4294967296", INADDR_NONE},
        {"256.1", INADDR_NONE},
        {"08.0.0.1", INADDR_NONE},
        {"-1.0.0.1", INADDR_NONE},
    };
    for (const auto& [text, expected] : cases)
        EXPECT_EQ(inet_addr(text), expected) << '"' << text << '"';
    EXPECT_EQ(htons(427), 0xab01);
    EXPECT_EQ(ntohs(0xab01), 427);
}

} // namespace
