#include "harness/calls_fixture.h"

#include <winspool.h>

#include <cstddef>
#include <cstring>
#include <vector>

namespace {

using Bytes = std::vector<BYTE>;
using Enumerate = BOOL (*)(DWORD level, BYTE* buffer, DWORD size, DWORD* needed, DWORD* count);

BOOL queues(DWORD level, BYTE* buffer, DWORD size, DWORD* needed, DWORD* count) {
    return EnumPrintersW(PRINTER_ENUM_LOCAL, nullptr, level, buffer, size, needed, count);
}
BOOL drivers(DWORD level, BYTE* buffer, DWORD size, DWORD* needed, DWORD* count) {
    return EnumPrinterDriversW(nullptr, nullptr, level, buffer, size, needed, count);
}
BOOL ports(DWORD level, BYTE* buffer, DWORD size, DWORD* needed, DWORD* count) {
    return EnumPortsW(nullptr, level, buffer, size, needed, count);
}
BOOL monitors(DWORD level, BYTE* buffer, DWORD size, DWORD* needed, DWORD* count) {
    return EnumMonitorsW(nullptr, level, buffer, size, needed, count);
}
BOOL processors(DWORD level, BYTE* buffer, DWORD size, DWORD* needed, DWORD* count) {
    return EnumPrintProcessorsW(nullptr, nullptr, level, buffer, size, needed, count);
}

Bytes all_records(Enumerate enumerate, DWORD level, DWORD& count) {
    DWORD needed = 0;
    enumerate(level, nullptr, 0, &needed, &count);
    Bytes buffer(needed);
    EXPECT_TRUE(enumerate(level, buffer.data(), needed, &needed, &count));
    return buffer;
}

// The texts behind one pointer field of each record.
template<class Record>
std::vector<Text> texts(Enumerate enumerate, DWORD level, WCHAR* Record::*field) {
    DWORD count = 0;
    const Bytes buffer = all_records(enumerate, level, count);
    const auto* records = reinterpret_cast<const Record*>(buffer.data());
    std::vector<Text> found;
    for (DWORD i = 0; i < count; ++i)
        found.emplace_back(records[i].*field);
    return found;
}

template<class Item>
bool holds(const std::vector<Item>& items, const Item& wanted) {
    for (const Item& item : items)
        if (item == wanted)
            return true;
    return false;
}

class Spooler : public CallsTest {
protected:
    void SetUp() override {
        driver_ = texts(drivers, 1, &DRIVER_INFO_1W::pName).at(0);
        info_ = {};
        info_.pPrinterName = name_.data();
        info_.pPortName = port_.data();
        info_.pDriverName = driver_.data();
        info_.pPrintProcessor = processor_.data();
        info_.pDatatype = datatype_.data();
        info_.Attributes = PRINTER_ATTRIBUTE_LOCAL | PRINTER_ATTRIBUTE_RAW_ONLY;
    }

    HANDLE add() { return AddPrinterW(nullptr, 2, reinterpret_cast<BYTE*>(&info_)); }
    static HANDLE open(Text name, ACCESS_MASK access) {
        PRINTER_DEFAULTSW defaults{nullptr, nullptr, access};
        HANDLE handle = nullptr;
        return OpenPrinterW(name.data(), &handle, &defaults) ? handle : nullptr;
    }

    Text name_ = TEXT("Shelf printer"), port_ = TEXT("FILE:"), driver_, processor_ = TEXT("winprint"),
         datatype_ = TEXT("RAW");
    PRINTER_INFO_2W info_{};
};

TEST_F(Spooler, EnumerationsTellTheirSizeAndFillOneBuffer) {
    const struct {
        const char* name;
        Enumerate enumerate;
        DWORD level;
        std::size_t name_at; // of a record's first text pointer
    } cases[] = {{"queues 1", queues, 1, offsetof(PRINTER_INFO_1W, pDescription)},
                 {"queues 2", queues, 2, offsetof(PRINTER_INFO_2W, pPrinterName)},
                 {"drivers 1", drivers, 1, 0},
                 {"drivers 2", drivers, 2, offsetof(DRIVER_INFO_2W, pName)},
                 {"drivers 6", drivers, 6, offsetof(DRIVER_INFO_6W, pName)},
                 {"ports 1", ports, 1, 0},
                 {"ports 2", ports, 2, 0},
                 {"monitors 1", monitors, 1, 0},
                 {"monitors 2", monitors, 2, 0},
                 {"processors 1", processors, 1, 0}};
    for (const auto& test : cases) {
        SCOPED_TRACE(test.name);
        DWORD needed = 0, count = 99;
        EXPECT_FALSE(test.enumerate(test.level, nullptr, 0, &needed, &count));
        EXPECT_EQ(GetLastError(), DWORD{ERROR_INSUFFICIENT_BUFFER});
        EXPECT_EQ(count, 0u) << "the count is stored on a size query too";
        ASSERT_GT(needed, sizeof(void*));

        Bytes buffer(needed);
        const DWORD size = needed;
        count = 99;
        EXPECT_FALSE(test.enumerate(test.level, buffer.data(), size - 1, &needed, &count));
        EXPECT_EQ(GetLastError(), DWORD{ERROR_INSUFFICIENT_BUFFER});
        EXPECT_EQ(count, 0u);
        EXPECT_EQ(needed, size);

        EXPECT_TRUE(test.enumerate(test.level, buffer.data(), size, &needed, &count));
        EXPECT_GT(count, 0u);
        const BYTE* text = nullptr;
        std::memcpy(&text, buffer.data() + test.name_at, sizeof(text));
        EXPECT_GE(text, buffer.data());
        EXPECT_LT(text, buffer.data() + size) << "the texts stand in the caller's buffer";

        EXPECT_FALSE(test.enumerate(77, buffer.data(), size, &needed, &count));
        EXPECT_EQ(GetLastError(), DWORD{ERROR_INVALID_LEVEL});
    }
    EXPECT_TRUE(holds(texts(processors, 1, &PRINTPROCESSOR_INFO_1W::pName), processor_));
    EXPECT_TRUE(holds(texts(monitors, 2, &MONITOR_INFO_2W::pName), Text(TEXT("Standard TCP/IP Port"))));
    EXPECT_TRUE(holds(texts(ports, 2, &PORT_INFO_2W::pPortName), port_));
}

TEST_F(Spooler, OpensWhatItHas) {
    const struct {
        Text name;
        ACCESS_MASK access;
        DWORD error;
    } refused[] = {
        {TEXT("No such queue"), PRINTER_ALL_ACCESS, ERROR_INVALID_PRINTER_NAME},
        {TEXT(",XcvMonitor No such monitor"), SERVER_ACCESS_ADMINISTER, ERROR_INVALID_PRINTER_NAME}};
    for (const auto& test : refused) {
        Text name = test.name;
        PRINTER_DEFAULTSW defaults{nullptr, nullptr, test.access};
        HANDLE handle = &name;
        EXPECT_FALSE(OpenPrinterW(name.data(), &handle, &defaults));
        EXPECT_EQ(GetLastError(), test.error);
        EXPECT_EQ(handle, nullptr);
    }
    HANDLE queue = open(texts(queues, 1, &PRINTER_INFO_1W::pName).at(0), PRINTER_ALL_ACCESS);
    ASSERT_NE(queue, nullptr);
    EXPECT_TRUE(ClosePrinter(queue));
    EXPECT_FALSE(OpenPrinterW(name_.data(), nullptr, nullptr));
}

TEST_F(Spooler, AddsAQueueOnlyWithItsPartsInPlace) {
    Text too_long(221, 'q'), longest(220, 'q');
    Text comma = TEXT("a,b"), unknown = TEXT("unknown"), empty;
    const struct {
        const char* name;
        WCHAR* PRINTER_INFO_2W::*field;
        WCHAR* value;
        DWORD error; // 0: it is added
    } cases[] = {
        {"name empty", &PRINTER_INFO_2W::pPrinterName, empty.data(), ERROR_INVALID_PRINTER_NAME},
        {"name with comma", &PRINTER_INFO_2W::pPrinterName, comma.data(), ERROR_INVALID_PRINTER_NAME},
        {"name too long", &PRINTER_INFO_2W::pPrinterName, too_long.data(), ERROR_INVALID_PRINTER_NAME},
        {"longest name", &PRINTER_INFO_2W::pPrinterName, longest.data(), 0},
        {"port", &PRINTER_INFO_2W::pPortName, unknown.data(), ERROR_UNKNOWN_PORT},
        {"driver", &PRINTER_INFO_2W::pDriverName, unknown.data(), ERROR_UNKNOWN_PRINTER_DRIVER},
        {"processor", &PRINTER_INFO_2W::pPrintProcessor, unknown.data(), ERROR_UNKNOWN_PRINTPROCESSOR},
        {"datatype", &PRINTER_INFO_2W::pDatatype, unknown.data(), ERROR_INVALID_DATATYPE},
        {"no datatype", &PRINTER_INFO_2W::pDatatype, nullptr, 0}};
    for (const auto& test : cases) {
        SCOPED_TRACE(test.name);
        const PRINTER_INFO_2W saved = info_;
        info_.*test.field = test.value;
        HANDLE queue = add();
        EXPECT_EQ(queue == nullptr ? GetLastError() : 0, test.error);
        if (queue != nullptr) {
            EXPECT_TRUE(DeletePrinter(queue));
            EXPECT_TRUE(ClosePrinter(queue));
        }
        info_ = saved;
    }
    EXPECT_EQ(AddPrinterW(nullptr, 77, reinterpret_cast<BYTE*>(&info_)), nullptr);
    EXPECT_EQ(GetLastError(), DWORD{ERROR_INVALID_LEVEL});
}

TEST_F(Spooler, AQueueLivesUntilItIsDeleted) {
    HANDLE queue = add();
    ASSERT_NE(queue, nullptr);
    Text other_case = TEXT("SHELF PRINTER");
    info_.pPrinterName = other_case.data();
    EXPECT_EQ(add(), nullptr);
    EXPECT_EQ(GetLastError(), DWORD{ERROR_PRINTER_ALREADY_EXISTS});

    WCHAR default_name[64];
    DWORD size = 64;
    EXPECT_TRUE(SetDefaultPrinterW(name_.c_str()));
    EXPECT_TRUE(GetDefaultPrinterW(default_name, &size));
    EXPECT_EQ(Text(default_name), name_);
    EXPECT_EQ(size, name_.size() + 1);
    EXPECT_FALSE(GetDefaultPrinterW(default_name, &(size = 3)));
    EXPECT_EQ(GetLastError(), DWORD{ERROR_INSUFFICIENT_BUFFER});
    EXPECT_EQ(size, name_.size() + 1);
    EXPECT_FALSE(SetDefaultPrinterW(TEXT("No such queue")));
    EXPECT_EQ(GetLastError(), DWORD{ERROR_INVALID_PRINTER_NAME});

    HANDLE user = open(name_, PRINTER_ACCESS_USE);
    ASSERT_NE(user, nullptr);
    EXPECT_FALSE(DeletePrinter(user));
    EXPECT_EQ(GetLastError(), DWORD{ERROR_ACCESS_DENIED});
    EXPECT_TRUE(ClosePrinter(user));

    EXPECT_TRUE(DeletePrinter(queue));
    EXPECT_TRUE(ClosePrinter(queue));
    EXPECT_FALSE(holds(texts(queues, 2, &PRINTER_INFO_2W::pPrinterName), name_));
    EXPECT_TRUE(GetDefaultPrinterW(default_name, &(size = 64)));
    EXPECT_NE(Text(default_name), name_);
}

TEST_F(Spooler, KeepsPrinterDataUnderKeys) {
    HANDLE queue = add();
    ASSERT_NE(queue, nullptr);
    DWORD needed = 99;
    EXPECT_EQ(EnumPrinterKeyW(queue, TEXT("Label Sizes"), nullptr, 0, &needed), DWORD{ERROR_FILE_NOT_FOUND});

    BYTE number[] = {1, 0, 0, 0};
    BYTE text[] = "4x6 \xE4"; // a letter that the ANSI code page turns into U+00E4
    EXPECT_EQ(SetPrinterDataExA(queue, "Label Sizes\\258", "version", 4, number, 4), 0u);
    EXPECT_EQ(SetPrinterDataExA(queue, "Label Sizes\\258", "name", 1, text, sizeof(text)), 0u);
    EXPECT_EQ(SetPrinterDataExA(queue, "label sizes\\259", "version", 4, number, 4), 0u);
    EXPECT_EQ(SetPrinterDataExA(queue, "", "version", 4, number, 4), DWORD{ERROR_INVALID_PARAMETER});
    EXPECT_EQ(SetPrinterDataExA(queue, "Label Sizes 2\\1", "version", 4, number, 4), 0u);

    EXPECT_EQ(EnumPrinterKeyW(queue, TEXT("Label Sizes"), nullptr, 0, &needed), DWORD{ERROR_MORE_DATA});
    ASSERT_EQ(needed, sizeof(TEXT("258\0"
                                  "259\0")));
    WCHAR keys[9] = {};
    EXPECT_EQ(EnumPrinterKeyW(queue, TEXT("Label Sizes"), keys, sizeof(keys), &needed), 0u);
    EXPECT_EQ(Text(keys, 9), Text(TEXT("258\0"
                                       "259\0"),
                                  9));
    EXPECT_EQ(EnumPrinterKeyW(queue, TEXT("Label Sizes\\258"), nullptr, 0, &needed), 0u) << "no keys below";

    DWORD type = 0;
    WCHAR name[16] = {};
    EXPECT_EQ(GetPrinterDataExW(queue, TEXT("Label Sizes\\258"), TEXT("NAME"), &type, nullptr, 0, &needed),
              DWORD{ERROR_MORE_DATA});
    EXPECT_EQ(needed, 12u);
    EXPECT_EQ(GetPrinterDataExW(queue, TEXT("Label Sizes\\258"), TEXT("NAME"), &type,
                                reinterpret_cast<BYTE*>(name), sizeof(name), &needed),
              0u);
    EXPECT_EQ(type, 1u);
    EXPECT_EQ(Text(name), TEXT("4x6 \u00E4"));
    EXPECT_EQ(GetPrinterDataExW(queue, TEXT("Label Sizes\\258"), TEXT("width"), &type, nullptr, 0, &needed),
              DWORD{ERROR_FILE_NOT_FOUND});

    HANDLE user = open(name_, PRINTER_ACCESS_USE);
    EXPECT_EQ(SetPrinterDataExA(user, "Label Sizes\\258", "version", 4, number, 4),
              DWORD{ERROR_ACCESS_DENIED});
    EXPECT_TRUE(ClosePrinter(user));
    EXPECT_TRUE(DeletePrinter(queue));
    EXPECT_TRUE(ClosePrinter(queue));
}

// The Standard TCP/IP monitor's blocks, laid out here once more by their published offsets.
void put_number(Bytes& block, std::size_t at, DWORD value) {
    std::memcpy(block.data() + at, &value, 4);
}

void put_text(Bytes& block, std::size_t at, const Text& text) {
    std::memcpy(block.data() + at, text.data(), text.size() * sizeof(WCHAR));
}

Bytes add_block(const Text& port, const Text& address) {
    Bytes block(964);
    put_text(block, 0, port);
    put_number(block, 128, 1);   // version
    put_number(block, 132, 1);   // RAW
    put_number(block, 136, 964); // size
    put_text(block, 144, address);
    put_text(block, 378, address);
    put_number(block, 952, 9100);
    return block;
}

Bytes delete_block(const Text& port) {
    Bytes block(236);
    put_text(block, 0, port);
    put_number(block, 228, 1);
    return block;
}

DWORD status_of(HANDLE monitor, const WCHAR* command, Bytes block) {
    DWORD needed = 99, status = 99;
    EXPECT_TRUE(XcvDataW(monitor, command, block.data(), static_cast<DWORD>(block.size()), nullptr, 0,
                         &needed, &status));
    EXPECT_EQ(needed, 0u);
    return status;
}

TEST_F(Spooler, TheTcpMonitorReadsItsBlocks) {
    HANDLE monitor = open(TEXT(",XcvMonitor Standard TCP/IP Port"), SERVER_ACCESS_ADMINISTER);
    ASSERT_NE(monitor, nullptr);
    const Text port = TEXT("NET_10.0.0.7");
    const Bytes good = add_block(port, TEXT("10.0.0.7")), gone = delete_block(port);
    const struct {
        const char* name;
        const WCHAR* command;
        const Bytes* block;
        std::size_t at; // where the block is changed
        DWORD value;
        DWORD status;
    } cases[] = {{"other version", TEXT("AddPort"), &good, 128, 2, ERROR_INVALID_LEVEL},
                 {"other size", TEXT("AddPort"), &good, 136, 960, ERROR_INVALID_DATA},
                 {"no protocol", TEXT("AddPort"), &good, 132, 0, ERROR_INVALID_PARAMETER},
                 {"first reserved number", TEXT("AddPort"), &good, 140, 1, ERROR_INVALID_PARAMETER},
                 {"last reserved bytes", TEXT("AddPort"), &good, 948, 1, ERROR_INVALID_PARAMETER},
                 {"no address", TEXT("AddPort"), &good, 144, 0, ERROR_INVALID_PARAMETER},
                 {"no port number", TEXT("AddPort"), &good, 952, 0, ERROR_INVALID_PARAMETER},
                 {"unknown command", TEXT("MakePort"), &good, 952, 9100, ERROR_INVALID_PARAMETER},
                 {"good", TEXT("AddPort"), &good, 952, 9100, 0},
                 {"there already", TEXT("AddPort"), &good, 952, 9100, ERROR_ALREADY_EXISTS},
                 {"delete, other version", TEXT("DeletePort"), &gone, 228, 2, ERROR_INVALID_LEVEL},
                 {"delete, reserved", TEXT("DeletePort"), &gone, 128, 1, ERROR_INVALID_PARAMETER}};
    for (const auto& test : cases) {
        SCOPED_TRACE(test.name);
        Bytes block = *test.block;
        put_number(block, test.at, test.value);
        EXPECT_EQ(status_of(monitor, test.command, block), test.status);
    }
    EXPECT_EQ(status_of(monitor, TEXT("AddPort"), Bytes(good.begin(), good.end() - 1)),
              DWORD{ERROR_INVALID_DATA});
    EXPECT_EQ(status_of(monitor, TEXT("AddPort"), add_block(Text(64, 'p'), TEXT("10.0.0.8"))),
              DWORD{ERROR_INVALID_PARAMETER})
        << "a name without terminator";

    port_ = port;
    info_.pPortName = port_.data();
    HANDLE queue = add();
    ASSERT_NE(queue, nullptr);
    EXPECT_EQ(status_of(monitor, TEXT("DeletePort"), gone), DWORD{ERROR_BUSY});
    EXPECT_TRUE(DeletePrinter(queue));
    EXPECT_TRUE(ClosePrinter(queue));
    EXPECT_EQ(status_of(monitor, TEXT("DeletePort"), gone), 0u);
    EXPECT_EQ(status_of(monitor, TEXT("DeletePort"), gone), DWORD{ERROR_UNKNOWN_PORT});
    EXPECT_EQ(status_of(monitor, TEXT("DeletePort"), delete_block(TEXT("FILE:"))), DWORD{ERROR_UNKNOWN_PORT})
        << "another monitor's port";
    EXPECT_TRUE(ClosePrinter(monitor));

    HANDLE without_rights = open(TEXT(",XcvMonitor Standard TCP/IP Port"), 0);
    ASSERT_NE(without_rights, nullptr);
    EXPECT_EQ(status_of(without_rights, TEXT("AddPort"), good), DWORD{ERROR_ACCESS_DENIED});
    EXPECT_TRUE(ClosePrinter(without_rights));
}

TEST_F(Spooler, AddsAMonitorOnce) {
    Text name = TEXT("Test Port"), environment = TEXT("Windows x64"), dll = TEXT("testmon.dll");
    MONITOR_INFO_2W info{name.data(), nullptr, dll.data()};
    const auto add_monitor = [&info] { return AddMonitorW(nullptr, 2, reinterpret_cast<BYTE*>(&info)); };
    for (Text wrong : {TEXT("DOS"), TEXT("Windows NT x86")}) { // nobody's, and another system's
        info.pEnvironment = wrong.data();
        EXPECT_FALSE(add_monitor());
        EXPECT_EQ(GetLastError(), DWORD{ERROR_INVALID_ENVIRONMENT});
    }
    info.pEnvironment = environment.data();
    EXPECT_TRUE(add_monitor());
    EXPECT_TRUE(holds(texts(monitors, 1, &MONITOR_INFO_1W::pName), name));
    EXPECT_FALSE(add_monitor());
    EXPECT_EQ(GetLastError(), DWORD{ERROR_PRINT_MONITOR_ALREADY_INSTALLED});
}

TEST_F(Spooler, RefusesHandlesOfAnotherKind) {
    will_misuse();
    HANDLE monitor = open(TEXT(",XcvMonitor Standard TCP/IP Port"), SERVER_ACCESS_ADMINISTER);
    EXPECT_FALSE(DeletePrinter(monitor));
    EXPECT_EQ(GetLastError(), DWORD{ERROR_INVALID_HANDLE});
    EXPECT_TRUE(ClosePrinter(monitor));
    EXPECT_FALSE(ClosePrinter(monitor));
    EXPECT_EQ(GetLastError(), DWORD{ERROR_INVALID_HANDLE});
}

} // namespace
