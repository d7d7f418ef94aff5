// The network as the machine's data tells it, asked through the socket calls.
#include "harness/test_session.h"
#include "machine/slp_agent.h"

#include <gtest/gtest.h>

#include <winsock2.h>
#include <ws2tcpip.h>

#include <algorithm>
#include <vector>

namespace {

// The bytes that a client of the protocol sends for all attributes of raw printers, by RFC 2608,
// section 10.3.
const std::string good_request("\x02\x06\x00\x00\x38\x00\x00\x00\x00\x00\x20\x10\x00\x02"
                               "en\x00\x00\x00\x17service:printer:raw-tcp\x00\x07"
                               "DEFAULT\x00\x00\x00\x00",
                               56);

platform::ScriptedDatagram datagram(const std::string& from, const std::string& bytes) {
    return {from, {bytes.begin(), bytes.end()}};
}

class ScriptedNetwork : public testing::Test {
protected:
    ScriptedNetwork() {
        platform::Adapter adapter;
        adapter.addresses = {"10.0.0.2", "10.0.0.3"};
        adapter.searches = {{datagram("10.0.0.7", "first"), datagram("10.0.0.8", "second")},
                            {datagram("10.0.0.9", "later")}};
        platform::Adapter quiet;
        quiet.addresses = {"10.1.0.2"};
        test.machine.adapters = {adapter, quiet};
    }
    void start() {
        session = &test.start();
        WSADATA data;
        ASSERT_EQ(WSAStartup(0x0202, &data), 0);
    }

    static sockaddr_in name_of(const char* address, USHORT port) {
        sockaddr_in name{};
        name.sin_family = AF_INET;
        name.sin_port = htons(port);
        name.sin_addr.s_addr = inet_addr(address);
        return name;
    }
    static int bind_to(SOCKET handle, const char* address, USHORT port = 0) {
        const sockaddr_in name = name_of(address, port);
        return bind(handle, reinterpret_cast<const sockaddr*>(&name), sizeof name);
    }

    // Sends one search from the address and gives what comes back, as "sender text", up to the time-out.
    std::vector<std::string> search(const char* address, const std::string& request,
                                    const char* to = "239.255.255.253", USHORT port = 427) {
        const SOCKET handle = socket(AF_INET, SOCK_DGRAM, IPPROTO_UDP);
        const DWORD second = 1000;
        EXPECT_EQ(setsockopt(handle, SOL_SOCKET, SO_RCVTIMEO, reinterpret_cast<const char*>(&second), 4), 0);
        EXPECT_EQ(bind_to(handle, address), 0);
        const sockaddr_in target = name_of(to, port);
        const int length = static_cast<int>(request.size());
        EXPECT_EQ(sendto(handle, request.data(), length, 0, reinterpret_cast<const sockaddr*>(&target), 16),
                  length);
        std::vector<std::string> answers;
        char buffer[100];
        sockaddr_in from{};
        int from_length = sizeof from;
        const std::uint32_t before = session->clock.ticks();
        for (int got = 0; got >= 0;) {
            got =
                recvfrom(handle, buffer, sizeof buffer, 0, reinterpret_cast<sockaddr*>(&from), &from_length);
            if (got >= 0)
                answers.push_back(std::to_string(from.sin_addr.S_un.S_un_b.s_b4) + " " +
                                  std::string(buffer, static_cast<std::size_t>(got)));
        }
        EXPECT_EQ(WSAGetLastError(), WSAETIMEDOUT);
        EXPECT_EQ(session->clock.ticks() - before, 1000u) << "silence passes on the machine's clock";
        EXPECT_EQ(closesocket(handle), 0);
        return answers;
    }

    TestSession test;
    platform::Session* session = nullptr;
};

using Answers = std::vector<std::string>;

TEST_F(ScriptedNetwork, AnswersSuccessiveSearchesOfAnAdapter) {
    start();
    EXPECT_EQ(search("10.0.0.2", good_request), (Answers{"7 first", "8 second"}));
    EXPECT_EQ(search("10.1.0.2", good_request), Answers{});
    EXPECT_EQ(search("10.0.0.3", good_request), Answers{"9 later"}) << "the adapter's second address";
    EXPECT_EQ(search("10.0.0.2", good_request), Answers{});
}

TEST_F(ScriptedNetwork, AnswersOnlyWellFormedRequestsToTheGroup) {
    start();
    std::string odd = good_request;
    odd[4] = '\x37'; // one byte less than there are
    EXPECT_EQ(search("10.0.0.2", odd), Answers{});
    EXPECT_EQ(search("10.0.0.2", good_request, "239.255.255.253", 428), Answers{});
    EXPECT_EQ(search("10.0.0.2", good_request, "10.0.0.7"), Answers{});
    EXPECT_EQ(search("10.0.0.2", good_request), (Answers{"7 first", "8 second"})) << "none was used up";
}

TEST_F(ScriptedNetwork, KnowsItsAddressesAndTheDiscoveryPort) {
    const struct {
        const char* name;
        const char* address;
        USHORT port;
        int option;
        bool taken;
        int expected;
    } cases[] = {
        {"free", "0.0.0.0", 427, SO_EXCLUSIVEADDRUSE, false, 0},
        {"taken", "0.0.0.0", 427, SO_EXCLUSIVEADDRUSE, true, WSAEADDRINUSE},
        {"shared", "0.0.0.0", 427, SO_REUSEADDR, true, 0},
        {"another port", "10.0.0.2", 428, SO_EXCLUSIVEADDRUSE, true, 0},
        {"no adapter's address", "10.0.0.4", 0, SO_REUSEADDR, false, WSAEADDRNOTAVAIL},
    };
    start();
    for (const auto& [name, address, port, option, taken, expected] : cases) {
        test.machine.discovery_port_taken = taken;
        const SOCKET handle = socket(AF_INET, SOCK_DGRAM, IPPROTO_UDP);
        const DWORD on = 1;
        EXPECT_EQ(setsockopt(handle, SOL_SOCKET, option, reinterpret_cast<const char*>(&on), 4), 0);
        const int result = bind_to(handle, address, port);
        EXPECT_EQ(result == 0 ? 0 : WSAGetLastError(), expected) << name;
        EXPECT_EQ(closesocket(handle), 0);
    }
}

TEST_F(ScriptedNetwork, FaultsGoByAdapterAndLeakedSocketsShow) {
    test.looks_at_leftovers = false;
    platform::Fault fault;
    fault.call = "sendto";
    fault.argument = "10.1.0.2";
    test.machine.faults = {fault};
    start();
    const sockaddr_in group = name_of("239.255.255.253", 427);
    for (const bool second : {false, true}) {
        const SOCKET handle = socket(AF_INET, SOCK_DGRAM, IPPROTO_UDP);
        EXPECT_EQ(bind_to(handle, second ? "10.1.0.2" : "10.0.0.2"), 0);
        EXPECT_EQ(sendto(handle, "x", 1, 0, reinterpret_cast<const sockaddr*>(&group), 16), second ? -1 : 1);
    }
    EXPECT_EQ(WSAGetLastError(), WSAENETUNREACH);
    const std::vector<std::string> open = session->handles.open_kinds();
    EXPECT_EQ(std::count(open.begin(), open.end(), "socket"), 2);
}

TEST_F(ScriptedNetwork, RefusesRealTrafficThatCouldLeaveTheComputer) {
    test.machine.adapters[0].real_sockets = true;
    start();
    // Either this computer has a default route, or nothing in it has this address.
    const SOCKET handle = socket(AF_INET, SOCK_DGRAM, IPPROTO_UDP);
    try {
        EXPECT_EQ(bind_to(handle, "10.0.0.2"), SOCKET_ERROR);
        EXPECT_EQ(WSAGetLastError(), WSAEADDRNOTAVAIL);
    } catch (const platform::RunStopped& stopped) {
        app.log_handle = INVALID_HANDLE_VALUE; // a stopped run takes no more calls, nor a close
        EXPECT_NE(std::string(stopped.what()).find("10.0.0.2"), std::string::npos) << stopped.what();
    }
}

} // namespace
