#include "harness/test_session.h"

#include <gtest/gtest.h>

#include <winspool.h>

#include "support/platform_gaps.h"

namespace fs = std::filesystem;

namespace {

const std::string inf =
    "[Version]\r\nSignature=\"$Windows NT$\"\r\nClass=Printer\r\nDriverVer=07/26/2024,1.2.3.4\r\n"
    "[Manufacturer]\r\n%Maker%=Models,NTamd64\r\n"
    "[Models.NTamd64]\r\n\"Label \xE4 Driver\" = Label\r\n"
    "[Label]\r\nCopyFiles=@label.gpd\r\n"
    "[SourceDisksNames]\r\n1=Disk\r\n[SourceDisksFiles]\r\nlabel.gpd=1\r\n";

// The package as the program sees it, and its INF's upper and lower case as nobody wrote it.
const WCHAR* const medium_inf = TEXT("D:\\medium\\drivers\\LBL.INF");

class Packages : public testing::Test {
protected:
    void SetUp() override {
        TestSession::write(test.medium / "Drivers" / "lbl.inf", inf);
        TestSession::write(test.medium / "Drivers" / "label.gpd", "data");
    }

    static HRESULT upload(const WCHAR* path, std::u16string& stored, DWORD flags = UPDP_UPLOAD_ALWAYS,
                          ULONG capacity = 260) {
        std::u16string buffer(260, u'x');
        const HRESULT result =
            UploadPrinterDriverPackageW(nullptr, path, nullptr, flags, nullptr, buffer.data(), &capacity);
        if (result == 0)
            stored = buffer.c_str();
        needed = capacity;
        return result;
    }
    std::vector<fs::path> store_folders() const {
        std::vector<fs::path> found;
        const fs::path root = test.drive_c / "Windows" / "System32" / "DriverStore" / "FileRepository";
        if (fs::exists(root))
            for (const auto& entry : fs::directory_iterator(root))
                found.push_back(entry.path());
        return found;
    }

    TestSession test;
    static ULONG needed;
};

ULONG Packages::needed = 0;

TEST_F(Packages, AreCopiedInstalledAndDeleted) {
    test.start();
    auto& spooler = test.machine.spooler;
    std::u16string stored;
    ASSERT_EQ(upload(medium_inf, stored), 0);
    ASSERT_EQ(store_folders().size(), 1u);
    const fs::path folder = store_folders()[0];
    EXPECT_EQ(platform::to_utf8(stored), "C:\\Windows\\System32\\DriverStore\\FileRepository\\" +
                                             folder.filename().string() + "\\LBL.INF");
    EXPECT_EQ(folder.filename().string().substr(0, 14), "LBL.INF_amd64_");
    EXPECT_EQ(folder.filename().string().size(), 30u);
    EXPECT_EQ(TestSession::read(folder / "LBL.INF"), inf);
    EXPECT_EQ(TestSession::read(folder / "label.gpd"), "data");

    std::u16string again;
    EXPECT_EQ(upload(medium_inf, again), 0);
    EXPECT_EQ(again, stored);
    EXPECT_EQ(spooler.packages.size(), 1u);

    const auto unknown_driver = static_cast<HRESULT>(0x80070705u);
    EXPECT_EQ(InstallPrinterDriverFromPackageW(nullptr, stored.c_str(), TEXT("Label Driver"), nullptr, 0),
              unknown_driver);
    EXPECT_EQ(InstallPrinterDriverFromPackageW(nullptr, medium_inf, TEXT("Label \u00E4 Driver"), nullptr, 0),
              static_cast<HRESULT>(0x80070002u))
        << "not a path of the store";
    const std::size_t drivers = spooler.drivers.size();
    ASSERT_EQ(
        InstallPrinterDriverFromPackageW(nullptr, stored.c_str(), TEXT("Label \u00E4 Driver"), nullptr, 0),
        0);
    EXPECT_EQ(
        InstallPrinterDriverFromPackageW(nullptr, stored.c_str(), TEXT("Label \u00E4 Driver"), nullptr, 0),
        0);
    ASSERT_EQ(spooler.drivers.size(), drivers + 1);
    EXPECT_EQ(spooler.drivers.back().version, 0x0001'0002'0003'0004u);

    spooler.queues[0].driver = u"Label \u00E4 Driver";
    EXPECT_EQ(DeletePrinterDriverPackageW(nullptr, stored.c_str(), nullptr),
              static_cast<HRESULT>(0x80070BC7u));
    EXPECT_EQ(store_folders().size(), 1u);
    spooler.queues.clear();
    spooler.drivers_hold_packages = true;
    EXPECT_EQ(DeletePrinterDriverPackageW(nullptr, stored.c_str(), nullptr),
              static_cast<HRESULT>(0x80070BC7u));
    spooler.drivers_hold_packages = false;
    EXPECT_EQ(DeletePrinterDriverPackageW(nullptr, stored.c_str(), nullptr), 0);
    EXPECT_TRUE(store_folders().empty());
    EXPECT_EQ(DeletePrinterDriverPackageW(nullptr, stored.c_str(), nullptr),
              static_cast<HRESULT>(0x80070002u));
    EXPECT_EQ(spooler.drivers.size(), drivers + 1) << "a driver stays registered without its package";
}

TEST_F(Packages, AreRefusedForAReason) {
    TestSession::write(test.medium / "bare" / "lbl.inf", inf); // the file that it names is missing
    TestSession::write(test.medium / "mouse" / "m.inf",
                       "[Version]\r\nSignature=$CHICAGO$\r\nClass=Mouse\r\n");
    TestSession::write(test.medium / "out" / "lbl.inf",
                       inf + "[SourceDisksFiles]\r\nlabel.gpd=1,..\\Drivers\r\n");
    test.start();
    const struct {
        const char* name;
        const WCHAR* path;
        DWORD flags;
        ULONG capacity;
        DWORD result;
    } cases[] = {{"no such file", TEXT("D:\\medium\\Drivers\\no.inf"), UPDP_UPLOAD_ALWAYS, 260, 0x80070002},
                 {"part missing", TEXT("D:\\medium\\bare\\lbl.inf"), UPDP_UPLOAD_ALWAYS, 260, 0x80070002},
                 {"part outside", TEXT("D:\\medium\\out\\lbl.inf"), UPDP_UPLOAD_ALWAYS, 260, 0x80070002},
                 {"other class", TEXT("D:\\medium\\mouse\\m.inf"), UPDP_UPLOAD_ALWAYS, 260, 0x800F0201},
                 {"no room for the path", medium_inf, UPDP_UPLOAD_ALWAYS, 85, 0x8007007A},
                 {"only looked for", medium_inf, UPDP_CHECK_DRIVERSTORE, 260, 0x80070002},
                 {"looked for and uploaded", medium_inf, UPDP_CHECK_DRIVERSTORE | UPDP_UPLOAD_ALWAYS, 260,
                  0x80070057}};
    for (const auto& refused : cases) {
        SCOPED_TRACE(refused.name);
        std::u16string stored;
        EXPECT_EQ(static_cast<DWORD>(upload(refused.path, stored, refused.flags, refused.capacity)),
                  refused.result);
        EXPECT_TRUE(store_folders().empty());
    }
    std::u16string stored;
    EXPECT_EQ(upload(medium_inf, stored, UPDP_UPLOAD_ALWAYS, 86), 0) << "the capacity counts the terminator";
    EXPECT_EQ(needed, 86u);
    EXPECT_EQ(upload(medium_inf, stored, UPDP_CHECK_DRIVERSTORE), 0);
    test.machine.spooler.packages[0].deny_delete = true;
    EXPECT_EQ(DeletePrinterDriverPackageW(nullptr, stored.c_str(), nullptr),
              static_cast<HRESULT>(0x80070BC7u));
    EXPECT_EQ(store_folders().size(), 1u);
}

// A fault's error is a plain code or a result; S_FALSE is a success to those who test the sign alone.
TEST_F(Packages, FaultsAreResultsOfBothKinds) {
    const struct {
        std::uint32_t error, result;
    } cases[] = {{5, 0x80070005}, {0x80004005, 0x80004005}, {1, 1}};
    for (const char* call :
         {"UploadPrinterDriverPackageW", "InstallPrinterDriverFromPackageW", "DeletePrinterDriverPackageW"})
        for (const auto& row : cases)
            test.machine.faults.push_back({call, 1, false, row.error, ""}); // counted from the one before
    test.start();
    for (const auto& row : cases) {
        std::u16string stored;
        const auto expected = static_cast<HRESULT>(row.result);
        EXPECT_EQ(upload(medium_inf, stored), expected);
        EXPECT_EQ(InstallPrinterDriverFromPackageW(nullptr, medium_inf, TEXT("x"), nullptr, 0), expected);
        EXPECT_EQ(DeletePrinterDriverPackageW(nullptr, medium_inf, nullptr), expected);
    }
    EXPECT_TRUE(store_folders().empty());
}

TEST_F(Packages, MayBeUtf16) {
    std::string wide = "\xFF\xFE";
    for (const char byte : inf) // this code page's letters have their Latin-1 numbers
        wide.append({byte, '\0'});
    TestSession::write(test.medium / "Drivers" / "lbl.inf", wide);
    test.start();
    std::u16string stored;
    ASSERT_EQ(upload(medium_inf, stored), 0);
    EXPECT_EQ(
        InstallPrinterDriverFromPackageW(nullptr, stored.c_str(), TEXT("Label \u00E4 Driver"), nullptr, 0),
        0);
}

} // namespace
