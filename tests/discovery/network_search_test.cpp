#include "discovery/network_search.h"

#include <winsock2.h>

#include "discovery/slp.h"
#include "harness/test_session.h"
#include "machine/slp_agent.h"

#include <gtest/gtest.h>

namespace {

std::vector<std::string> finds;

void note_find(const char* address, const char* name) {
    finds.push_back(std::string(address) + " " + name);
}

platform::ScriptedDatagram answer(const std::string& from, const std::string& text) {
    return {from, platform::attribute_reply({.language = "en"}, text)};
}

const char printer_text[] = "(MDL:Label;),(printer-name=P)";

class NetworkSearch : public testing::Test {
protected:
    void SetUp() override { finds.clear(); }

    void adapter(const std::string& address, std::vector<platform::ScriptedDatagram> answers = {}) {
        platform::Adapter added;
        added.description = "Card " + address;
        added.addresses = {address};
        added.searches = {std::move(answers)};
        test.machine.adapters.push_back(added);
    }

    // One search; nothing may stay open but the log and its mutex.
    int search() {
        platform::Session& session = test.start();
        const std::uint32_t start = session.clock.ticks();
        const int result = find_slp("Label", note_find);
        milliseconds = session.clock.ticks() - start;
        EXPECT_EQ(session.gate.count("closesocket"), session.gate.count("socket") - failed_sockets);
        EXPECT_EQ(session.gate.count("WSACleanup"), session.gate.count("WSAStartup") - failed_starts);
        EXPECT_TRUE(session.memory.live().empty());
        EXPECT_TRUE(session.gate.misuses().empty());
        return result;
    }

    TestSession test;
    std::uint32_t milliseconds = 0; // that the search took
    unsigned failed_sockets = 0;
    unsigned failed_starts = 0;
};

TEST_F(NetworkSearch, PassesOverAddressesThatCantBeUsed) {
    const struct {
        const char* address;
        bool usable;
    } table[] = {{"10.0.0.2", true},     {"192.168.1.5", true},  {"169.253.1.1", true},
                 {"168.254.1.1", true},  {"0.0.0.0", false},     {"169.254.7.7", false},
                 {"169.255.1.1", false}, {"171.254.1.1", false}, {"255.255.255.255", false}};
    test.machine.adapters.clear();
    std::vector<std::string> expected;
    for (const auto& row : table) {
        adapter(row.address);
        if (row.usable)
            expected.push_back(std::string("Card ") + row.address);
    }
    test.machine.adapters[0].addresses.push_back("10.0.0.3"); // only the first address counts
    test.start();
    ASSERT_EQ(collect_adapters(), expected.size());
    for (DWORD i = 0; i < adapter_count; ++i)
        EXPECT_EQ(adapter_table[i].description, expected[i]);
    EXPECT_EQ(adapter_table[0].address, inet_addr("10.0.0.2"));
    EXPECT_EQ(collect_adapters(), expected.size()) << "each run begins anew";
}

TEST_F(NetworkSearch, LeavesOutWhatTheTableCantHold) {
    test.machine.adapters.clear();
    for (int i = 1; i <= 13; ++i)
        adapter("10.0.0." + std::to_string(i));
    test.start();
    EXPECT_EQ(collect_adapters(), 10u);
    EXPECT_EQ(test.log(), "Adapter table full\r\n");
}

TEST_F(NetworkSearch, ServesOneInterfaceAfterTheOther) {
    test.machine.adapters.clear();
    adapter("10.0.0.2", {answer("10.0.0.7", printer_text), answer("10.0.0.8", "MDL:Other;")});
    adapter("10.1.0.2", {answer("10.0.0.7", printer_text)});
    EXPECT_EQ(search(), 1);
    EXPECT_EQ(finds, (std::vector<std::string>{"10.0.0.7 P", "10.0.0.7 P"}));
    EXPECT_EQ(test.log(), "Search for model MDL:Label;\r\n"
                          "Interface 0/2\r\n"
                          "(MDL:Label;),(printer-name=P)\r\nPrinter found 10.0.0.7 P\r\nMDL:Other;\r\n"
                          "close interface\r\n"
                          "Interface 1/2\r\n"
                          "(MDL:Label;),(printer-name=P)\r\nPrinter found 10.0.0.7 P\r\n"
                          "close interface\r\n"
                          "find slp cleanup\r\nfind slp complete\r\n");
    EXPECT_EQ(milliseconds, 2000u) << "a second of silence for each";
}

// The calls of the sockets in their order, with what they are about behind each.
std::string socket_calls() {
    std::string calls;
    for (const platform::JournalEntry& entry : platform::session().gate.journal())
        for (const char* name : {"WSAStartup", "socket", "setsockopt", "bind", "sendto", "recvfrom",
                                 "closesocket", "WSACleanup"})
            if (entry.call == name)
                calls += entry.call + (entry.call == "setsockopt" ? " " + entry.argument : "") + ", ";
    return calls;
}

TEST_F(NetworkSearch, PreparesEachSocket) {
    test.machine.adapters.clear();
    adapter("10.0.0.2");
    EXPECT_EQ(search(), 1);
    EXPECT_EQ(socket_calls(), "WSAStartup, socket, setsockopt SO_RCVTIMEO 1000, setsockopt SO_REUSEADDR 1, "
                              "setsockopt IP_MULTICAST_TTL 255, setsockopt SO_EXCLUSIVEADDRUSE 1, bind, "
                              "sendto, recvfrom, closesocket, WSACleanup, ");
    test.stop();
    test.start();
    EXPECT_EQ(probe_discovery_port(), 0);
    EXPECT_EQ(socket_calls(),
              "WSAStartup, socket, setsockopt SO_EXCLUSIVEADDRUSE 1, bind, closesocket, WSACleanup, ");
}

TEST_F(NetworkSearch, CutsTheModelAtTheTagsRoom) {
    test.start();
    const std::string model(300, 'm');
    find_slp(model.c_str(), note_find);
    const std::string line = test.log().substr(0, test.log().find("\r\n"));
    EXPECT_EQ(line, "Search for model MDL:" + std::string(model_tag_capacity - 1 - 4, 'm'));
}

TEST_F(NetworkSearch, NoMemoryMeansNoAdapters) {
    for (const unsigned nth : {1u, 2u}) {
        test.machine.adapters.clear();
        adapter("10.0.0.2");
        adapter("10.0.0.3");
        test.machine.faults = {{"HeapAlloc", nth, true, 8, ""}};
        test.start();
        EXPECT_EQ(collect_adapters(), 0u);
        EXPECT_EQ(platform::session().gate.count("GetAdaptersInfo"), nth - 1);
        test.stop();
    }
}

TEST_F(NetworkSearch, TakesTenDatagramsAndNoMore) {
    test.machine.adapters.clear();
    std::vector<platform::ScriptedDatagram> answers(9, answer("10.0.0.9", "MDL:Other;"));
    answers.push_back(answer("10.0.0.7", printer_text));
    answers.push_back(answer("10.0.0.8", printer_text));
    adapter("10.0.0.2", answers);
    EXPECT_EQ(search(), 1);
    EXPECT_EQ(finds, std::vector<std::string>{"10.0.0.7 P"});
    EXPECT_EQ(milliseconds, 0u);
}

TEST_F(NetworkSearch, OversizedDatagramEndsTheInterface) {
    test.machine.adapters.clear();
    adapter("10.0.0.2",
            {{"10.0.0.9", std::vector<std::uint8_t>(4001, 'x')}, answer("10.0.0.7", printer_text)});
    EXPECT_EQ(search(), 1);
    EXPECT_TRUE(finds.empty());
}

TEST_F(NetworkSearch, EndsWithoutAnInterface) {
    test.machine.adapters.clear();
    adapter("0.0.0.0");
    EXPECT_EQ(search(), 0);
    EXPECT_EQ(test.log(), "No active networks found!\n");
    EXPECT_EQ(platform::session().gate.count("WSAStartup"), 0u);
}

struct Failure {
    const char* call;
    const char* argument;
    std::uint32_t error;
    int result;
    const char* line; // behind "Interface 0/2"
    unsigned finds;   // the second interface answers too
};

// What a list of the tests shows; the record's bytes would be others in each run.
void PrintTo(const Failure& failure, std::ostream* out) {
    *out << failure.call << " " << failure.argument;
}

class FailingSearch : public NetworkSearch, public testing::WithParamInterface<Failure> {};

TEST_P(FailingSearch, EndsAsMuchAsTheFailureDemands) {
    const Failure& failure = GetParam();
    test.machine.adapters.clear();
    adapter("10.0.0.2", {answer("10.0.0.7", printer_text)});
    adapter("10.0.0.3", {answer("10.0.0.8", printer_text)});
    test.machine.faults = {{failure.call, 1, false, failure.error, failure.argument}};
    failed_sockets = std::string(failure.call) == "socket";
    EXPECT_EQ(search(), failure.result);
    EXPECT_EQ(finds.size(), failure.finds);
    const std::string begin = "Search for model MDL:Label;\r\nInterface 0/2\r\n";
    const std::string log = test.log();
    ASSERT_TRUE(log.starts_with(begin)) << log;
    const std::string rest = log.substr(begin.size());
    if (failure.result == 0)
        EXPECT_EQ(rest, failure.line);
    else
        EXPECT_TRUE(rest.starts_with(std::string(failure.line) + "Interface 1/2\r\n")) << rest;
}

INSTANTIATE_TEST_SUITE_P(
    Table, FailingSearch,
    testing::Values(
        Failure{"socket", "", 10055, 0, "failed to open socket\r\n", 0},
        Failure{"setsockopt", "SO_RCVTIMEO", 10042, 0, "failed to SO_RCVTIMEO -1 10042\r\n", 0},
        Failure{"setsockopt", "SO_REUSEADDR", 10042, 0, "failed to SO_REUSEADDR -1 10042\r\n", 0},
        Failure{"setsockopt", "IP_MULTICAST_TTL", 10042, 0, "failed to IP_MULTICAST_TTL\r\n", 0},
        Failure{"bind", "", 10049, 0, "bind failed with:10049 \r\n", 0},
        Failure{"sendto", "", 10051, 1, "failed to send slp\r\n", 1},
        Failure{"recvfrom", "", 10054, 1, "close interface\r\n", 1},
        Failure{"setsockopt", "SO_EXCLUSIVEADDRUSE", 10022, 1,
                "(MDL:Label;),(printer-name=P)\r\nPrinter found 10.0.0.7 P\r\nclose interface\r\n", 2}),
    [](const auto& row) { return std::string(row.param.call) + row.param.argument; });

TEST_F(NetworkSearch, NeverStartsWithoutAdapterListOrSockets) {
    test.machine.faults = {{"GetAdaptersInfo", 2, true, 50, ""}};
    EXPECT_EQ(search(), 0);
    EXPECT_EQ(test.log(), "Call to GetAdaptersInfo failed.\nNo active networks found!\n");
}

TEST_F(NetworkSearch, TellsOfMissingSocketsOnStandardOutput) {
    test.machine.faults = {{"WSAStartup", 1, true, 10091, ""}};
    failed_starts = 1;
    testing::internal::CaptureStdout();
    const int result = search();
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "WSAStartup failed with error:  10091\r\n");
    EXPECT_EQ(result, 0);
    EXPECT_EQ(test.log(), "");
}

TEST_F(NetworkSearch, AsksWhetherThePortIsHeld) {
    for (const bool held : {false, true}) {
        test.machine.discovery_port_taken = held;
        platform::Session& session = test.start();
        EXPECT_EQ(probe_discovery_port(), held ? 1 : 0);
        EXPECT_EQ(session.gate.count("WSAStartup"), session.gate.count("WSACleanup"));
        EXPECT_EQ(session.gate.count("socket"), session.gate.count("closesocket"));
        EXPECT_EQ(test.log(), "");
        test.stop();
    }
    test.machine.faults = {{"bind", 1, true, 10013, ""}};
    test.start();
    EXPECT_EQ(probe_discovery_port(), 0) << "another failure tells nothing about the port";
}

} // namespace
