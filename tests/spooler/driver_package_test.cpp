#include "spooler/driver_package.h"

#include "harness/test_session.h"

#include <algorithm>

#include <gtest/gtest.h>

namespace {

class DriverPackage : public testing::Test {
protected:
    void SetUp() override {
        std::filesystem::copy(TRK_SAMPLE_MEDIUM, test.medium, std::filesystem::copy_options::recursive);
    }

    int install() { return install_driver_package("Label 100 Driver", TEXT("D:\\medium\\Drivers\\lbl.inf")); }

    TestSession test;
};

TEST_F(DriverPackage, GoesIntoTheStoreAndIsInstalledFromThere) {
    test.start();
    ASSERT_EQ(install(), 1);
    ASSERT_EQ(test.machine.spooler.packages.size(), 1u);
    const std::u16string stored = test.machine.spooler.packages[0].inf_path;
    EXPECT_EQ(test.machine.spooler.drivers.back().name, u"Label 100 Driver");
    EXPECT_EQ(test.machine.spooler.drivers.back().inf_path, stored);
    EXPECT_EQ(test.log(), "D:\\medium\\Drivers\\lbl.inf\r\nPackage uploaded:\r\n" +
                              platform::to_utf8(stored) + "\r\nPrinter Driver Installed\r\n");
    EXPECT_EQ(install(), 1) << "a package that is there already is uploaded again";
}

TEST_F(DriverPackage, FailuresStandInTheLog) {
    const struct {
        const char* call;
        std::uint32_t error;
        unsigned installs;
        const char* last_line;
    } table[] = {
        {"UploadPrinterDriverPackageW", 0x80070005, 0,
         "UploadPrinterDriverPackage error 80070005 Access is denied.\r\n"},
        {"UploadPrinterDriverPackageW", 0x8007f123, 0, "UploadPrinterDriverPackage error 8007f123 \r\n"},
        {"InstallPrinterDriverFromPackageW", 0x80070705, 1,
         "InstallPrinterDriverFromPackage error 80070705 The printer driver is unknown.\r\n"},
    };
    for (const auto& row : table) {
        test.machine.faults = {{row.call, 1, false, row.error, ""}};
        platform::Session& session = test.start();
        EXPECT_EQ(install(), 0);
        EXPECT_TRUE(test.log().ends_with(row.last_line)) << test.log();
        EXPECT_EQ(session.gate.count("InstallPrinterDriverFromPackageW"), row.installs);
        EXPECT_TRUE(session.memory.live().empty());
        test.stop();
    }
}

TEST_F(DriverPackage, RefusesANameThatDoesntFit) {
    test.start();
    EXPECT_EQ(install_driver_package(std::string(256, 'n').c_str(), TEXT("D:\\medium\\Drivers\\lbl.inf")), 0);
    EXPECT_EQ(platform::session().gate.count("UploadPrinterDriverPackageW"), 0u);
    EXPECT_NE(test.log().find("InstallPrinterDriverFromPackage error 8007006f "), std::string::npos);
}

// The stored copy's path has room for 259 characters; it holds the INF's name twice.
TEST_F(DriverPackage, TakesEveryPathThatTheStoreMayGive) {
    test.start();
    std::size_t longest = 0;
    for (std::size_t length = 60; length < 120; ++length) {
        const std::u16string inf = u"D:\\medium\\Drivers\\" + std::u16string(length, u'n') + u".inf";
        std::filesystem::rename(test.medium / "Drivers/lbl.inf",
                                test.medium / "Drivers" / (std::string(length, 'n') + ".inf"));
        if (install_driver_package("Label 100 Driver", inf.c_str()))
            longest = std::max(longest, test.machine.spooler.packages.back().inf_path.size());
        std::filesystem::rename(test.medium / "Drivers" / (std::string(length, 'n') + ".inf"),
                                test.medium / "Drivers/lbl.inf");
    }
    EXPECT_GE(longest, 258u);
    EXPECT_LE(longest, 259u);
}

} // namespace
