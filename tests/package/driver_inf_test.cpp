#include "harness/test_session.h"
#include "package/driver_inf.h"

#include <gtest/gtest.h>

#include <cstring>

namespace {

// Room as the program gives it, and a second of 6 bytes, each exactly as large as told.
struct Identity {
    explicit Identity(std::size_t room = 255) : driver(room), manu(room), mdl(room) {}

    InfFields fields() {
        return {driver.data(), size(), manu.data(), size(), mdl.data(), size(), &version, &has_usb};
    }
    int size() const { return static_cast<int>(driver.size()); }

    std::vector<char> driver;
    std::vector<char> manu;
    std::vector<char> mdl;
    DriverVersion version = 0;
    DWORD has_usb = 0;
};

// A text from its "Class=Printer" on, put together of the parts that a case replaces.
struct Inf {
    std::string version = "DriverVer=07/26/2024,1.2.3.4\r\n";
    std::string manufacturer = "[Manufacturer]\r\n%Maker%=Label_Models,NTamd64\r\n";
    std::string models = "[Label_Models.NTamd64]\r\n";
    std::string model = "\"Label 100 Driver\" = Label_100_Series, usbprint\\label100\r\n";
    std::string text() const { return "Class=Printer\r\n" + version + manufacturer + models + model; }
};

const std::string version_log = "Version:1.2.3.4\r\n";
const std::string manu_log = "manuName:Label_Models\r\n";
const std::string names_log =
    manu_log + "driverName:Label 100 Driver\r\nmdlName:Label_100_Series\r\nhasUSB:1\r\n";
const std::string found_log = version_log + names_log;
const std::string invalid_log = "Invalid DriverVer found in inf file\r\n";
const std::string missing_log = "No DriverVer found in inf file\r\n";
constexpr DriverVersion sample_version = 0x0001000200030004;

struct Search : TestSession {
    Search() { start(); }
    Identity identity;
    WCHAR path[256] = {};
    char file[512] = {};

    int find(int use_drivers_folder, int use_inf_folder) {
        return find_driver_inf(identity.driver.data(), 255, identity.manu.data(), 255, identity.mdl.data(),
                               255, path, file, use_drivers_folder, &identity.version, &identity.has_usb,
                               use_inf_folder);
    }
};

} // namespace

// The log tells every fact that was found, so it stands for the fields.
TEST(DriverInf, ScansTheParts) {
    const struct {
        const char* name;
        Inf inf;
        int accepted;
        DriverVersion version;
        std::string log;
    } cases[] = {
        {"sample", {}, 1, sample_version, found_log},
        {"no version", {.version = "DriverVer = 07/26/2024,1.2.3.4"}, 0, 0, missing_log},
        {"no date", {.version = "DriverVer=1.2.3.4"}, 0, 0, invalid_log},
        {"short version", {.version = "DriverVer=07/26/2024,1.2.3"}, 0, 0, invalid_log},
        {"decimal in, hexadecimal logged",
         {.version = "DriverVer=01/01/2024, 5.00.2195.1"},
         1,
         0x0005000008930001,
         "Version:5.0.893.1\r\n" + names_log},
        {"the low 16 bits count",
         {.version = "DriverVer=1/1/2024,65537.1.99999999999.0"},
         1,
         0x00010001ffff0000,
         "Version:10001.1.7fffffff.0\r\n" + names_log},
        {"no manufacturer", {.manufacturer = "[Maker]"}, 0, sample_version, version_log},
        {"a blank in the section's name",
         {.manufacturer = "[Manufacturer]\n%Maker% = Label_Models\n"},
         0,
         sample_version,
         version_log + "manuName: Label_Models\r\n"},
        {"no quote", {.model = ""}, 0, sample_version, version_log + manu_log},
        {"the first section that fits",
         {.models = "[Other]\n\"No\"=No\n[Label_Models]\n"},
         1,
         sample_version,
         found_log},
        {"nothing counts in front",
         {.manufacturer = "[Label_Models]\n\"No\"=No,usbprint\\x\n" + Inf().manufacturer, .model = "\"D\"=x"},
         1,
         sample_version,
         version_log + manu_log + "driverName:D\r\nmdlName:x\r\nhasUSB:0\r\n"},
        {"a token in the driver's place",
         {.model = "%Name%=Install\n[Strings]\nName=\"Later\"\nx=y"},
         1,
         sample_version,
         version_log + manu_log + "driverName:Later\r\nmdlName:y\r\nhasUSB:0\r\n"},
        {"blanks dropped, capitals don't count",
         {.model = "\"D\" = La bel,USBPRINT\\x"},
         1,
         sample_version,
         version_log + manu_log + "driverName:D\r\nmdlName:Label\r\nhasUSB:0\r\n"},
        {"the driver's quote counts from the name's last two characters on",
         {.manufacturer = "[Manufacturer]\n=a\"\"c\n", .models = "[a\"\"c]\n"},
         1,
         sample_version,
         version_log + "manuName:a\"\"c\r\ndriverName:c]\n\r\nmdlName:Label_100_Series\r\nhasUSB:1\r\n"},
        {"no USB behind the driver's name",
         {.model = "\"usbprint\\D\"=x"},
         1,
         sample_version,
         version_log + manu_log + "driverName:usbprint\\D\r\nmdlName:x\r\nhasUSB:0\r\n"},
        {"no install section",
         {.model = "\"D\"\nusbprint\\x"},
         0,
         sample_version,
         version_log + manu_log + "driverName:D\r\nhasUSB:1\r\n"},
    };
    for (const auto& item : cases) {
        TestSession session;
        session.start();
        Identity identity;
        const InfFields fields = identity.fields();
        EXPECT_EQ(scan_inf_driver(item.inf.text().c_str(), &fields), item.accepted) << item.name;
        EXPECT_EQ(identity.version, item.version) << item.name;
        EXPECT_EQ(session.log(), item.log) << item.name;
    }
}

TEST(DriverInf, CutsNamesAtTheirSizes) {
    TestSession session;
    session.machine.code_page = 932;
    session.start();
    Identity identity(6);
    const InfFields fields = identity.fields();
    Inf inf{.manufacturer = "[Manufacturer]\n=Models,x\n",
            .models = "[Models]",
            .model = "\"1234\x83\x65\"=a b cdefg"};
    EXPECT_EQ(scan_inf_driver(inf.text().c_str(), &fields), 1);
    EXPECT_STREQ(identity.manu.data(), "Mode"); // and "[Mode" was enough to find the section
    EXPECT_STREQ(identity.driver.data(), "1234");
    EXPECT_STREQ(identity.mdl.data(), "abcde");
    inf.model = "\"12345\"=" + std::string(5000, 'l');
    EXPECT_EQ(scan_inf_driver(inf.text().c_str(), &fields), 1);
    EXPECT_STREQ(identity.driver.data(), "12345");
    EXPECT_STREQ(identity.mdl.data(), "lllll");
}

TEST(DriverInf, SmallestSizes) {
    TestSession session;
    session.start();
    const std::string text = Inf().text();
    char driver[1] = {'x'};
    char manu[2] = {'x', 'x'};
    char mdl[1] = {'x'};
    DriverVersion version = 0;
    DWORD has_usb = 0;
    const auto accepted = [&](int driver_size, int manu_size, int mdl_size) {
        const InfFields fields = {driver, driver_size, manu, manu_size, mdl, mdl_size, &version, &has_usb};
        return scan_inf_driver(text.c_str(), &fields);
    };
    EXPECT_EQ(accepted(0, 2, 1) + accepted(1, 1, 1) + accepted(1, 2, 0), 0);
    EXPECT_EQ(session.log(), "");
    EXPECT_EQ(accepted(1, 2, 1), 1);
    EXPECT_EQ(driver[0] | manu[0] | mdl[0], 0);
}

TEST(DriverInf, ReadsWithinOneChunk) {
    const std::string text = Inf().text();
    const struct {
        const char* name;
        std::string bytes;
        int accepted;
        std::string log;
    } cases[] = {
        {"byte order mark", "\xef\xbb\xbf" + text, 1, found_log},
        {"a comment counts", "; " + text, 1, found_log},
        {"second chunk", std::string(4095, '\n') + text, 1, found_log},
        {"start across the boundary", std::string(4095 - 5, '\n') + text, 0, ""},
        {"rest across the boundary", std::string(4095 - 60, '\n') + text, 0, "Version:1.2.3.4\r\n"},
        {"behind a NUL", std::string(1, '\0') + text, 0, ""},
        {"other case", "class=Printer" + text.substr(13), 0, ""},
        {"version first", "DriverVer=07/26/2024,1.2.3.4\r\nClass=Printer\r\n", 0,
         "No DriverVer found in inf file\r\n"},
        {"empty", "", 0, ""},
    };
    for (const auto& item : cases) {
        SCOPED_TRACE(item.name);
        TestSession session;
        TestSession::write(session.drive_c / "a.inf", item.bytes);
        session.start();
        Identity identity;
        EXPECT_EQ(read_inf_driver(u"C:\\a.inf", identity.driver.data(), 255, identity.manu.data(), 255,
                                  identity.mdl.data(), 255, &identity.version, &identity.has_usb),
                  item.accepted);
        EXPECT_EQ(session.log(), item.log);
    }
}

TEST(DriverInf, TakesTheFirstFileThatFits) {
    Search search;
    const std::filesystem::path drivers = search.medium / "Drivers";
    TestSession::write(drivers / "aaa.inf", "nothing");
    TestSession::write(drivers / "lbl.inf", Inf().text());
    TestSession::write(drivers / "later.inf", "");
    TestSession::write(drivers / "zzz.inf", Inf().text());
    EXPECT_EQ(search.find(1, 1), 1);
    EXPECT_EQ(std::u16string(search.path), u"D:\\medium\\Drivers\\lbl.inf");
    EXPECT_STREQ(search.file, "lbl.inf");
    EXPECT_EQ(search.log(),
              "D:\\medium\\Drivers\\*.inf\r\nNot found in aaa.inf\r\nNot found in later.inf\r\n" + found_log +
                  "Found in lbl.inf \"Label 100 Driver\"\r\ninf file D:\\medium\\Drivers\\lbl.inf\r\n");
}

TEST(DriverInf, SearchesTheFolderAskedFor) {
    const struct {
        const char* name;
        int use_drivers_folder;
        int use_inf_folder;
        const char* expected;
    } cases[] = {{"drivers first", 1, 1, "D:\\medium\\Drivers\\*.inf\r\nFindFirstFile error!\r\n"},
                 {"inf", 0, 1, "D:\\medium\\inf\\*.inf\r\nNot found in i.inf\r\n"},
                 {"current folder", 0, 0, "D:\\medium\\*.inf\r\nNot found in c.inf\r\n"}};
    for (const auto& item : cases) {
        Search search;
        TestSession::write(search.medium / "inf" / "i.inf", "");
        TestSession::write(search.medium / "c.inf", "");
        EXPECT_EQ(search.find(item.use_drivers_folder, item.use_inf_folder), 0) << item.name;
        EXPECT_EQ(search.log(), item.expected) << item.name;
    }
}

TEST(DriverInf, RefusesFoldersThatDontFit) {
    const struct {
        const char* name;
        std::size_t folder_length;
        std::string log_end;
    } cases[] = {
        {"pattern fits, path doesn't", 235,
         "\\Drivers\\*.inf\r\nfile open failed\r\nNot found in long_name.inf\r\n"},
        {"pattern too long", 245, "\\Drivers\\*\r\nFindFirstFile error!\r\n"},
        {"folder too long", 256, "\r\nFindFirstFile error!\r\n"},
    };
    for (const auto& item : cases) {
        TestSession session;
        session.machine.current_folder = u"D:\\" + std::u16string(item.folder_length - 3, u'm');
        TestSession::write(session.medium / "Drivers" / "long_name.inf", Inf().text());
        session.start();
        Identity identity;
        WCHAR path[256] = {};
        char file[512] = {};
        EXPECT_EQ(find_driver_inf(identity.driver.data(), 255, identity.manu.data(), 255, identity.mdl.data(),
                                  255, path, file, 1, &identity.version, &identity.has_usb, 0),
                  0);
        const std::string log = session.log();
        EXPECT_TRUE(log.ends_with(item.log_end)) << item.name << '\n' << log;
    }
}

TEST(DriverInf, NamesTheCurrentFolder) {
    const struct {
        std::u16string folder;
        const char* name;
    } cases[] = {{u"D:\\packages\\Caf\u00e9", "Caf\xe9"}, {u"D:\\" + std::u16string(260, u'm'), ""}};
    for (const auto& item : cases) {
        TestSession session;
        session.machine.current_folder = item.folder;
        session.start();
        char name[512] = "old";
        EXPECT_EQ(get_current_folder_name(name), 1);
        EXPECT_STREQ(name, item.name);
        EXPECT_EQ(session.log(), "cwd " + std::string(item.name) + "\r\n");
    }
}
