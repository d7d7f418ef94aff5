#include "discovery/usb_search.h"

#include "harness/registry_values.h"
#include "harness/test_session.h"

#include <gtest/gtest.h>

namespace {

std::vector<std::string> printers_found;

int note_find(const WCHAR* path, const WCHAR* instance) {
    printers_found.push_back(platform::to_utf8(path) + " " + platform::to_utf8(instance));
    return 0;
}

const std::u16string class_id = u"{28d78fad-5a12-11d1-ae5b-0000f803a8c2}";

std::u16string device_path(const std::u16string& middle) {
    return u"\\\\?\\usb#" + middle + u"#" + class_id;
}

class UsbSearch : public testing::Test {
protected:
    void SetUp() override { printers_found.clear(); }

    void plug_in(const std::u16string& path, const std::u16string& parent) {
        test.machine.usb_interfaces.push_back({path, parent, {}});
    }

    static std::u16string key_of(std::u16string path) {
        for (char16_t& letter : path)
            if (letter == u'\\')
                letter = u'#';
        return u"System\\CurrentControlSet\\Control\\DeviceClasses\\" + class_id + u"\\" + path +
               u"\\#\\Device Parameters";
    }

    void give_port(const std::u16string& path, const std::u16string& base_name,
                   platform::RegistryValue number) {
        test.machine.registry[key_of(path)] = {{u"Base Name", text_value(base_name)},
                                               {u"Port Number", number}};
    }

    TestSession test;
};

TEST_F(UsbSearch, TakesTheTextBehindTheProductId) {
    const std::u16string long_instance(120, u'a');
    const struct {
        std::u16string middle;
        std::u16string parent;
        std::string instance;
    } table[] = {
        {u"vid_0a5f&pid_0080#41j2", u"USB\\VID_0A5F&PID_0080\\41j2", "41j2"},
        {u"vid_0a5f&pid_0080#41j2", u"USB\\VID_0A5F&PID_0080&MI_00\\7", "MI_00\\7"},
        {u"vid_0a5f&pid_0080#41j2", u"USB\\ROOT_HUB\\1", "41J2"}, // from the path, in capitals
        {u"vid_0a5f&pid_0080#41j2", u"USB\\VID_0A5F&PID_0080\\4#2", "4"},
        {u"vid_0a5f&pid_0080#41j2", u"USB\\VID_0A5F&PID_0080", ""},   // nine characters from the match on
        {u"vid_0a5f&pid_0080#41j2", u"USB\\VID_0A5F&PID_0080\\", ""}, // ten
        {u"vid_0a5f&prod_0080#41j2", u"USB\\ROOT_HUB\\1", ""},
        {u"vid_0a5f&pid_0080#" + long_instance, u"USB\\ROOT_HUB\\1", std::string(99, 'A')},
    };
    for (const auto& row : table)
        plug_in(device_path(row.middle), row.parent);
    plug_in(device_path(u"VID_0A5F&pid_0080#other"), u"USB\\VID_0A5F&PID_0080\\1"); // the fragment minds case
    test.start();
    EXPECT_EQ(usb_search(u"vid_0a5f", note_find), 8);
    ASSERT_EQ(printers_found.size(), std::size(table));
    for (std::size_t i = 0; i < std::size(table); ++i)
        EXPECT_EQ(printers_found[i],
                  platform::to_utf8(device_path(table[i].middle)) + " " + table[i].instance);
    EXPECT_EQ(usb_search(u"vid_0a5f", nullptr), 8);
    EXPECT_EQ(usb_search(u"vid_0000", note_find), 0);
}

TEST_F(UsbSearch, SeeksTheFragmentInTheWholePathAndCutsTheCopy) {
    plug_in(device_path(std::u16string(300, u'x') + u"end"), u"USB\\VID_0A5F&PID_0080\\1");
    test.start();
    EXPECT_EQ(usb_search(u"xend", note_find), 1);
    ASSERT_EQ(printers_found.size(), 1u);
    EXPECT_EQ(printers_found[0].size(), 255u + 2);
}

TEST_F(UsbSearch, PassesOverWhatCantBeRead) {
    plug_in(device_path(u"one"), u"");
    plug_in(device_path(u"two"), u"USB\\VID_0A5F&PID_0080\\2");
    plug_in(device_path(u"three"), u"USB\\VID_0A5F&PID_0080\\3");
    test.machine.faults = {{"CM_Get_Device_ID_Size", 1, false, 13, ""}};
    test.start();
    EXPECT_EQ(usb_search(u"usb", note_find), 1);
    EXPECT_EQ(test.log(), "\r\nusb_search\r\nno parent\r\ndevice id size fail\r\n");
    EXPECT_EQ(printers_found, std::vector<std::string>{platform::to_utf8(device_path(u"three")) + " 3"});
    EXPECT_TRUE(platform::session().memory.live().empty());
}

TEST_F(UsbSearch, AParentThatGrewInBetweenHasNoName) {
    plug_in(device_path(u"vid&pid_0080#a"), u"USB\\VID_0A5F&PID_0080\\1");
    platform::Session& session = test.start();
    session.gate.on_call = [this](const platform::JournalEntry& entry) {
        if (entry.call == "CM_Get_Device_IDW")
            test.machine.usb_interfaces[0].parent_id += u"23";
    };
    EXPECT_EQ(usb_search(u"usb", note_find), 1);
    EXPECT_EQ(printers_found,
              std::vector<std::string>{platform::to_utf8(device_path(u"vid&pid_0080#a")) + " A"});
}

TEST_F(UsbSearch, PassesOverADetailWithoutSize) {
    plug_in(device_path(u"vid"), u"USB\\VID_0A5F&PID_0080\\1");
    for (const std::uint32_t told : {0u, 1u, 7u}) {
        platform::Session& session = test.start();
        session.gate.on_size = [told](const platform::JournalEntry& entry, std::uint32_t capacity,
                                      platform::ToldSize& size) {
            if (entry.call == "SetupDiGetDeviceInterfaceDetailW" && capacity == 0)
                size.told = told;
        };
        EXPECT_EQ(usb_search(u"usb", note_find), 0);
        test.stop();
    }
}

TEST_F(UsbSearch, TellsOfAMissingDeviceList) {
    test.machine.faults = {{"SetupDiGetClassDevsW", 1, true, 5, ""}};
    test.start();
    EXPECT_EQ(usb_search(u"usb", note_find), -1);
    EXPECT_EQ(usb_device_check(1), -1);
    EXPECT_EQ(test.log(), "\r\nusb_search\r\nusb_search invalid handle\r\n"
                          "\r\nusb_device_check\r\nusb_device_check invalid handle\r\n");
}

TEST_F(UsbSearch, FindsThePortOfAnInterface) {
    const std::u16string path = device_path(u"vid_0a5f&pid_0080#41j2");
    plug_in(path, u"USB\\VID_0A5F&PID_0080\\41j2");
    test.machine.usb_interfaces[0].compatible_drivers = {{u"Label Driver"}, {u"Printing Support"}};
    plug_in(device_path(u"later"), u"USB\\VID_0A5F&PID_0080\\2");
    give_port(path, u"My USB port", number_value(3));
    test.start();
    EXPECT_EQ(usb_device_check(3), 1);
    EXPECT_EQ(
        test.log(),
        "\r\nusb_device_check\r\n"
        "devInfoData size 32 (28)\r\n"
        "enum device 0\r\n"
        "USB\\VID_0A5F&PID_0080\\41j2\n"
        "SetupDiEnumDriverInfo 0 Label Driver\n"
        "SetupDiEnumDriverInfo 1 Printing Support\n"
        "get usb device details\r\n"
        "Device # 0 has the name \\\\?\\usb#vid_0a5f&pid_0080#41j2#{28d78fad-5a12-11d1-ae5b-0000f803a8c2}\n"
        "System\\CurrentControlSet\\Control\\DeviceClasses\\{28d78fad-5a12-11d1-ae5b-0000f803a8c2}\\"
        "##?#usb#vid_0a5f&pid_0080#41j2#{28d78fad-5a12-11d1-ae5b-0000f803a8c2}\\#\\Device Parameters\r\n"
        "key opened\r\nMy USB port\r\nport 3<>3\nexit usb_device_check\r\n");
    EXPECT_TRUE(platform::session().memory.live().empty());
}

TEST_F(UsbSearch, CountsOnlyPortsThatCanBeReadAsUsb) {
    const struct {
        const char* name;
        std::u16string base_name;
        platform::RegistryValue number;
        const char* line;
    } table[] = {
        {"another number", u"USB", number_value(4), "USB\r\nport 4<>3\n"},
        {"no USB", u"usb", number_value(3), "usb\r\n"},
        {"two bytes", u"USB", number_value(3, 2), "USB\r\nPort Number read failed\r\n"},
        {"eight bytes", u"USB", number_value(3, 8), "USB\r\nPort Number read failed\r\n"},
        {"long name", std::u16string(2049, u'U'), number_value(3), "Base Name read failed\r\n"},
    };
    const std::u16string path = device_path(u"vid");
    plug_in(path, u"USB\\VID_0A5F&PID_0080\\1");
    for (const auto& row : table) {
        give_port(path, row.base_name, row.number);
        test.start();
        const std::size_t before = test.log().size();
        EXPECT_EQ(usb_device_check(3), 0) << row.name;
        const std::string log = test.log().substr(before);
        const std::string end = std::string("key opened\r\n") + row.line + "exit usb_device_check\r\n";
        EXPECT_TRUE(log.ends_with(end)) << row.name << "\n" << log;
        test.stop();
    }
    test.machine.registry.clear();
    test.start();
    EXPECT_EQ(usb_device_check(3), 0);
    EXPECT_TRUE(test.log().ends_with("key failed\r\nexit usb_device_check\r\n"));
}

TEST_F(UsbSearch, RefusesAKeyPathThatDoesntFit) {
    plug_in(device_path(std::u16string(4000, u'x')), u"USB\\VID_0A5F&PID_0080\\1");
    test.start();
    EXPECT_EQ(usb_device_check(3), 0);
    EXPECT_TRUE(test.log().ends_with("xxx\r\nkey failed\r\nexit usb_device_check\r\n"));
    EXPECT_EQ(platform::session().gate.count("RegOpenKeyExW"), 0u);
}

} // namespace
