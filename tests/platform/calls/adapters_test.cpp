// The list of adapters, and sockets on what it lists. The machine has at least one adapter with an address.
// Before any header that brings in the base platform, as the platform demands of this one.
#include <winsock2.h>

#include "harness/calls_fixture.h"

#include <iphlpapi.h>

#include <vector>

namespace {

class AdapterList : public CallsTest {
protected:
    // Room that begins where a record may.
    static IP_ADAPTER_INFO* room(std::vector<IP_ADAPTER_INFO>& records, ULONG bytes) {
        records.resize(bytes / sizeof(IP_ADAPTER_INFO) + 1);
        return records.data();
    }

    std::vector<IP_ADAPTER_INFO> records_;
};

TEST_F(AdapterList, TellsTheSizeThatItNeeds) {
    ULONG size = 0;
    ASSERT_EQ(GetAdaptersInfo(nullptr, &size), DWORD{ERROR_BUFFER_OVERFLOW});
    const ULONG needed = size;
    EXPECT_GE(needed, sizeof(IP_ADAPTER_INFO));
    IP_ADAPTER_INFO* first = room(records_, needed);
    size = needed - 1;
    EXPECT_EQ(GetAdaptersInfo(first, &size), DWORD{ERROR_BUFFER_OVERFLOW});
    EXPECT_EQ(size, needed);
    EXPECT_EQ(GetAdaptersInfo(first, &size), DWORD{ERROR_SUCCESS});
    EXPECT_EQ(GetAdaptersInfo(first, nullptr), DWORD{ERROR_INVALID_PARAMETER});
}

TEST_F(AdapterList, HoldsAddressesThatSocketsCanHave) {
    WSADATA data;
    ASSERT_EQ(WSAStartup(0x0202, &data), 0);
    ULONG size = 0;
    GetAdaptersInfo(nullptr, &size);
    const IP_ADAPTER_INFO* adapter = room(records_, size);
    ASSERT_EQ(GetAdaptersInfo(records_.data(), &size), DWORD{ERROR_SUCCESS});
    int addresses = 0;
    for (; adapter != nullptr; adapter = adapter->Next) {
        EXPECT_GT(std::string(adapter->Description).size(), 0u);
        EXPECT_EQ(adapter->AddressLength, 6u);
        sockaddr_in name{};
        name.sin_family = AF_INET;
        name.sin_addr.s_addr = inet_addr(adapter->IpAddressList.IpAddress.String);
        ASSERT_NE(name.sin_addr.s_addr, INADDR_NONE);
        if (name.sin_addr.s_addr == 0)
            continue; // an adapter without an address
        ++addresses;
        const SOCKET handle = socket(AF_INET, SOCK_DGRAM, IPPROTO_UDP);
        EXPECT_EQ(bind(handle, reinterpret_cast<const sockaddr*>(&name), sizeof name), 0);
        sockaddr_in bound{};
        int length = sizeof bound;
        EXPECT_EQ(getsockname(handle, reinterpret_cast<sockaddr*>(&bound), &length), 0);
        EXPECT_EQ(bound.sin_addr.s_addr, name.sin_addr.s_addr);
        EXPECT_NE(bound.sin_port, 0);
        EXPECT_EQ(closesocket(handle), 0);
    }
    EXPECT_GE(addresses, 1);
    EXPECT_EQ(WSACleanup(), 0);
}

} // namespace
