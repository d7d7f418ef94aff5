// What keeps real traffic on this computer.
#include "calls/network/real_network.h"

#include <gtest/gtest.h>

#include <arpa/inet.h>
#include <ifaddrs.h>
#include <netinet/in.h>
#include <sstream>

namespace {

TEST(RealNetwork, FindsRoutesToElsewhere) {
    const std::string headings = "Iface Destination Gateway Flags RefCnt Use Metric Mask MTU Window IRTT\n";
    const std::string local = "trk-program 00004D0A 00000000 0001 0 0 0 00FFFFFF 0 0 0\n";
    const struct {
        const char* name;
        std::string table;
        bool expected;
    } cases[] = {
        {"unreadable", "", true},
        {"no route", headings, false},
        {"a local network alone", headings + local, false},
        {"a default route behind it",
         headings + local + "eth0 00000000 0100000A 0003 0 0 100 00000000 0 0 0\n", true},
        {"by a gateway", headings + "eth0 0002A8C0 0100000A 0003 0 0 0 00FFFFFF 0 0 0\n", true},
        {"half of all addresses", headings + "tun0 00000000 00000000 0001 0 0 0 00000080 0 0 0\n", true},
    };
    for (const auto& [name, table, expected] : cases) {
        std::istringstream stream(table);
        EXPECT_EQ(platform::lists_way_out(stream), expected) << name;
    }
}

TEST(RealNetwork, LeavesTheCardsOfThisComputerAlone) {
    EXPECT_EQ(platform::why_unsafe(0x7f00004d), "") << "loopback";
    ifaddrs* list = nullptr;
    ASSERT_EQ(getifaddrs(&list), 0);
    for (const ifaddrs* entry = list; entry != nullptr; entry = entry->ifa_next) {
        if (entry->ifa_addr == nullptr || entry->ifa_addr->sa_family != AF_INET)
            continue;
        const auto* address = reinterpret_cast<const sockaddr_in*>(entry->ifa_addr);
        const std::string name = entry->ifa_name;
        if (name != "lo" && !name.starts_with("trk")) {
            EXPECT_NE(platform::why_unsafe(ntohl(address->sin_addr.s_addr)), "") << name;
        }
    }
    freeifaddrs(list);
}

} // namespace
