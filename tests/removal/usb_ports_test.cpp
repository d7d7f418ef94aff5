#include "removal/usb_ports.h"

#include "harness/registry_values.h"
#include "harness/test_session.h"

#include <gtest/gtest.h>

namespace {

std::vector<std::string> finds;

int note_find(const char* port, const char* serial) {
    finds.push_back(std::string(port) + " " + serial);
    return 0;
}

const std::u16string service_key = u"SYSTEM\\CurrentControlSet\\Services\\usbprint\\Enum";

class UsbPorts : public testing::Test {
protected:
    void SetUp() override { finds.clear(); }

    std::map<std::u16string, platform::RegistryValue>& port_key(const std::u16string& port) {
        return test.machine
            .registry[u"SYSTEM\\CurrentControlSet\\Control\\Print\\Monitors\\USB Monitor\\Ports\\" + port];
    }

    void expect_all_closed() {
        for (const std::string& kind : platform::session().handles.open_kinds())
            EXPECT_TRUE(kind == "file" || kind == "mutex") << kind; // the log's
        EXPECT_TRUE(platform::session().memory.live().empty());
    }

    TestSession test;
};

TEST_F(UsbPorts, SerialStandsBehindTheProduct) {
    const struct {
        std::u16string value;
        int found;
        std::u16string serial;
    } table[] = {
        {u"USB\\VID_0A5F&PID_0080\\41J2", 1, u"41J2"},
        {u"USB\\VID_0A5F&PID_0080\\41\\J2\\", 1, u"41\\J2\\"},
        {u"USB\\VID_0A5F&PID_0080\\", 1, u""},
        {u"USB\\VID_0A5F&PID_0080", 0, u"untouched"},
        {u"USB\\VID_0A5F&pid_0080\\41J2", 0, u"untouched"},
        {u"", 0, u"untouched"},
        {u"PID\\" + std::u16string(600, u's'), 1, std::u16string(511, u's')},
        {u"PID\\" + std::u16string(4092, u's'), 1, std::u16string(511, u's')},
        {u"PID\\" + std::u16string(4093, u's'), 0, u"untouched"},
    };
    for (const auto& row : table) {
        port_key(u"USB001")[u"Parent Device Id"] = text_value(row.value);
        port_key(u"USB001")[u"Device Id"] = text_value(u"MFG:V;");
        test.start();
        WCHAR serial[usb_id_capacity] = u"untouched";
        WCHAR device_id[usb_id_capacity] = u"untouched";
        EXPECT_EQ(read_usb_port_ids(u"USB001", serial, device_id), row.found) << platform::to_utf8(row.value);
        EXPECT_EQ(serial, row.serial);
        EXPECT_EQ(std::u16string(device_id), u"MFG:V;") << "read whatever the serial did";
        expect_all_closed();
        test.stop();
    }
}

TEST_F(UsbPorts, UnreadableValuesAreLines) {
    const std::string path = "SYSTEM\\CurrentControlSet\\Control\\Print\\Monitors\\USB Monitor\\Ports\\";
    port_key(u"USB001")[u"Parent Device Id"] = text_value(u"PID\\1");
    port_key(u"USB002")[u"Device Id"] = text_value(u"D");
    test.start();
    WCHAR serial[usb_id_capacity] = u"";
    WCHAR device_id[usb_id_capacity] = u"kept";
    testing::internal::CaptureStderr();
    EXPECT_EQ(read_usb_port_ids(u"USB001", serial, device_id), 1);
    EXPECT_EQ(std::u16string(device_id), u"kept");
    EXPECT_EQ(read_usb_port_ids(u"USB002", serial, nullptr), 0);
    const std::string errors = testing::internal::GetCapturedStderr();
    EXPECT_TRUE(errors.starts_with("Read Device Id: ")) << errors;
    EXPECT_NE(errors.find("\nRead Parent Device Id: "), std::string::npos) << errors;
    EXPECT_EQ(read_usb_port_ids(u"USB003", serial, device_id), 0);
    EXPECT_EQ(test.log(), "[" + path +
                              "USB001]\nParent Device Id: [PID\\1]\nfound: [1]\nerror: Read Device Id\n[" +
                              path + "USB002]\nerror: Read Parent Device Id\n[" + path +
                              "USB003]\nfailed to open 2 " + path + "USB003\r\n");
    EXPECT_EQ(read_usb_port_ids(std::u16string(500, u'p').c_str(), serial, device_id), 0);
    EXPECT_NE(test.log().find("\nfailed to open 206 "), std::string::npos);
    EXPECT_EQ(platform::session().gate.count("RegOpenKeyExW"), 3u);
    expect_all_closed();
}

TEST_F(UsbPorts, ConnectedDevicesStandInTheServicesList) {
    const struct {
        const char* name;
        std::map<std::u16string, platform::RegistryValue> values;
        int expected;
        const char* log; // behind the two opening lines
    } table[] = {
        {"second of three",
         {{u"Count", number_value(3)},
          {u"0", text_value(u"A")},
          {u"1", text_value(u"ID")},
          {u"2", text_value(u"B")}},
         1,
         "count: 3\nDevice 0: [A] [0]\nDevice 1: [ID] [1]\ndevice connceted\n"},
        {"no part of a longer one",
         {{u"Count", number_value(1)}, {u"0", text_value(u"ID2")}},
         0,
         "count: 1\nDevice 0: [ID2] [0]\n"},
        {"case",
         {{u"Count", number_value(1)}, {u"0", text_value(u"id")}},
         0,
         "count: 1\nDevice 0: [id] [0]\n"},
        {"none", {{u"Count", number_value(0)}, {u"0", text_value(u"ID")}}, 0, "count: 0\n"},
        {"too many announced",
         {{u"Count", number_value(0xffffffff)}, {u"0", text_value(u"A")}},
         0,
         "count: -1\nDevice 0: [A] [0]\nerror: Device 1\n"},
        {"count of eight bytes",
         {{u"Count", number_value(1, 8)}, {u"0", text_value(u"ID")}},
         0,
         "error: Count\n"},
        {"count of one byte",
         {{u"Count", number_value(1, 1)}, {u"0", text_value(u"ID")}},
         1,
         "count: 1\nDevice 0: [ID] [0]\ndevice connceted\n"},
        {"count without bytes", {{u"Count", number_value(1, 0)}, {u"0", text_value(u"ID")}}, 0, "count: 0\n"},
        {"no count", {{u"0", text_value(u"ID")}}, 0, "error: Count\n"},
    };
    const std::string opening =
        "check connection ID\n[SYSTEM\\CurrentControlSet\\Services\\usbprint\\Enum]\n";
    for (const auto& row : table) {
        test.machine.registry[service_key] = row.values;
        test.start();
        const std::size_t before = test.log().size();
        EXPECT_EQ(check_usb_connection(u"ID"), row.expected) << row.name;
        EXPECT_EQ(test.log().substr(before), opening + row.log) << row.name;
        expect_all_closed();
        test.stop();
    }
    test.machine.registry.erase(service_key);
    test.start();
    EXPECT_EQ(check_usb_connection(u"ID"), 0);
    EXPECT_TRUE(
        test.log().ends_with("failed to open 2 SYSTEM\\CurrentControlSet\\Services\\usbprint\\Enum\n"));
}

TEST_F(UsbPorts, FirstPortOfADescriptionDecides) {
    port_key(u"USB002")[u"Parent Device Id"] = text_value(u"PID\\2");
    port_key(u"USB004")[u"Parent Device Id"] = text_value(u"PID\\4");
    auto& ports = test.machine.spooler.ports;
    ports.clear();
    for (const auto& [name, description] : {std::pair(u"USB001", u"Good"), std::pair(u"USB002", u"Label"),
                                            std::pair(u"USB003", u"Bad"), std::pair(u"USB004", u"Bad")}) {
        ports.push_back({});
        ports.back().name = name;
        ports.back().description = description;
        ports.back().monitor = u"USB Monitor";
        ports.back().type = 1;
    }
    test.start();
    EXPECT_EQ(find_port_by_description(u"Label", note_find), 1);
    EXPECT_EQ(finds, std::vector<std::string>{"USB002 2"});
    EXPECT_NE(test.log().find("\r\n0:Label,USB002,USB Monitor,1\r\n"), std::string::npos) << test.log();
    EXPECT_EQ(find_port_by_description(u"Bad", note_find), 0) << "the second one isn't asked";
    EXPECT_EQ(find_port_by_description(u"label", note_find), 0);
    EXPECT_EQ(find_port_by_description(u"Label", nullptr), 0);
    EXPECT_EQ(finds.size(), 1u);
    expect_all_closed();
}

} // namespace
