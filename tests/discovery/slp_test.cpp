#include "discovery/slp.h"

#include "harness/test_session.h"

#include <gtest/gtest.h>

namespace {

std::string bytes_of(const BYTE* bytes, std::size_t count) {
    return {reinterpret_cast<const char*>(bytes), count};
}

// A reply with this text at its place. The vector ends where the datagram does, so that a byte read too many
// is seen.
std::vector<BYTE> reply(const std::string& text, std::size_t header = 20) {
    std::vector<BYTE> datagram(header, 0x7f);
    datagram.insert(datagram.end(), text.begin(), text.end());
    return datagram;
}

struct Find {
    int found;
    std::string address;
    std::string name;
    bool operator==(const Find&) const = default;
    friend std::ostream& operator<<(std::ostream& out, const Find& find) {
        return out << find.found << " [" << find.address << "] [" << find.name << "]";
    }
};

constexpr DWORD sender = 0x0702010A; // 10.1.2.7 in network order

Find read(const std::vector<BYTE>& datagram, const char* tag = "MDL:Label_100;") {
    char address[printer_address_capacity] = "untouched";
    char name[printer_name_capacity] = "untouched";
    const int found =
        read_slp_reply(datagram.data(), static_cast<int>(datagram.size()), tag, sender, address, name);
    return {found, address, name};
}

class SlpReply : public testing::Test {
protected:
    void SetUp() override { test.start(); }
    TestSession test;
};

const Find no_find = {0, "untouched", "untouched"};

TEST(SlpRequest, IsThePublishedMessage) {
    const std::string expected("\x02\x06\x00\x00\x38\x00\x00\x00\x00\x00\x20\x10\x00\x02"
                               "en\x00\x00\x00\x17service:printer:raw-tcp\x00\x07"
                               "DEFAULT\x00\x00\x00\x00",
                               56);
    BYTE buffer[58];
    buffer[56] = buffer[57] = 0xEE;
    build_slp_request(buffer);
    EXPECT_EQ(bytes_of(buffer, 56), expected);
    EXPECT_EQ(buffer[56], 0xEE);
    EXPECT_EQ(read_be_number(3, buffer + 2), slp_request_size);
}

TEST(SlpNumbers, AreReadAndReversed) {
    const BYTE bytes[] = {0x81, 0x22, 0x33, 0x44, 0x55};
    const struct {
        int count;
        DWORD expected;
    } numbers[] = {{-1, 0x81},    {0, 0x81},       {1, 0x81},      {2, 0x8122},
                   {3, 0x812233}, {4, 0x81223344}, {5, 0x22334455}};
    for (const auto& row : numbers)
        EXPECT_EQ(read_be_number(row.count, bytes), row.expected) << row.count;
    EXPECT_EQ(reverse_bytes(0x1234, 2), 0x3412u);
    EXPECT_EQ(reverse_bytes(0x11223344, 4), 0x44332211u);
    EXPECT_EQ(reverse_bytes(0x11223344, 0), 0u);
    EXPECT_EQ(reverse_bytes(0xFF223344, 1), 0x44u);
}

TEST_F(SlpReply, FindsThePrintersOfTheModel) {
    const std::string nul(1, 0);
    const struct {
        const char* name;
        std::vector<BYTE> datagram;
        Find expected;
    } table[] = {
        {"tag, then name",
         reply("(a=MDL:Label_100;),(printer-name=Shelf A)" + nul),
         {1, "10.1.2.7", "Shelf A"}},
        {"name, then tag", reply("(printer-name=B),(a=MDL:Label_100;)" + nul), {1, "10.1.2.7", "B"}},
        {"first of two names",
         reply("MDL:Label_100;printer-name=1)printer-name=2)" + nul),
         {1, "10.1.2.7", "1"}},
        {"empty name", reply("MDL:Label_100;(printer-name=)" + nul), {1, "10.1.2.7", ""}},
        {"no name", reply("MDL:Label_100;" + nul), {1, "10.1.2.7", ""}},
        {"name to the text's end",
         reply("MDL:Label_100;printer-name=Up to here" + nul),
         {1, "10.1.2.7", "Up to here"}},
        {"name to the datagram's end", reply("MDL:Label_100;printer-name=Open"), {1, "10.1.2.7", "Open"}},
        {"19 characters",
         reply("MDL:Label_100;printer-name=1234567890123456789)"),
         {1, "10.1.2.7", "1234567890123456789"}},
        {"20 characters",
         reply("MDL:Label_100;printer-name=12345678901234567890)"),
         {1, "10.1.2.7", "1234567890123456789"}},
        {"longer model", reply("MDL:Label_100_Series;" + nul), no_find},
        {"small letters", reply("mdl:label_100;" + nul), no_find},
        {"tag behind the text", reply("a" + nul + "MDL:Label_100;"), no_find},
        {"tag in front of the text", reply("", 0), no_find},
        {"empty text", reply(nul), no_find},
        {"20 bytes", reply(""), no_find},
        {"one byte", reply("", 1), no_find},
        {"cut inside the tag", reply("MDL:Label_100"), no_find},
    };
    for (const auto& row : table)
        EXPECT_EQ(read(row.datagram), row.expected) << row.name;
}

TEST_F(SlpReply, EchoesEveryTextWithinItsLine) {
    read(reply("no match" + std::string(1, 0)));
    read(reply("", 7));
    read(reply(std::string(253, 'x')));
    read(reply(std::string(254, 'y')));
    read(reply("MDL:Label_100;printer-name=N)"));
    EXPECT_EQ(test.log(), "no match\r\n\r\n" + std::string(253, 'x') + "\r\n" + std::string(253, 'y') +
                              "\r\n" + "MDL:Label_100;printer-name=N)\r\nPrinter found 10.1.2.7 N\r\n");
}

// No printer writes lines of its own into the log, nor moves a column of the list.
TEST_F(SlpReply, ShowsControlCharactersAsBlanks) {
    const std::string name = "A\r\nPrinter";
    EXPECT_EQ(read(reply("MDL:Label_100;\t\x7f\x1b(printer-name=" + name + "\x01)")),
              (Find{1, "10.1.2.7", "A  Printer "}));
    EXPECT_EQ(test.log(),
              "MDL:Label_100;   (printer-name=A  Printer )\r\nPrinter found 10.1.2.7 A  Printer \r\n");
}

TEST_F(SlpReply, LargestDatagramIsSearchedToItsEnd) {
    const std::string filler(4000 - 20 - 15, 'f');
    EXPECT_EQ(read(reply(filler + "MDL:Label_100;)")).found, 1);
    EXPECT_EQ(read(reply(filler + "MDL:Label_100;)" + std::string(100, 'f'))).found, 1);
}

TEST_F(SlpReply, LogsTheHeaderOfARequest) {
    BYTE request[slp_request_size];
    build_slp_request(request);
    request[6] = 0x20; // a flag and an extension, to tell the two byte orders apart
    request[9] = 0x05;
    log_slp_header(request);
    EXPECT_EQ(test.log(), "H2 Version=2 FunctionID=6 Length=56 Flags=8192 NextExtOff==5 XID=4128 langt_len=2 "
                          "langt=6e65\r\n");
}

} // namespace
