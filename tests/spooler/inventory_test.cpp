#include "spooler/inventory.h"

#include "harness/test_session.h"
#include "support/text.h"

#include "support/memory.h"

#include <winspool.h>

#include <gtest/gtest.h>

namespace {

using Question = int (*)(const WCHAR* name);

class Inventory : public testing::Test {
protected:
    // The lines of one question.
    std::string ask(Question question, const char16_t* name, int expected) {
        const std::size_t before = test.log().size();
        EXPECT_EQ(question(name), expected) << platform::to_utf8(name);
        return test.log().substr(before);
    }

    TestSession test;
};

TEST_F(Inventory, WalkEndsAtTheExactName) {
    test.machine.spooler.ports.resize(2);
    test.machine.spooler.ports[1].monitor = u"";
    test.machine.spooler.processors = {u"winprint", u"other"};
    test.start();
    EXPECT_EQ(ask(print_processor_exists, u"winprint", 1), "0:winprint\r\n");
    EXPECT_EQ(ask(print_processor_exists, u"Other", 0), "0:winprint\r\n1:other\r\n");
    std::string log = ask(monitor_exists, u"Standard TCP/IP Port", 1);
    EXPECT_TRUE(log.starts_with("EnumMonitors 0 ")) << log;
    EXPECT_TRUE(log.ends_with("\r\n0:Local Port\r\n1:Standard TCP/IP Port\r\n")) << log;
    log = ask(port_exists, u"com1:", 0);
    EXPECT_TRUE(log.starts_with("EnumPorts 0 ")) << log;
    EXPECT_TRUE(log.ends_with("\r\n0:LPT1:,Local Port,Local Port\r\n1:COM1:,,Local Port\r\n")) << log;
    EXPECT_EQ(ask(queue_on_port_exists, u"PORTPROMPT:", 1), "0:PORTPROMPT:\r\n");
    EXPECT_TRUE(platform::session().memory.live().empty());
}

TEST_F(Inventory, EmptyListsHaveNoEntry) {
    test.machine.spooler = {};
    test.start();
    EXPECT_EQ(ask(print_processor_exists, u"winprint", 0), "");
    EXPECT_EQ(ask(monitor_exists, u"Local Port", 0), "EnumMonitors 1 0\r\n");
    EXPECT_EQ(ask(port_exists, u"LPT1:", 0), "EnumPorts 1 0\r\n");
    EXPECT_EQ(ask(queue_on_port_exists, u"LPT1:", 0), "");
}

TEST_F(Inventory, LongNamesAreComparedWholeAndCutInTheLog) {
    const std::u16string name(300, u'n');
    test.machine.spooler.ports.clear();
    test.machine.spooler.ports.push_back({});
    test.machine.spooler.ports[0].name = name + u"1";
    test.start();
    EXPECT_EQ(port_exists(name.c_str()), 0);
    EXPECT_TRUE(test.log().ends_with("0:" + std::string(251, 'n') + "\r\n"));
    EXPECT_EQ(port_exists((name + u"1").c_str()), 1);
}

// The spooler tells of far more records than it delivers, on both calls or on the first alone.
TEST_F(Inventory, CountsWhatTheBufferHasRoomFor) {
    const struct {
        void* (*enumerate)(DWORD level, DWORD* count);
        DWORD level;
        std::size_t record_size;
        const char* call;
    } table[] = {
        {enumerate_printers, 1, sizeof(PRINTER_INFO_1W), "EnumPrintersW"},
        {enumerate_printers, 2, sizeof(PRINTER_INFO_2W), "EnumPrintersW"},
        {enumerate_drivers, 6, sizeof(DRIVER_INFO_6W), "EnumPrinterDriversW"},
        {enumerate_monitors, 1, sizeof(MONITOR_INFO_1W), "EnumMonitorsW"},
        {enumerate_ports, 2, sizeof(PORT_INFO_2W), "EnumPortsW"},
        {enumerate_processors, 1, sizeof(PRINTPROCESSOR_INFO_1W), "EnumPrintProcessorsW"},
    };
    test.machine.spooler.drivers.push_back({.name = u"D"});
    for (const auto& row : table)
        for (const bool second_fails : {false, true}) {
            SCOPED_TRACE(std::string(row.call) + std::to_string(row.level));
            test.machine.faults.clear();
            if (second_fails)
                test.machine.faults = {{row.call, 2, false, 1722, ""}};
            platform::Session& session = test.start();
            std::size_t room = 0;
            session.gate.on_size = [&room](const auto&, std::uint32_t capacity, platform::ToldSize& size) {
                room = capacity;
                size.more = 1000;
            };
            DWORD count = 7;
            void* const records = row.enumerate(row.level, &count);
            EXPECT_EQ(count, room / row.record_size);
            release_bytes(records);
            test.stop();
        }
}

TEST_F(Inventory, CountIsNeverBelievedWithoutRecords) {
    // The spooler answers the first call and fails the second, with what the first one left as count.
    test.machine.faults = {{"EnumPortsW", 2, true, 1722, ""}, {"EnumPrintersW", 2, true, 1722, ""}};
    test.start();
    EXPECT_TRUE(ask(port_exists, u"LPT1:", 0).starts_with("EnumPorts 0 "));
    EXPECT_EQ(ask(queue_on_port_exists, u"PORTPROMPT:", 0), "") << "no entry was looked at";
    DWORD count = 7;
    EXPECT_EQ(enumerate_drivers(3, &count), nullptr) << "a level whose records aren't known";
    EXPECT_EQ(count, 0u);
    EXPECT_TRUE(platform::session().memory.live().empty());
}

} // namespace
