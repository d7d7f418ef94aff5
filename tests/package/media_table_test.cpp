#include "harness/test_session.h"
#include "machine/little_endian.h"
#include "package/media_table.h"

#include <winspool.h>

#include <gtest/gtest.h>

#include <cstring>
#include <sstream>

namespace {

std::string shown(const LabelSize& row) {
    std::ostringstream text;
    text << row.name << '|' << row.width << '|' << row.length << '|' << row.units;
    return text.str();
}

// A queue with the medium's table, and its handle as the install holds it.
struct Queue : TestSession {
    explicit Queue(const std::string& bytes) {
        if (!bytes.empty())
            write(medium / "wrenchbay" / "media.inf", bytes);
        machine.spooler.queues.push_back({.name = u"Label", .port = u"FILE:", .driver = u"D"});
    }
    ~Queue() { close(); }
    HANDLE open() {
        start();
        PRINTER_DEFAULTSW wanted = {nullptr, nullptr, PRINTER_ALL_ACCESS};
        WCHAR name[] = u"Label";
        EXPECT_TRUE(OpenPrinterW(name, &handle, &wanted));
        return handle;
    }
    void close() {
        if (handle != nullptr)
            ClosePrinter(handle);
        handle = nullptr;
    }
    auto& data() { return machine.spooler.queues.back().data; }
    HANDLE handle = nullptr;
};

std::string data_text(const platform::PrinterDataValue& value) {
    return platform::to_utf8(platform::utf16_text(value.data));
}

} // namespace

TEST(MediaTable, ScansRows) {
    const std::string long_name(63, 'n');
    const struct {
        const char* name;
        std::string text; // behind the header's word
        std::vector<std::string> rows;
    } cases[] = {
        {"comma, blank, tab",
         "\r\n\"a\",\"b\",\"c\",1\r\n\"a\" \"b\" \"c\" 1\n\"a\"\t\"b\"\t\"c\"\t1\r",
         {"a|b|c|1", "a|b|c|1", "a|b|c|1"}},
        {"nothing between", "\n\"a\"\"b\"\"c\"-7", {"a|b|c|-7"}},
        {"empty line first", "\r\n\r\n\"a\",\"b\",\"c\",1\r\n", {}},
        {"comment first", "\r\n; c\r\n\"a\",\"b\",\"c\",1\r\n", {}},
        {"a row on the header's line", " \"a\",\"b\",\"c\",1\r\n", {"a|b|c|1"}},
        {"a word glued to the header", "x\r\n\"a\",\"b\",\"c\",1\r\n", {"a|b|c|1"}},
        {"section ends the table", "\n\"a\",\"b\",\"c\",1\n[Next]\n\"d\",\"e\",\"f\",1\n", {"a|b|c|1"}},
        {"empty fields", "\n\"\",\"\",\"\",0\n", {"|||0"}},
        {"a field over a line end", "\n\"a\nb\",\"c\",\"d\",1\n", {"a\nb|c|d|1"}},
        {"limits", "\n\"" + long_name + "\",\"1234567\",\"1234567\",2\n", {long_name + "|1234567|1234567|2"}},
        {"name too long", "\n\"x" + long_name + "\",\"1\",\"1\",2\n", {}},
        {"width too long", "\n\"a\",\"12345678\",\"1\",2\n", {}},
        {"no number", "\n\"a\" \"b\" \"c\"\n", {"a|b|c|0"}},
        {"no number at the end", "\n\"a\" \"b\" \"c\"", {}},
        {"number over the line end", "\n\"a\" \"b\" \"c\" \n5\n", {"a|b|c|5"}},
        {"number cut by the end", "\n\"a\",\"b\",\"c\",12", {"a|b|c|12"}},
        {"saturated", "\n\"a\",\"b\",\"c\",99999999999\n", {"a|b|c|2147483647"}},
        {"text behind the number",
         "\n\"a\",\"b\",\"c\",1 mm ; x\n\"d\",\"e\",\"f\",2\n",
         {"a|b|c|1", "d|e|f|2"}},
        {"a word behind a comma", "\n\"a\",\"b\",\"c\",1,mm\n\"d\",\"e\",\"f\",2\n", {"a|b|c|1", "d|e|f|2"}},
        {"two words behind a comma", "\n\"a\",\"b\",\"c\",1,mm x\n\"d\",\"e\",\"f\",2\n", {"a|b|c|1"}},
        {"cut inside a field", "\n\"a\",\"b\",\"c", {}},
        {"nothing", "", {}},
    };
    for (const auto& item : cases) {
        const std::string text = "[Media]" + item.text;
        const char* place = text.c_str();
        std::vector<std::string> rows;
        LabelSize row;
        while ((place = scan_media_row(place, &row)) != nullptr)
            rows.push_back(shown(row));
        EXPECT_EQ(rows, item.rows) << item.name;
    }
}

TEST(MediaTable, WritesTheRowsIntoTheQueue) {
    Queue queue("; [media]\r\n[Media]\r\n\"Label 100x50\",\"100.0\",\"50.0\",0\r\n\"Label 4x6\" \"4.00\" "
                "\"6.00\" 1\r\n");
    load_media_table(queue.open());
    EXPECT_EQ(queue.log(), "Add Label 100x50 100.0 50.0 0\r\nAdd Label 4x6 4.00 6.00 1\r\n");
    ASSERT_EQ(queue.data().size(), 2u);
    auto& row = queue.data().at(u"Label Sizes\\259");
    ASSERT_EQ(row.size(), 5u);
    EXPECT_EQ(row.at(u"version"), (platform::PrinterDataValue{REG_DWORD, {1, 0, 0, 0}}));
    EXPECT_EQ(row.at(u"units"), (platform::PrinterDataValue{REG_DWORD, {1, 0, 0, 0}}));
    EXPECT_EQ(data_text(row.at(u"name")), std::string("Label 4x6\0", 10));
    EXPECT_EQ(data_text(row.at(u"width")), std::string("4.00\0", 5));
    EXPECT_EQ(data_text(row.at(u"length")), std::string("6.00\0", 5));
    EXPECT_EQ(row.at(u"width").type, static_cast<unsigned>(REG_SZ));

    load_media_table(queue.handle); // a queue gets its table once
    EXPECT_EQ(queue.log(), "Add Label 100x50 100.0 50.0 0\r\nAdd Label 4x6 4.00 6.00 1\r\n");
}

TEST(MediaTable, GoesOnBehindARowThatCannotBeWritten) {
    Queue queue("[Media]\n\"a\",\"1\",\"1\",0\n\"b\",\"1\",\"1\",0\n\"c\",\"1\",\"1\",0\n");
    queue.machine.faults = {{.call = "SetPrinterDataExA", .nth = 7}};
    load_media_table(queue.open());
    EXPECT_EQ(queue.log(), "Add a 1 1 0\r\nAdd b 1 1 0\r\nError adding label to registry!Add c 1 1 0\r\n");
    EXPECT_EQ(queue.data().at(u"Label Sizes\\259").size(), 1u);
    EXPECT_EQ(queue.data().at(u"Label Sizes\\260").size(), 5u);
}

TEST(MediaTable, ReadsOnePieceOfTheFile) {
    const std::string row = "\"a\",\"1\",\"1\",123";
    const struct {
        const char* name;
        std::string bytes;
        std::string log;
    } cases[] = {
        {"missing", "", "failed to open media.inf\r\n"},
        {"no table", "[Medium]\r\n", ""},
        {"number cut", std::string(4095 - 8 - row.size() + 1, '\n') + "[Media]\n" + row, "Add a 1 1 12\r\n"},
        {"behind the piece", std::string(4095, '\n') + "[Media]\n" + row, ""},
    };
    for (const auto& item : cases) {
        Queue queue(item.bytes);
        load_media_table(queue.open());
        EXPECT_EQ(queue.log(), item.log) << item.name;
        EXPECT_EQ(queue.data().empty(), !item.log.starts_with("Add")) << item.name;
    }
    Queue unreadable("x");
    unreadable.machine.faults = {{.call = "ReadFile"}};
    load_media_table(unreadable.open());
    EXPECT_EQ(unreadable.log(), "media.inf empty\r\n");
}

TEST(MediaTable, NeedsPrinterAndRow) {
    Queue queue("");
    const LabelSize row = {};
    EXPECT_EQ(add_label_size(queue.open(), nullptr), 1u);
    EXPECT_EQ(add_label_size(nullptr, &row), 1u);
    EXPECT_TRUE(queue.data().empty());
}
