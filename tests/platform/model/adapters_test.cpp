#include "harness/test_session.h"

#include <gtest/gtest.h>

#include <iphlpapi.h>
#include <winerror.h>

#include <vector>

namespace {

class Adapters : public testing::Test {
protected:
    // The buffer begins where an adapter record may, whatever its size.
    static IP_ADAPTER_INFO* buffer_of(std::vector<std::max_align_t>& storage, ULONG bytes) {
        storage.assign(bytes / sizeof(std::max_align_t) + 1, {});
        return reinterpret_cast<IP_ADAPTER_INFO*>(storage.data());
    }

    TestSession test;
    std::vector<std::max_align_t> storage;
};

TEST_F(Adapters, AreListedInOrderWithAllTheirAddresses) {
    platform::Adapter two;
    two.description = std::string(200, 'd');
    two.addresses = {"10.0.0.2", "192.168.100.200"};
    platform::Adapter none;
    none.addresses = {};
    test.machine.adapters = {two, none};
    test.start();

    ULONG size = sizeof(IP_ADAPTER_INFO);
    IP_ADAPTER_INFO* info = buffer_of(storage, size);
    EXPECT_EQ(GetAdaptersInfo(info, &size), DWORD{ERROR_BUFFER_OVERFLOW});
    EXPECT_EQ(size, 2 * sizeof(IP_ADAPTER_INFO) + sizeof(IP_ADDR_STRING));
    EXPECT_EQ(static_cast<unsigned char>(info->Description[0]), 0xCD) << "nothing in it may be read";

    info = buffer_of(storage, size);
    ASSERT_EQ(GetAdaptersInfo(info, &size), 0u);
    EXPECT_EQ(std::string(info->Description), std::string(131, 'd'));
    EXPECT_STREQ(info->IpAddressList.IpAddress.String, "10.0.0.2");
    ASSERT_NE(info->IpAddressList.Next, nullptr);
    EXPECT_STREQ(info->IpAddressList.Next->IpAddress.String, "192.168.100.200");
    EXPECT_EQ(info->IpAddressList.Next->Next, nullptr);
    ASSERT_NE(info->Next, nullptr);
    EXPECT_STREQ(info->Next->IpAddressList.IpAddress.String, "0.0.0.0");
    EXPECT_EQ(info->Next->Next, nullptr);
}

TEST_F(Adapters, MayBeMissingOrFail) {
    test.machine.adapters.clear();
    platform::Fault fault;
    fault.call = "GetAdaptersInfo";
    fault.nth = 2;
    test.machine.faults = {fault};
    test.start();
    ULONG size = 0;
    EXPECT_EQ(GetAdaptersInfo(nullptr, &size), DWORD{ERROR_NO_DATA});
    EXPECT_EQ(GetAdaptersInfo(nullptr, &size), DWORD{ERROR_NOT_SUPPORTED});
}

} // namespace
