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
    machine.system = System::x86;
    settle(machine);
    machine.clock = "2024-07-04T09:05:01";
    machine.environment = {{u"Größe", u"日本 \U0001F600"}};
    machine.folders = {u"C:\\", u"C:\\P", u"c:\\S"};
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
    machine.services = {{u"S", {{3, 100, 20, 1, 5}, {6}}, {{7}}, {{2}}, 1051, 1056, {u"T"}}};
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
    EXPECT_EQ(after.services[0].now[1].state, 6u);
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
        "system": "x86",
        "folders": {"windows": "C:\\W"},
        "spooler": {"default_printer": "", "queues": [{"name": "Q", "port": "LPT1:", "driver": "D"}]}
    })",
                                          "m.json");
    EXPECT_EQ(machine.system, System::x86);
    EXPECT_EQ(machine.spooler.drivers[0].environment, u"Windows NT x86");
    EXPECT_EQ(machine.spooler.environment, u"Windows NT x86");
    EXPECT_EQ(machine.folders.windows, u"C:\\W");
    EXPECT_EQ(machine.folders.program_files, u"C:\\Program Files");
    EXPECT_EQ(machine.spooler.queues.size(), 1u);
    EXPECT_EQ(machine.spooler.queues[0].processor, u"winprint");
    EXPECT_EQ(machine.spooler.monitors, default_spooler(u"Windows NT x86").monitors);
    EXPECT_EQ(machine.adapters.size(), 1u);
}

TEST(MachineJson, ErrorsNameThePlaceAndTheReason) {
    const struct {
        const char* text;
        const char* expected; // behind "m.json:"
    } cases[] = {
        {"{\n \"code_page\": 1252,\n \"codepage\":\n1\n}",
         "3:2: codepage: unknown key (did you mean code_page?)"},
        {"{\"spooler\": {\n\"ports\": [\n{\"name\":\"ä\",\"monitor\":\"b\",\"x\":1}]}}",
         "3:27: spooler/ports/0/x: unknown key; there are name, monitor, description, type, host_address, "
         "ip_address, protocol, port_number, snmp_enabled, configuration"},
        {"{\n\n\"discovery_port_taken\":\n 1}", "4:2: discovery_port_taken: must be true or false"},
        {"{\"ui_language\": -1}", "1:17: ui_language: must be a whole number from 0 to 65535"},
        {"{\"ui_language\": 65536}", "1:17: ui_language: must be a whole number from 0 to 65535"},
        {"{\"ui_language\": 1.5e0 }", "1:17: ui_language: must be a whole number from 0 to 65535"},
        {"{\"clock\": 5e41040}", "1:11: 5e41040 is too large a number"},
        {"{\"missing_strings\": [\n1,\n2,\n \"\\\\\\\"x\"\n]}",
         "4:2: missing_strings/2: must be a whole number from 0 to 4294967295"},
        {"{\"missing_strings\": [\n1,\n-2\n]}",
         "3:1: missing_strings/1: must be a whole number from 0 to 4294967295"},
        {"{\"faults\": [\n{}]}", "2:1: faults/0: lacks \"call\""},
        {"{\"faults\": [{\"call\": \"A\", \"nth\": 0}]}", "1:34: faults/0/nth: is counted from 1"},
        {"{\"adapters\": [{\"searches\": [[{\"text\": \"\", \"hex\": \"\"}]]}]}",
         "1:30: adapters/0/searches/0/0: needs either \"text\" or \"hex\""},
        {"{\"adapters\": [{\"searches\": [[{\"hex\": \"0g\"}]]}]}",
         "1:38: adapters/0/searches/0/0/hex: must have two hexadecimal digits for each byte"},
        {"{\"adapters\": [{\"network\": \"Real\"}]}",
         "1:27: adapters/0/network: must be \"real\" or \"scripted\""},
        {"{\"services\": [{\"name\": \"S\", \"now\": [{\"state\": \"runing\"}]}]}",
         "1:47: services/0/now/0/state: \"runing\" isn't known here (did you mean running?)"},
        {"{\"registry\": {\"K\": {\"v\": {\n\"type\": \"dword\", \"value\": \"1\"}}}}",
         "2:27: registry/K/v/value: must be a whole number from 0 to 4294967295"},
        {"{\"discovery_port_taken\": true,\n\"discovery_port_taken\": true}",
         "2:1: \"discovery_port_taken\" stands here a second time"},
        {"[]", "1:1: must be an object"},
        {"{\n\"discovery_port_taken\": true,\n}",
         "3:1: syntax error while parsing object key - unexpected '}'; expected string literal"},
        {"{\"discovery_port_taken\": true",
         "1:30: syntax error while parsing object - unexpected end of input; expected '}'"},
    };
    for (const auto& test : cases)
        EXPECT_EQ(reason_of(test.text), std::string("m.json:") + test.expected);
    EXPECT_EQ(reason_of("").substr(0, 23), "m.json:1:1: syntax erro");
    const std::string brackets(100'000, '[');
    EXPECT_EQ(reason_of(brackets), "m.json:1:65: more than 64 levels of brackets");
    EXPECT_EQ(reason_of(R"({"registry": {"K": {"a/type": {"type": "sz", "value": ""},
                            "a": {"type": "sz", "value": ""}}}})"),
              "accepted")
        << "a slash in a name makes no path";
}

TEST(MachineJson, RefusesWhatNoMachineCanHave) {
    const struct {
        const char* text;
        const char* expected;
    } cases[] = {
        {R"({"code_page": 1253})", "15: code_page: must be 932, 936, 949, 950, 1250, 1251, 1252 or 65001"},
        {R"({"locale": "GER"})",
         "12: locale: \"GER\" is no language's abbreviation; there are ENU, DEU, JPN and"},
        {R"({"locale": "deu"})", "12: locale: \"deu\" is no language's abbreviation (did you mean DEU?)"},
        {R"({"ui_language": 1024})", "17: ui_language: must be a language's identifier like 1033"},
        {R"({"system": "x64 "})", "12: system: must be \"x64\" or \"x86\""},
        {R"({"clock": "2024-13-04T09:05:01"})", "11: clock: must be a local time like"},
        {R"({"clock": "2024-02-31T09:05:01"})", "11: clock: must be a local time like"},
        {R"({"clock": "2023-02-29T09:05:01"})", "11: clock: must be a local time like"},
        {R"({"folders": {"windows": "Windows"}})",
         "25: folders/windows: must be an absolute path like \"C:\\Windows\""},
        {R"({"folders": {"windows": "C:Windows"}})", "25: folders/windows: must be an absolute path"},
        {R"({"folders": {"program_files": "D:\\P"}})", "31: folders/program_files: isn't on drive C"},
        {R"({"folders": {"windows": "C:\\W\\"}})", "25: folders/windows: ends in a backslash"},
        {R"({"folders": {"windows": "C:\\W\\\\X"}})", "25: folders/windows: has an empty name in it"},
        {R"({"folders": {"windows": "C:\\.."}})", "25: folders/windows: has a name that ends in a point"},
        {R"({"current_folder": "\\\\server\\share"})", "20: current_folder: must be an absolute path"},
        {R"({"program_name": "a\\b.exe"})", "18: program_name: has a character that no file's name"},
        {R"({"program_name": "a\u0000b"})", "18: program_name: has a NUL in it"},
        {R"({"environment": {"A": "", "a": ""}})", "27: environment/a: differs from another key in case"},
        {R"({"environment": {"A=B": ""}})", "18: environment/A=B: no variable can be called so"},
        {R"({"registry": {"\\A": {}}})", "15: registry/\\A: must be a path like"},
        {R"({"adapters": [{"addresses": ["10.0.0.256"]}]})",
         "30: adapters/0/addresses/0: must be an address like \"10.0.0.7\""},
        {R"({"adapters": [{"addresses": ["10.0.0.010"]}]})",
         "30: adapters/0/addresses/0: must be an address"},
        {R"({"missing_strings": [65536]})", "22: missing_strings/0: must be a whole number from 0 to 65535"},
        {R"({"services": [{"name": "S", "now": [{"state": 8}]}]})",
         "47: services/0/now/0/state: must be a whole number from 0 to 7"},
        {R"({"services": [{"name": "S", "now": [], "on_stop": [{"state": 3}, {"state": 1}]}]})",
         "52: services/0/on_stop/0: holds for ever"},
        {R"({"spooler": {"drivers": [{"name": "D", "environment": "Windows 64"}]}})",
         "55: spooler/drivers/0/environment: \"Windows 64\" is no environment (did you mean Windows x64"},
        {R"({"spooler": {"queues": [{"name": "Q", "port": "P", "driver": "D"},
{"name": "q", "port": "P", "driver": "D"}]}})",
         "2:1: spooler/queues/1: has the name \"q\", as one before it"},
        {R"({"spooler": {"ports": [{"name": "", "monitor": "M"}]}})",
         "24: spooler/ports/0: has an empty name"},
        {R"({"spooler": {"ports": [{"name": "P", "monitor": "M", "port_number": 65536}]}})",
         "69: spooler/ports/0/port_number: must be a whole number from 0 to 65535"},
        {R"({"spooler": {"ports": [{"name": "P", "monitor": "M", "protocol": 3}]}})",
         "66: spooler/ports/0/protocol: must be 1 for RAW"},
        {R"({"spooler": {"monitors": [{"name": "M", "configuration_size": 4000}]}})",
         "63: spooler/monitors/0/configuration_size: must be 6168, 4112, or 0"},
    };
    for (const auto& test : cases) {
        const std::string reason = reason_of(test.text);
        EXPECT_NE(reason.find(std::string(":") + test.expected), std::string::npos) << reason;
    }
}

TEST(MachineJson, SavingReplacesTheFileOrLeavesIt) {
    std::string name = (fs::temp_directory_path() / "machine-json-XXXXXX").string();
    ASSERT_NE(mkdtemp(name.data()), nullptr);
    const fs::path folder = name, file = folder / "m.json";
    Machine machine = default_machine();
    save_machine(machine, file);
    machine.discovery_port_taken = true;
    save_machine(machine, file);
    EXPECT_TRUE(load_machine(file).discovery_port_taken);

    Machine unwritable = machine;
    unwritable.discovery_port_taken = false;
    unwritable.spooler.default_printer = u"\xD800";
    EXPECT_THROW(save_machine(unwritable, file), MachineFileError);
    EXPECT_TRUE(load_machine(file).discovery_port_taken);
    EXPECT_EQ(std::distance(fs::directory_iterator(folder), {}), 1);

    const auto complaint = [](const auto& step) -> std::string {
        try {
            step();
        } catch (const MachineFileError& error) {
            return error.what();
        }
        return "none";
    };
    EXPECT_EQ(complaint([&] { load_machine(folder / "none.json"); }),
              (folder / "none.json").string() + ": can't be read: No such file or directory");
    EXPECT_EQ(complaint([&] { load_machine(folder); }), folder.string() + ": can't be read: Is a directory");
    EXPECT_EQ(complaint([&] { save_machine(machine, folder / "none/m.json"); }),
              (folder / "none/m.json").string() + ": can't be written: No such file or directory");
    fs::remove_all(folder);
}
