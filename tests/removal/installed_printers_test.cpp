#include "removal/installed_printers.h"

#include "harness/registry_values.h"
#include "harness/test_session.h"
#include "resources/resource_ids.h"

#include <gtest/gtest.h>

namespace {

INT_PTR CALLBACK no_handler(HWND, UINT, WPARAM, LPARAM) {
    return 0;
}

class InstalledPrinters : public testing::Test {
protected:
    void SetUp() override { test.machine.spooler.queues.clear(); }

    platform::PrintQueue& add_queue(const std::u16string& name, const std::u16string& port,
                                    std::uint32_t jobs = 0) {
        platform::PrintQueue queue;
        queue.name = name;
        queue.port = port;
        queue.driver = u"Label";
        queue.jobs = jobs;
        test.machine.spooler.queues.push_back(queue);
        return test.machine.spooler.queues.back();
    }

    void add_network_port(const std::u16string& name) {
        platform::PrintPort port;
        port.name = name;
        port.monitor = u"Standard TCP/IP Port";
        test.machine.spooler.ports.push_back(port);
    }

    // A USB port that the print monitor knows, with its device on the service's list or not.
    void know_port(const std::u16string& port, const std::u16string& device_id) {
        test.machine
            .registry[u"SYSTEM\\CurrentControlSet\\Control\\Print\\Monitors\\USB Monitor\\Ports\\" + port] = {
            {u"Parent Device Id", text_value(u"PID\\1")}, {u"Device Id", text_value(device_id)}};
    }

    // An interface that has the port number, for ports that the print monitor doesn't know.
    void plug_in(std::uint32_t port_number) {
        test.machine.usb_interfaces = {{u"dev", u"USB\\VID_1&PID_0001\\1", {}}};
        test.machine.registry[u"System\\CurrentControlSet\\Control\\DeviceClasses\\"
                              u"{28d78fad-5a12-11d1-ae5b-0000f803a8c2}\\dev\\#\\Device Parameters"] = {
            {u"Base Name", text_value(u"USB")}, {u"Port Number", number_value(port_number)}};
    }

    // The rows of a fresh list box after one call in mode 0.
    std::vector<std::string> list(int show_type, int expected) {
        HWND dialog =
            CreateDialogParamW(GetModuleHandleW(nullptr), MAKEINTRESOURCEW(IDD_MAIN), nullptr, no_handler, 0);
        EXPECT_EQ(
            list_installed_printers(u"Label", dialog, IDC_PRINTER_LIST, list_queues, &connected, show_type),
            expected);
        std::vector<std::string> rows;
        const LRESULT count = SendDlgItemMessageW(dialog, IDC_PRINTER_LIST, LB_GETCOUNT, 0, 0);
        for (LRESULT i = 0; i < count; ++i) {
            WCHAR row[600] = {};
            SendDlgItemMessageW(dialog, IDC_PRINTER_LIST, LB_GETTEXT, static_cast<WPARAM>(i),
                                reinterpret_cast<LPARAM>(row));
            rows.push_back(platform::to_utf8(row));
        }
        return rows;
    }

    std::vector<std::u16string> port_names() const {
        std::vector<std::u16string> names;
        for (const platform::PrintPort& port : test.machine.spooler.ports)
            names.push_back(port.name);
        return names;
    }

    TestSession test;
    DWORD connected = 7;
};

TEST_F(InstalledPrinters, AreListedWithTheirMarks) {
    add_queue(u"Net", u"TRK_10.0.0.7");
    add_queue(u"Busy", u"usb001", 3); // no capital: a network port
    add_queue(u"Other", u"USB001").driver = u"label";
    add_queue(u"Plugged", u"USB001");
    add_queue(u"Away", u"USB002");
    know_port(u"USB001", u"MFG:V;");
    know_port(u"USB002", u"MFG:W;");
    test.machine.registry[u"SYSTEM\\CurrentControlSet\\Services\\usbprint\\Enum"] = {
        {u"Count", number_value(1)}, {u"0", text_value(u"MFG:V;")}};
    test.start();
    EXPECT_EQ(list(1, 2), (std::vector<std::string>{"Net - Net - 0 jobs", "Busy - Net - 3 jobs",
                                                    "Plugged - USB - 0 jobs *", "Away - USB - 0 jobs"}));
    EXPECT_EQ(connected, 1u);
    EXPECT_EQ(list(0, 2), (std::vector<std::string>{"Net - 0 jobs", "Busy - 3 jobs", "Plugged - 0 jobs *",
                                                    "Away - 0 jobs"}));
    EXPECT_TRUE(test.log().starts_with("Net - Net - 0 jobs\r\nBusy - Net - 3 jobs\r\n"));
    EXPECT_EQ(platform::session().gate.count("OpenPrinterW"), 0u);
}

TEST_F(InstalledPrinters, PortNumberStandsInForMissingDetails) {
    const struct {
        std::u16string port;
        std::uint32_t present;
        const char* row;
    } table[] = {
        {u"USB005", 5, "Q - USB - 0 jobs *"},
        {u"USB005", 6, "Q - USB - 0 jobs "},
        {u"USB12x", 12, "Q - USB - 0 jobs *"},
        {u"U", 0, "Q - USB - 0 jobs *"},
        {u"USB", 0, "Q - USB - 0 jobs *"},
        {u"USBx", 0, "Q - USB - 0 jobs *"},
        {u"USB4294967295", 0xffffffff, "Q - USB - 0 jobs *"},
        {u"USB4294967301", 0, "Q - USB - 0 jobs *"},
        {u"USB4294967301", 5, "Q - USB - 0 jobs "},
    };
    for (const auto& row : table) {
        test.machine.spooler.queues.clear();
        add_queue(u"Q", row.port);
        plug_in(row.present);
        test.start();
        EXPECT_EQ(list(1, 1), std::vector<std::string>{row.row}) << platform::to_utf8(row.port);
        EXPECT_EQ(connected, std::string(row.row).ends_with('*') ? 1u : 0u);
        test.stop();
    }
    test.machine.faults = {{"SetupDiGetClassDevsW", 1, true, 5, ""}};
    test.start();
    EXPECT_EQ(list(1, 1), std::vector<std::string>{"Q - USB - 0 jobs "});
}

TEST_F(InstalledPrinters, LongLinesAreCut) {
    add_queue(std::u16string(600, u'q'), u"TRK_1");
    test.start();
    EXPECT_EQ(list(1, 1), std::vector<std::string>{std::string(511, 'q')});
    EXPECT_EQ(test.log(), std::string(511, 'q') + "\r\n");
}

TEST_F(InstalledPrinters, NoneGivesNothing) {
    test.start();
    for (const int mode : {list_queues, delete_queues, delete_queues_and_ports}) {
        connected = 7;
        EXPECT_EQ(list_installed_printers(u"Label", nullptr, 0, mode, &connected, 1), 0);
        EXPECT_EQ(connected, 0u);
    }
    EXPECT_EQ(test.log(), "");
}

TEST_F(InstalledPrinters, DeletionGoesOnBehindAFailure) {
    add_queue(u"Locked", u"TRK_1").deny_open = true;
    add_queue(u"Kept", u"TRK_2").deny_delete = true;
    add_queue(u"Gone", u"TRK_3");
    add_queue(u"Other", u"TRK_4").driver = u"Other";
    test.start();
    EXPECT_EQ(list_installed_printers(u"Label", nullptr, 0, delete_queues, &connected, 0), 1);
    EXPECT_EQ(test.log(), "failed to open printer Locked 5\r\nCould not delete Kept 5\r\nDeleted Gone\r\n");
    EXPECT_EQ(test.machine.spooler.queues.size(), 3u);
    EXPECT_EQ(platform::session().gate.count("ClosePrinter"), 2u);
    EXPECT_EQ(platform::session().gate.count("OpenSCManagerW"), 0u);
    EXPECT_TRUE(platform::session().memory.live().empty());
}

TEST_F(InstalledPrinters, PortsGoAfterARestartOfTheSpooler) {
    const std::u16string long_name = std::u16string(520, u'n');
    test.machine.spooler.ports.clear();
    for (const std::u16string name : {u"TRK_1", u"TRK_2", u"USB001"})
        add_network_port(name);
    add_queue(u"Network", u"TRK_1");
    add_queue(u"Locked", u"TRK_2").deny_delete = true;
    add_queue(u"Usb", u"USB001");
    add_queue(u"Long", long_name);
    test.start();
    testing::internal::CaptureStdout();
    EXPECT_EQ(list_installed_printers(u"Label", nullptr, 0, delete_queues_and_ports, &connected, 0), 1);
    testing::internal::GetCapturedStdout();
    EXPECT_EQ(port_names(), (std::vector<std::u16string>{u"TRK_2", u"USB001"}));
    const std::string restart =
        "DoStopSvc [Spooler]\r\nStopDependentServices\nNo dep services\nDoStartSvc [Spooler]\r\n";
    const std::string long_text(520, 'n');
    EXPECT_EQ(test.log(), "Deleted Network\r\n" + restart +
                              "Delete port TRK_1\r\nCould not delete Locked 5\r\n"
                              "Deleted Usb\r\n" +
                              restart +
                              "Dont Delete port USB001\r\n"
                              "Deleted Long\r\n" +
                              restart + "Delete port " + long_text + "\r\nCould not delete port " +
                              long_text + " 6f\r\n");
    EXPECT_EQ(test.machine.services[0].now.front().state, 4u) << "the spooler runs again";
}

// By the code page's best fit the full-width digit becomes the other port's.
TEST_F(InstalledPrinters, PortWithoutAnExactNameStays) {
    test.machine.spooler.ports.clear();
    add_network_port(u"TRK_1");
    add_network_port(u"TRK_１");
    add_queue(u"Wide", u"TRK_１");
    test.start();
    testing::internal::CaptureStdout();
    EXPECT_EQ(list_installed_printers(u"Label", nullptr, 0, delete_queues_and_ports, &connected, 0), 0);
    testing::internal::GetCapturedStdout();
    EXPECT_EQ(port_names(), (std::vector<std::u16string>{u"TRK_1", u"TRK_１"}));
    EXPECT_TRUE(test.log().ends_with(" 6f\r\n")) << test.log();
}

TEST_F(InstalledPrinters, PortThatStaysDoesntChangeTheResult) {
    add_queue(u"Network", u"TRK_1");
    test.machine.faults = {{"XcvDataW", 1, true, 1722, ""}};
    test.start();
    testing::internal::CaptureStdout();
    EXPECT_EQ(list_installed_printers(u"Label", nullptr, 0, delete_queues_and_ports, &connected, 0), 0);
    testing::internal::GetCapturedStdout();
    EXPECT_TRUE(test.log().ends_with("Error in XcvData. 6ba 0\r\nCould not delete port TRK_1 6ba\r\n"));
}

TEST_F(InstalledPrinters, RecordsTellThePorts) {
    const struct {
        std::u16string port;
        DWORD own;
        const char* text;
    } table[] = {
        {u"TRK_10_0_0_7", 1, "10.0.0.7"},
        {u"trk_10_0_0_7", 0, "trk_10_0_0_7"},
        {u"TRK_", 1, ""},
        {u"LPT_1:", 0, "LPT_1:"},
        {u"TRK_12345678901234567_901", 1, "12345678901234567.9"},
        {u"", 0, ""},
        {u"COM1:", 0, "COM1:"},
    };
    for (const auto& row : table)
        add_queue(u"Q", row.port);
    add_queue(u"Other", u"TRK_9").driver = u"Other";
    test.start();
    QueuePortRecord records[std::size(table)];
    ASSERT_EQ(checkPrinters(records, static_cast<DWORD>(std::size(records)), u"Label"), std::size(table));
    for (std::size_t i = 0; i < std::size(table); ++i) {
        EXPECT_EQ(records[i].own_port, table[i].own) << i;
        EXPECT_STREQ(records[i].port_text, table[i].text);
    }
    const std::size_t before = test.log().size();
    EXPECT_EQ(checkPrinters(records, 2, u"Label"), 2u);
    EXPECT_EQ(test.log().substr(before), "checkPrinters\nMatch\nMatch\n");
    EXPECT_EQ(checkPrinters(nullptr, 0, u"Label"), 0u);
}

} // namespace
