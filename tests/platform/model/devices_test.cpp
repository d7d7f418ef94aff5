#include "harness/test_session.h"

#include <gtest/gtest.h>

#include <cfgmgr32.h>
#include <setupapi.h>
#include <winerror.h>

namespace {

constexpr GUID usb_printers = {0x28D78FAD, 0x5A12, 0x11D1, {0xAE, 0x5B, 0x00, 0x00, 0xF8, 0x03, 0xA8, 0xC2}};

class Devices : public testing::Test {
protected:
    void start(std::vector<platform::UsbInterface> interfaces) {
        test.machine.usb_interfaces = std::move(interfaces);
        test.start();
        set_ = SetupDiGetClassDevsW(&usb_printers, nullptr, nullptr, DIGCF_PRESENT | DIGCF_DEVICEINTERFACE);
    }
    BOOL enumerate(DWORD index) {
        return SetupDiEnumDeviceInterfaces(set_, nullptr, &usb_printers, index, &interface_);
    }

    TestSession test;
    HDEVINFO set_ = nullptr;
    SP_DEVICE_INTERFACE_DATA interface_{sizeof(SP_DEVICE_INTERFACE_DATA)};
    SP_DEVINFO_DATA device_{sizeof(SP_DEVINFO_DATA)};
};

TEST_F(Devices, AreWalkedFromTheInterfaceToItsParent) {
    const std::u16string path = u"\\\\?\\usb#vid_1234&pid_5678#a1#{28d78fad-5a12-11d1-ae5b-0000f803a8c2}";
    start(
        {{path, u"USB\\VID_1234&PID_5678\\A1", {{u"First"}, {u"Second"}}}, {u"\\\\?\\usb#orphan", u"", {}}});
    ASSERT_TRUE(enumerate(0));

    DWORD required = 0;
    EXPECT_FALSE(SetupDiGetDeviceInterfaceDetailW(set_, &interface_, nullptr, 0, &required, &device_));
    EXPECT_EQ(platform::last_error(), DWORD{ERROR_INSUFFICIENT_BUFFER});
    EXPECT_EQ(required, 4 + (path.size() + 1) * 2);
    std::vector<SP_DEVICE_INTERFACE_DETAIL_DATA_W> detail(
        required / sizeof(SP_DEVICE_INTERFACE_DETAIL_DATA_W) + 1);
    detail[0].cbSize = sizeof(SP_DEVICE_INTERFACE_DETAIL_DATA_W);
    ASSERT_TRUE(
        SetupDiGetDeviceInterfaceDetailW(set_, &interface_, detail.data(), required, nullptr, nullptr));
    EXPECT_EQ(std::u16string(detail[0].DevicePath), path);

    DEVINST parent = 0;
    ASSERT_EQ(CM_Get_Parent(&parent, device_.DevInst, 0), DWORD{CR_SUCCESS});
    ULONG length = 0;
    ASSERT_EQ(CM_Get_Device_ID_Size(&length, parent, 0), DWORD{CR_SUCCESS});
    std::u16string id(length + 1, u'x');
    EXPECT_EQ(CM_Get_Device_IDW(parent, id.data(), length + 1, 0), DWORD{CR_SUCCESS});
    EXPECT_EQ(std::u16string(id.c_str()), u"USB\\VID_1234&PID_5678\\A1");
    EXPECT_EQ(CM_Get_Device_IDW(parent, id.data(), length - 1, 0), DWORD{CR_BUFFER_SMALL});
    EXPECT_EQ(CM_Get_Parent(&parent, 99, 0), DWORD{CR_INVALID_DEVNODE});

    SP_DRVINFO_DATA_W driver{sizeof(SP_DRVINFO_DATA_W)};
    EXPECT_TRUE(SetupDiEnumDriverInfoW(set_, &device_, SPDIT_COMPATDRIVER, 1, &driver));
    EXPECT_EQ(std::u16string(driver.Description), u"Second");
    EXPECT_FALSE(SetupDiEnumDriverInfoW(set_, &device_, SPDIT_COMPATDRIVER, 2, &driver));
    EXPECT_EQ(platform::last_error(), DWORD{ERROR_NO_MORE_ITEMS});
    EXPECT_TRUE(SetupDiDestroyDriverInfoList(set_, &device_, SPDIT_COMPATDRIVER));
    EXPECT_FALSE(SetupDiEnumDriverInfoW(set_, &device_, SPDIT_COMPATDRIVER, 0, &driver))
        << "the list is gone";

    ASSERT_TRUE(enumerate(1));
    EXPECT_FALSE(SetupDiGetDeviceInterfaceDetailW(set_, &interface_, nullptr, 0, &required, &device_));
    EXPECT_EQ(CM_Get_Parent(&parent, device_.DevInst, 0), DWORD{CR_NO_SUCH_DEVNODE});
    EXPECT_FALSE(enumerate(2));
    EXPECT_EQ(platform::last_error(), DWORD{ERROR_NO_MORE_ITEMS});
    EXPECT_TRUE(SetupDiDestroyDeviceInfoList(set_));
}

TEST_F(Devices, RecordsMustTellTheirSize) {
    test.looks_at_leftovers = false;
    start({{u"\\\\?\\usb#one", u"USB\\ONE", {}}});
    interface_.cbSize = 1;
    EXPECT_FALSE(enumerate(0));
    EXPECT_EQ(platform::last_error(), DWORD{ERROR_INVALID_USER_BUFFER});
    interface_.cbSize = sizeof(interface_);
    ASSERT_TRUE(enumerate(0));

    std::vector<SP_DEVICE_INTERFACE_DETAIL_DATA_W> detail(16);
    const DWORD size = static_cast<DWORD>(detail.size() * sizeof(detail[0]));
    for (const DWORD wrong : {0u, 6u, size}) {
        detail[0].cbSize = wrong;
        EXPECT_FALSE(
            SetupDiGetDeviceInterfaceDetailW(set_, &interface_, detail.data(), size, nullptr, nullptr));
        EXPECT_EQ(platform::last_error(), DWORD{ERROR_INVALID_USER_BUFFER});
    }
    device_.cbSize = 28; // a 32-bit program's
    EXPECT_FALSE(SetupDiGetDeviceInterfaceDetailW(set_, &interface_, nullptr, 0, nullptr, &device_));
    EXPECT_EQ(platform::last_error(), DWORD{ERROR_INVALID_USER_BUFFER});
}

} // namespace
