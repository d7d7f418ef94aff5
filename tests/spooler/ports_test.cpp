#include "spooler/monitor_ports.h"
#include "spooler/port_monitor.h"
#include "spooler/tcp_port.h"

#include "harness/test_session.h"
#include "machine/little_endian.h"
#include "machine/port_blocks.h"

#include <algorithm>

#include <gtest/gtest.h>

namespace {

class Ports : public testing::Test {
protected:
    const platform::PrintPort* port(const std::u16string& name) const {
        for (const platform::PrintPort& candidate : test.machine.spooler.ports)
            if (candidate.name == name)
                return &candidate;
        return nullptr;
    }

    void expect_nothing_open() {
        EXPECT_EQ(platform::session().gate.count("ClosePrinter"), opened());
        EXPECT_TRUE(platform::session().memory.live().empty());
    }

    static unsigned opened() {
        unsigned count = 0;
        for (const platform::JournalEntry& entry : platform::session().gate.journal())
            count += entry.call == "OpenPrinterW" && !entry.failed;
        return count;
    }

    TestSession test;
};

const char opening[] = ",XcvMonitor Standard TCP/IP Port\r\n";

TEST_F(Ports, StandardPortIsRawOn9100) {
    test.start();
    EXPECT_EQ(add_tcp_port(TEXT("TRK_111.222.111.222"), "111.222.111.222"), 1);
    const platform::PrintPort* made = port(u"TRK_111.222.111.222");
    ASSERT_NE(made, nullptr);
    EXPECT_EQ(made->ip_address, u"111.222.111.222");
    EXPECT_EQ(made->host_address, u"111.222.111.222");
    EXPECT_EQ(made->protocol, 1u);
    EXPECT_EQ(made->port_number, 9100u);
    EXPECT_FALSE(made->snmp_enabled);
    EXPECT_EQ(add_tcp_port(TEXT("TRK_111.222.111.222"), "10.0.0.1"), 1)
        << "the monitor's refusal changes nothing";
    EXPECT_EQ(test.log(), std::string(opening) +
                              "sztPortName [TRK_111.222.111.222]\r\n"
                              "XcvData AddPort 1 0 0 0 [TRK_111.222.111.222]\r\n" +
                              opening +
                              "sztPortName [TRK_111.222.111.222]\r\n"
                              "XcvData AddPort 1 0 b7 0 [TRK_111.222.111.222]\r\n");
    EXPECT_EQ(delete_tcp_port("TRK_111.222.111.222"), 1);
    EXPECT_EQ(port(u"TRK_111.222.111.222"), nullptr);
    EXPECT_EQ(delete_tcp_port("TRK_111.222.111.222"), 1) << "the status isn't looked at";
    expect_nothing_open();
}

TEST_F(Ports, StandardPortFailuresStandInTheLog) {
    const std::u16string long_name(64, u'p');
    const std::string long_text(64, 'p');
    const struct {
        const char* name;
        const char* faulty;
        std::u16string port;
        std::string address;
        int result;
        std::string log;
    } adding[] = {
        {"no handle", "OpenPrinterW", u"P", "10.0.0.1", 0, "failed to open printer for port P\r\n"},
        {"no monitor", "XcvDataW", u"P", "10.0.0.1", 1,
         "sztPortName [P]\r\nXcvData AddPort 0 0 0 6ba [P]\r\n"},
        {"long name", "", long_name, "10.0.0.1", 0, "failed to open printer for port " + long_text + "\r\n"},
        {"long address", "", u"P", "1234567890123456", 0, "failed to open printer for port P\r\n"},
    };
    for (const auto& row : adding) {
        test.machine.faults = {{row.faulty, 1, true, 0x6ba, ""}};
        test.start();
        const std::size_t before = test.log().size();
        EXPECT_EQ(add_tcp_port(row.port.c_str(), row.address.c_str()), row.result) << row.name;
        EXPECT_EQ(test.log().substr(before), opening + row.log) << row.name;
        expect_nothing_open();
        test.stop();
    }
    const struct {
        const char* faulty;
        std::string port;
        std::string log;
        DWORD error;
    } deleting[] = {
        {"OpenPrinterW", "P", "failed to open printer for delete port P 6ba\r\n", 0x6ba},
        {"XcvDataW", "P", "Error in XcvData. 6ba 0\r\n", 0x6ba},
        {"", long_text, "failed to open printer for delete port " + long_text + " 6f\r\n", 0x6f},
    };
    for (const auto& row : deleting) {
        test.machine.faults = {{row.faulty, 1, true, 0x6ba, ""}};
        test.start();
        const std::size_t before = test.log().size();
        EXPECT_EQ(delete_tcp_port(row.port.c_str()), 0);
        EXPECT_EQ(GetLastError(), row.error);
        EXPECT_EQ(test.log().substr(before), row.log);
        expect_nothing_open();
        test.stop();
    }
}

// The block that a new custom port has, changed by hand as the program should do it.
class ExpectedBlock {
public:
    ExpectedBlock(std::size_t size, std::u16string_view port)
        : bytes(platform::new_configuration(static_cast<std::uint32_t>(size), port)) {}

    ExpectedBlock& number(std::size_t offset, std::uint8_t value) {
        bytes[offset] = value;
        bytes[offset + 1] = bytes[offset + 2] = bytes[offset + 3] = 0;
        return *this;
    }

    ExpectedBlock& text(std::size_t offset, std::u16string_view value) {
        std::ranges::copy(platform::utf16_bytes(value),
                          std::next(bytes.begin(), static_cast<std::ptrdiff_t>(offset)));
        return *this;
    }

    std::vector<std::uint8_t> bytes;
};

class CustomPorts : public Ports {
protected:
    void SetUp() override {
        MonitorInfo info = {};
        std::u16string_view(u"Label Port").copy(info.name, 63);
        std::u16string_view(u"lblmon.dll").copy(info.DLL32, 63);
        std::u16string_view(u"lblmon64.dll").copy(info.DLL64, 63);
        test.machine = platform::default_machine(platform::System::x86);
        test.start();
        ASSERT_EQ(install_monitor(&info), 1);
        ASSERT_EQ(install_dryx_monitor(), 1);
        before = test.log().size();
    }

    std::string log() const { return test.log().substr(before); }

    std::size_t before = 0;
};

TEST_F(CustomPorts, MonitorsAreAddedForThe32BitEnvironment) {
    const auto& monitors = test.machine.spooler.monitors;
    ASSERT_GE(monitors.size(), 2u);
    EXPECT_EQ(monitors[monitors.size() - 2].name, u"Label Port");
    EXPECT_EQ(monitors[monitors.size() - 2].dll, u"lblmon.dll");
    EXPECT_EQ(monitors.back().name, u"DRYX Port");
    EXPECT_EQ(monitors.back().dll, u"dryxmon.dll");
    EXPECT_EQ(monitors.back().environment, u"Windows NT x86");
    MonitorInfo nameless = {};
    EXPECT_EQ(install_monitor(&nameless), 0);
    EXPECT_EQ(test.log(), "Installing Monitor\r\nInstalling Monitor\r\nFailed to install Montior!\r\n");
}

TEST_F(CustomPorts, SettingsGoBackInTheMonitorsBlock) {
    const std::string address_600(600, '7');
    const std::u16string wide_511(511, u'7');
    const std::u16string wide_512(512, u'7');
    const std::u16string folder = std::u16string(u"C:\\Program Files\\Vorlane\\Monitor") + u'\0';
    ASSERT_EQ(
        add_port(TEXT("Label Port"), TEXT("L1"), "1234567890123456", TEXT("Vorlane"), TEXT("Monitor"), 7), 1);
    ASSERT_EQ(
        add_port(TEXT("Label Port"), TEXT("L2"), address_600.c_str(), TEXT("Vorlane"), TEXT("Monitor"), 0),
        1);
    ASSERT_EQ(add_dryx_port(TEXT("DRYX Port"), TEXT("D1"), address_600.c_str()), 1);
    ASSERT_EQ(add_dryx_port(TEXT("DRYX Port"), TEXT("D2"), "P7"), 1); // shorter than what stands there
    const auto with_folder = [&](std::u16string_view port) {
        return ExpectedBlock(6168, port).number(3080, 1).number(4108, 1).number(4112, 1).text(4116, folder);
    };
    EXPECT_EQ(
        port(u"L1")->configuration,
        with_folder(u"L1").text(2056, std::u16string(u"123456789012345") + u'\0').number(6164, 7).bytes);
    EXPECT_EQ(port(u"L2")->configuration,
              with_folder(u"L2").text(5140, wide_511 + u'\0').number(6164, 0).bytes);
    EXPECT_EQ(port(u"D1")->configuration,
              ExpectedBlock(4112, u"D1").number(2056, 1).number(3084, 1).text(3088, wide_512).bytes);
    EXPECT_EQ(port(u"D2")->configuration, ExpectedBlock(4112, u"D2")
                                              .number(2056, 1)
                                              .number(3084, 1)
                                              .text(3088, std::u16string(u"P7") + u'\0')
                                              .bytes);
    expect_nothing_open();
}

TEST_F(CustomPorts, CommandsGoOutWhateverTheMonitorAnswers) {
    ASSERT_EQ(add_port(TEXT("Label Port"), TEXT("L1"), "10.0.0.7", TEXT("a"), TEXT("b"), 0), 1);
    before = test.log().size();
    ASSERT_EQ(add_port(TEXT("Label Port"), TEXT("L1"), "10.0.0.8", TEXT("a"), TEXT("b"), 0), 1);
    EXPECT_EQ(log(), "\r\nadd_port [L1] as [Label Port]\r\n"
                     ",XcvMonitor Label Port\r\n"
                     "sztPortName [L1]\r\n"
                     "XcvData AddPort 1 0 b7 0 [L1]\r\n"
                     "XcvData GetConfig 1 6168 0 0 (6168) [L1]\r\n"
                     "portConfig 1 6168 [L1]\r\n"
                     "XcvData SetConfig 1 0 0 0 (6168)\r\n");
    EXPECT_EQ(platform::session().gate.count("XcvDataW"), 6u);
}

TEST_F(CustomPorts, TextsOfTheMonitorMayLackATerminator) {
    platform::PrintPort full = test.machine.spooler.ports.front();
    full.name = u"L1";
    full.monitor = u"Label Port";
    full.configuration.assign(6168, 'x');
    test.machine.spooler.ports.push_back(full);
    ASSERT_EQ(add_port(TEXT("Label Port"), TEXT("L1"), "10.0.0.7", TEXT("a"), TEXT("b"), 0), 1);
    EXPECT_NE(log().find("portConfig 2021161080 2021161080 [????"), std::string::npos) << log();
}

TEST_F(CustomPorts, RefusesNamesThatDontFit) {
    const std::u16string long_port(64, u'p');
    const std::u16string long_monitor(300, u'm');
    EXPECT_EQ(add_dryx_port(TEXT("DRYX Port"), long_port.c_str(), "10.0.0.7"), 0);
    EXPECT_TRUE(log().ends_with("failed to open printer for port " + std::string(64, 'p') + "\r\n"));
    EXPECT_EQ(add_port(long_monitor.c_str(), TEXT("P"), "10.0.0.7", TEXT("a"), TEXT("b"), 1), 0);
    EXPECT_TRUE(log().ends_with("failed to open printer for port P\r\n"));
    EXPECT_EQ(open_port_monitor(long_monitor.c_str()), nullptr);
    EXPECT_EQ(GetLastError(), DWORD{ERROR_BUFFER_OVERFLOW});
    EXPECT_EQ(opened(), 0u);
}

TEST_F(CustomPorts, FolderPathIsWholeOrEmpty) {
    WCHAR path[program_files_path_capacity];
    EXPECT_EQ(build_program_files_path(path, TEXT("Vorlane"), TEXT("Label")), 1);
    EXPECT_EQ(platform::to_utf8(path), "C:\\Program Files\\Vorlane\\Label");
    const std::u16string fitting(511 - 19, u'f'); // behind "C:\Program Files\" and in front of "\s"
    EXPECT_EQ(build_program_files_path(path, fitting.c_str(), TEXT("s")), 1);
    EXPECT_EQ(build_program_files_path(path, fitting.c_str(), TEXT("ss")), 0);
    EXPECT_EQ(path[0], 0);
}

TEST_F(Ports, MonitorsOfThe32BitEnvironmentAreRefusedByAnotherSpooler) {
    test.start();
    MonitorInfo info = {};
    std::u16string_view(u"Label Port").copy(info.name, 63);
    std::u16string_view(u"lblmon.dll").copy(info.DLL32, 63);
    EXPECT_EQ(install_monitor(&info), 0);
    EXPECT_EQ(test.machine.spooler.monitors, platform::default_spooler().monitors);
}

TEST_F(Ports, ConfigurationWithoutFolderKeepsTheMonitorsOwn) {
    test.machine = platform::default_machine(platform::System::x86);
    test.machine.faults = {{"SHGetKnownFolderPath", 1, true, 0x80004005, ""}};
    test.start();
    ASSERT_EQ(install_dryx_monitor(), 1);
    test.machine.spooler.monitors.back().configuration_size = 6168;
    ASSERT_EQ(add_port(TEXT("DRYX Port"), TEXT("P"), "10.0.0.7", TEXT("a"), TEXT("b"), 0), 1);
    EXPECT_NE(test.log().find("Get ProgramFiles failed -2147467259\r\n"), std::string::npos);
    const std::vector<std::uint8_t> untouched = platform::new_configuration(6168, u"P");
    const auto* const made = port(u"P");
    ASSERT_TRUE(made != nullptr && made->configuration.size() == untouched.size());
    const std::vector<std::uint8_t>& sent = made->configuration;
    EXPECT_TRUE(std::equal(sent.begin() + 4116, sent.begin() + 5140, untouched.begin() + 4116));
}

} // namespace
