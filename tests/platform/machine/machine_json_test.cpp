#include "machine/machine_json.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

namespace fs = std::filesystem;
using namespace platform;

namespace {

std::string reason_of(const std::string& text) {
    try {
        parse_machine(text, "m.json");
    } catch (const MachineFileError& error) {
        return error.what();
    }
    return "accepted";
}

// A machine in which nothing has its default value, and every form of a value occurs.
Machine full_machine() {
    Machine machine = default_machine();
    machine.version = {10, 1, 22621};
    machine.code_page = 932;
    machine.locale_abbreviation = u"JPN";
    machine.ui_language = 1041;
    machine.wow64 = true;
    machine.clock = "2024-07-04T09:05:01";
    machine.environment = {{u"Größe", u"日本 \U0001F600"}};
    machine.folders = {u"W:\\", u"P:\\", u"S:\\"};
    machine.current_folder = u"E:\\";
    machine.program_name = u"other.exe";
    machine.registry = {{u"A\\B",
                         {{u"text", {1, {'a', 0, 0, 0}}},
                          {u"empty", {2, {0, 0}}},
                          {u"unterminated", {1, {'a', 0}}},
                          {u"odd", {2, {'a', 0, 0}}},
                          {u"two ends", {1, {0, 0, 0, 0}}},
                          {u"half a pair", {1, {0, 0xD8, 0, 0}}},
                          {u"nothing", {1, {}}},
                          {u"number", {4, {0xFE, 0xFF, 0, 0x80}}},
                          {u"short number", {4, {1, 2}}},
                          {u"bytes", {3, {0x00, 0xAB}}},
                          {u"other type", {7, {1}}}}}};
    machine.spooler.drivers = {{u"D", u"Windows NT x86", 0x0001'0002'0003'FFFF, u"C:\\d.inf"}};
    machine.spooler.queues = {
        {u"Q",
         u"P",
         u"D",
         u"proc",
         u"EMF",
         0x44,
         2,
         true,
         true,
         true,
         {{u"Label Sizes\\258", {{u"Width", {4, {1, 0, 0, 0}}}, {u"Name", {1, {'x', 0, 0, 0}}}}}}}};
    machine.spooler.ports = {{u"P", u"M", u"about", 3, u"host", u"10.0.0.9", 1, 9100, true, {1, 2, 0xFF}}};
    machine.spooler.monitors = {{u"M", u"Windows x64", u"m.dll", true, 6168}};
    machine.spooler.processors = {u"a", u"b"};
    machine.spooler.packages = {{u"C:\\store\\d.inf", true}};
    machine.spooler.default_printer = u"Q";
    machine.services = {{u"S", {{3, 100, 20, 1, 5}, {9}}, {{7}}, {{2}}, 1051, 1056, {u"T"}}};
    machine.usb_interfaces = {{u"\\\\?\\usb#vid", u"USB\\VID", {{u"one"}, {u"two"}}}};
    const std::vector<std::uint8_t> reply = {2,    7, 0, 0,   22,  0, 0, 0, 0, 0,   0x20,
                                             0x10, 0, 2, 'e', 'n', 0, 0, 0, 1, 'A', 0};
    std::vector<std::uint8_t> other_id = reply;
    other_id[11] = 0x11;
    machine.adapters = {
        {"Wired", {"10.1.2.3", "10.1.2.4"}, true, {{{"10.0.0.8", reply}, {"10.0.0.9", other_id}}, {}}},
        {"Bare", {}, false, {{{"10.0.0.7", {}}}}}};
    machine.discovery_port_taken = true;
    machine.child_programs = {{u"c.exe", 5, 259}};
    machine.missing_strings = {423, 401};
    machine.missing_functions = {"IsWow64Process"};
    machine.faults = {{"AddPrinterW", 2, true, 1797u, "Label"}, {"ReadFile", 1, false, std::nullopt, ""}};
    return machine;
}

} // namespace

TEST(MachineJson, WhatIsWrittenLoadsAsTheSameMachine) {
    const Machine before = full_machine();
    const std::string text = machine_text(before);
    const Machine after = parse_machine(text, "m.json");
    EXPECT_EQ(machine_text(after), text);
    // The text alone could lose the same thing twice, so that the parts with forms of their own are compared
    // too.
    EXPECT_EQ(after.registry, before.registry);
    EXPECT_EQ(after.spooler, before.spooler);
    EXPECT_EQ(after.environment, before.environment);
    EXPECT_EQ(after.services[0].now[1].state, 9u);
    ASSERT_EQ(after.adapters.size(), 2u);
    ASSERT_EQ(after.adapters[0].searches.size(), 2u);
    for (const std::size_t index : {0u, 1u})
        EXPECT_EQ(after.adapters[0].searches[0][index].bytes, before.adapters[0].searches[0][index].bytes);
    EXPECT_TRUE(after.adapters[0].real_sockets);
    EXPECT_EQ(after.faults[0].error, 1797u);
    EXPECT_FALSE(after.faults[1].error);
}

TEST(MachineJson, WritesFormsThatPeopleRead) {
    const std::string text = machine_text(full_machine());
    for (const char* part :
         {R"("version": "1.2.3.65535")", R"("network": "real")", R"("text": "A")",
          R"("hex": "0207000016000000000020110002656e0000000141)", R"("state": "stop_pending")",
          R"("value": 2147549182)", R"("configuration": "0102ff")", R"("日本 😀")",
          // Fields of records that nothing above compares
          R"("stop_error": 1051)", R"("start_error": 1056)", R"("milliseconds": 100)", R"("wait_hint": 20)",
          R"("checkpoint": 1,)", R"("exit_code": 5)", R"("exit_code": 259)", R"("runs_for_ms": 5)",
          R"("parent_id": "USB\\VID")", R"("description": "Bare")", R"("nth": 2)", R"("from_then_on": true)",
          R"("argument": "Label")", R"("build": 22621)"})
        EXPECT_NE(text.find(part), std::string::npos) << part;
}

TEST(MachineJson, MissingKeysKeepTheDefaults) {
    const Machine machine = parse_machine(R"({
        "wow64": true,
        "folders": {"windows": "D:\\W"},
        "spooler": {"default_printer": "", "queues": [{"name": "Q", "port": "LPT1:", "driver": "D"}]}
    })",
                                          "m.json");
    EXPECT_TRUE(machine.wow64);
    EXPECT_EQ(machine.folders.windows, u"D:\\W");
    EXPECT_EQ(machine.folders.program_files, u"C:\\Program Files");
    EXPECT_EQ(machine.spooler.queues.size(), 1u);
    EXPECT_EQ(machine.spooler.queues[0].processor, u"winprint");
    EXPECT_EQ(machine.spooler.monitors, default_spooler().monitors);
    EXPECT_EQ(machine.adapters.size(), 1u);
}

TEST(MachineJson, ErrorsNameLineAndReason) {
    const struct {
        const char* name;
        const char* text;
        const char* expected;
    } cases[] = {
        {"unknown key", "{\n \"code_page\": 1252,\n \"codepage\": 1\n}", "m.json:3: codepage: unknown key"},
        {"unknown inner key",
         "{\"spooler\": {\n\"ports\": [\n{\"name\":\"a\",\"monitor\":\"b\",\n\"x\":1}]}}",
         "m.json:4: spooler/ports/0/x: unknown key"},
        {"wrong type", "{\n\n\"wow64\": 1}", "m.json:3: wow64: must be true or false"},
        {"negative", "{\"ui_language\": -1}",
         "m.json:1: ui_language: must be a whole number from 0 to 65535"},
        {"too large", "{\"ui_language\": 65536}",
         "m.json:1: ui_language: must be a whole number from 0 to 65535"},
        {"fraction", "{\"ui_language\": 1.5}",
         "m.json:1: ui_language: must be a whole number from 0 to 65535"},
        {"element of a list", "{\"missing_strings\": [\n1,\n2,\n\"x\"\n]}",
         "m.json:4: missing_strings/2: must be a whole number from 0 to 4294967295"},
        {"number at a line's end", "{\"missing_strings\": [\n1,\n-2\n]}",
         "m.json:3: missing_strings/1: must be a whole number from 0 to 4294967295"},
        {"code page", "{\"code_page\": 1253}",
         "m.json:1: code_page: must be 932, 936, 949, 950, 1250, 1251, 1252 or 65001"},
        {"time", "{\"clock\": \"2024-13-04T09:05:01\"}",
         "m.json:1: clock: must be a local time like \"2024-07-04T09:05:01\", or empty for the real one"},
        {"lacking", "{\"faults\": [\n{}]}", "m.json:2: faults/0: lacks \"call\""},
        {"fault zero", "{\"faults\": [{\"call\": \"A\", \"nth\": 0}]}",
         "m.json:1: faults/0/nth: is counted from 1"},
        {"both forms", "{\"adapters\": [{\"searches\": [[{\"text\": \"\", \"hex\": \"\"}]]}]}",
         "m.json:1: adapters/0/searches/0/0: needs either \"text\" or \"hex\""},
        {"hexadecimal", "{\"adapters\": [{\"searches\": [[{\"hex\": \"0g\"}]]}]}",
         "m.json:1: adapters/0/searches/0/0/hex: must have two hexadecimal digits for each byte"},
        {"address", "{\"adapters\": [{\"addresses\": [\"10.0.0.256\"]}]}",
         "m.json:1: adapters/0/addresses/0: must be an address like \"10.0.0.7\""},
        {"network", "{\"adapters\": [{\"network\": \"Real\"}]}",
         "m.json:1: adapters/0/network: must be \"real\" or \"scripted\""},
        {"value of another type",
         "{\"registry\": {\"K\": {\"v\": {\n\"type\": \"dword\", \"value\": \"1\"}}}}",
         "m.json:2: registry/K/v/value: must be a whole number from 0 to 4294967295"},
        {"twice", "{\"wow64\": true,\n\"wow64\": true}", "m.json:2: wow64: stands here a second time"},
        {"no object", "[]", "m.json:1: must be an object"},
    };
    for (const auto& test : cases)
        EXPECT_EQ(reason_of(test.text), test.expected) << test.name;
    EXPECT_EQ(reason_of("{\n\"wow64\": true,\n}").substr(0, 21), "m.json:3: syntax erro");
    EXPECT_EQ(reason_of("").substr(0, 21), "m.json:1: syntax erro");
}

TEST(MachineJson, SavingReplacesTheFileOrLeavesIt) {
    std::string name = (fs::temp_directory_path() / "machine-json-XXXXXX").string();
    ASSERT_NE(mkdtemp(name.data()), nullptr);
    const fs::path folder = name, file = folder / "m.json";
    Machine machine = default_machine();
    save_machine(machine, file);
    machine.wow64 = true;
    save_machine(machine, file);
    EXPECT_TRUE(load_machine(file).wow64);

    Machine unwritable = machine;
    unwritable.wow64 = false;
    unwritable.spooler.default_printer = u"\xD800";
    EXPECT_THROW(save_machine(unwritable, file), MachineFileError);
    EXPECT_TRUE(load_machine(file).wow64);
    EXPECT_EQ(std::distance(fs::directory_iterator(folder), {}), 1);

    EXPECT_THROW(load_machine(folder / "none.json"), MachineFileError);
    EXPECT_THROW(save_machine(machine, folder / "none" / "m.json"), MachineFileError);
    fs::remove_all(folder);
}
