#include "harness/test_session.h"

#include <gtest/gtest.h>

#include <winspool.h>

#include <cstring>

namespace {

using Bytes = std::vector<BYTE>;

void put_text(Bytes& block, std::size_t at, const std::u16string& text) {
    std::memcpy(block.data() + at, text.data(), text.size() * 2);
}

class SpoolerState : public testing::Test {
protected:
    static HANDLE open(std::u16string name, ACCESS_MASK access) {
        PRINTER_DEFAULTSW defaults{nullptr, nullptr, access};
        HANDLE handle = nullptr;
        return OpenPrinterW(name.data(), &handle, &defaults) ? handle : nullptr;
    }
    static DWORD send(HANDLE monitor, const WCHAR* command, Bytes input, Bytes* output = nullptr,
                      DWORD* needed = nullptr) {
        DWORD ignored = 0, status = 99;
        EXPECT_TRUE(XcvDataW(monitor, command, input.data(), static_cast<DWORD>(input.size()),
                             output == nullptr ? nullptr : output->data(),
                             output == nullptr ? 0 : static_cast<DWORD>(output->size()),
                             needed == nullptr ? &ignored : needed, &status));
        return status;
    }

    TestSession test;
};

TEST_F(SpoolerState, CustomMonitorsKeepTheConfigurationThatTheyWereSent) {
    for (const auto& [dll, size] : {std::pair{u"dryxmon.dll", 4112u}, std::pair{u"other.dll", 6168u}}) {
        SCOPED_TRACE(size);
        TestSession one;
        one.start();
        auto& spooler = one.machine.spooler;
        std::u16string name = u"Own Port", environment = u"Windows x64", file = dll;
        MONITOR_INFO_2W info{name.data(), environment.data(), file.data()};
        ASSERT_TRUE(AddMonitorW(nullptr, 2, reinterpret_cast<BYTE*>(&info)));
        HANDLE monitor = open(u",XcvMonitor Own Port", SERVER_ACCESS_ADMINISTER);
        ASSERT_NE(monitor, nullptr);

        Bytes request(964); // only the name, the version, the protocol and the size
        put_text(request, 0, u"DRYX1");
        request[128] = request[132] = 1;
        request[136] = 964 & 0xFF;
        request[137] = 964 >> 8;
        EXPECT_EQ(send(monitor, TEXT("AddPort"), request), 0u);
        EXPECT_EQ(send(monitor, TEXT("AddPort"), request), DWORD{ERROR_ALREADY_EXISTS});
        EXPECT_EQ(spooler.ports.back().monitor, u"Own Port");

        const Bytes port(request.begin(), request.begin() + 12); // with its terminator
        DWORD needed = 0;
        Bytes block(size - 1);
        EXPECT_EQ(send(monitor, TEXT("GetConfig"), port, &block, &needed), DWORD{ERROR_INSUFFICIENT_BUFFER});
        EXPECT_EQ(needed, size);
        block.resize(size);
        EXPECT_EQ(send(monitor, TEXT("GetConfig"), Bytes(12), &block), DWORD{ERROR_INVALID_PARAMETER});
        EXPECT_EQ(send(monitor, TEXT("GetConfig"), {'X', 0, 0, 0}, &block), DWORD{ERROR_UNKNOWN_PORT});
        EXPECT_EQ(send(monitor, TEXT("GetConfig"), port, &block), 0u);
        EXPECT_EQ(block, spooler.ports.back().configuration);
        EXPECT_EQ(std::memcmp(block.data() + 8, port.data(), port.size()), 0) << "the port's name";

        block[size - 4] = 1;
        EXPECT_EQ(send(monitor, TEXT("SetConfig"), Bytes(block.begin(), block.end() - 1)),
                  DWORD{ERROR_INVALID_DATA});
        EXPECT_EQ(send(monitor, TEXT("SetConfig"), Bytes(size)), DWORD{ERROR_UNKNOWN_PORT})
            << "a block without a name";
        EXPECT_EQ(send(monitor, TEXT("SetConfig"), block), 0u);
        EXPECT_EQ(spooler.ports.back().configuration, block);
        EXPECT_TRUE(ClosePrinter(monitor));
    }
}

TEST_F(SpoolerState, QueuesMayResistRemoval) {
    platform::PrintQueue locked, held, busy;
    locked.name = u"locked";
    locked.deny_open = true;
    held.name = u"held";
    held.deny_delete = true;
    busy.name = u"busy";
    busy.jobs = 2;
    test.machine.spooler.queues = {locked, held, busy};
    test.machine.spooler.default_printer = u"busy";
    test.start();

    EXPECT_EQ(open(u"locked", PRINTER_ALL_ACCESS), nullptr);
    EXPECT_EQ(platform::last_error(), DWORD{ERROR_ACCESS_DENIED});
    HANDLE reader = open(u"locked", PRINTER_ACCESS_USE);
    EXPECT_NE(reader, nullptr);
    EXPECT_TRUE(ClosePrinter(reader));

    HANDLE queue = open(u"held", PRINTER_ALL_ACCESS);
    EXPECT_FALSE(DeletePrinter(queue));
    EXPECT_EQ(platform::last_error(), DWORD{ERROR_ACCESS_DENIED});
    EXPECT_TRUE(ClosePrinter(queue));

    queue = open(u"busy", PRINTER_ALL_ACCESS);
    EXPECT_TRUE(DeletePrinter(queue));
    EXPECT_TRUE(ClosePrinter(queue));
    ASSERT_EQ(test.machine.spooler.queues.size(), 3u) << "it waits for its jobs";
    EXPECT_TRUE(test.machine.spooler.queues[2].deleting);
    EXPECT_EQ(test.machine.spooler.default_printer, u"locked");
}

TEST_F(SpoolerState, AConnectionToAnotherMachinesQueueIsNotLocal) {
    platform::PrintQueue own, connection;
    own.name = u"own";
    own.attributes = PRINTER_ATTRIBUTE_LOCAL;
    connection.name = u"\\\\server\\label";
    connection.attributes = 0x10; // PRINTER_ATTRIBUTE_NETWORK
    test.machine.spooler.queues = {connection, own};
    test.start();
    for (const DWORD level : {1u, 2u}) {
        std::vector<BYTE> records(2000);
        DWORD needed = 0, count = 0;
        ASSERT_TRUE(EnumPrintersW(PRINTER_ENUM_LOCAL, nullptr, level, records.data(), 2000, &needed, &count));
        EXPECT_EQ(count, 1u) << level;
        if (level == 2) {
            EXPECT_EQ(std::u16string(reinterpret_cast<PRINTER_INFO_2W*>(records.data())->pPrinterName),
                      u"own");
        }
    }
}

TEST_F(SpoolerState, NothingIsAnsweredWhileTheServiceIsStopped) {
    test.machine.services[0].now = {{SERVICE_STOP_PENDING, 1000}, {SERVICE_STOPPED, 1000}, {SERVICE_RUNNING}};
    platform::Session& session = test.start();
    DWORD needed = 99, count = 99;
    for (int second = 0; second < 2; ++second) {
        EXPECT_EQ(open(u"Print to File", PRINTER_ACCESS_USE), nullptr);
        EXPECT_FALSE(EnumPortsW(nullptr, 2, nullptr, 0, &needed, &count));
        EXPECT_EQ(platform::last_error(), DWORD{RPC_S_SERVER_UNAVAILABLE});
        session.clock.pass(1000);
    }
    EXPECT_EQ(needed, 99u);
    EXPECT_FALSE(EnumPortsW(nullptr, 2, nullptr, 0, &needed, &count));
    EXPECT_EQ(platform::last_error(), DWORD{ERROR_INSUFFICIENT_BUFFER});
}

TEST_F(SpoolerState, WhatIsNotModelledStopsTheRun) {
    platform::Session& session = test.start();
    HANDLE monitor = open(u",XcvMonitor Local Port", SERVER_ACCESS_ADMINISTER);
    DWORD needed = 0, status = 0;
    EXPECT_THROW(XcvDataW(monitor, TEXT("AddPort"), nullptr, 0, nullptr, 0, &needed, &status),
                 platform::RunStopped);
    EXPECT_NE(session.gate.stop_reason().find("Local Port"), std::string::npos);
    app.log_handle = INVALID_HANDLE_VALUE; // a stopped run takes no more calls
}

} // namespace
