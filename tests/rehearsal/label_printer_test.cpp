// The label printer over real loopback sockets. Everything happens on one thread: the client sends, the
// printers are stepped, the client reads; each wait ends with the first datagram.
#include "rehearsal/label_printer.h"

#include "harness/test_session.h"
#include "machine/whole_file.h"

#include <gtest/gtest.h>

#include <arpa/inet.h>
#include <map>
#include <netinet/in.h>
#include <sstream>
#include <stdexcept>
#include <sys/socket.h>
#include <unistd.h>

namespace {

using rehearsal::LabelPrinter;
using rehearsal::PrinterOptions;

constexpr int patient = 5000; // milliseconds

const std::string search_request("\x02\x06\x00\x00\x38\x00\x00\x00\x00\x00\x20\x10\x00\x02"
                                 "en\x00\x00\x00\x17service:printer:raw-tcp\x00\x07"
                                 "DEFAULT\x00\x00\x00\x00",
                                 56);

sockaddr_in endpoint(const char* address, std::uint16_t port) {
    sockaddr_in native{};
    native.sin_family = AF_INET;
    native.sin_port = htons(port);
    native.sin_addr.s_addr = inet_addr(address);
    return native;
}

// A client on 127.0.0.1 whose multicast stays on loopback.
class Client {
public:
    explicit Client(int type) : descriptor_(socket(AF_INET, type, 0)) {
        sockaddr_in local = endpoint("127.0.0.1", 0);
        const timeval time_out{patient / 1000, 0};
        EXPECT_EQ(bind(descriptor_, reinterpret_cast<sockaddr*>(&local), sizeof local), 0);
        EXPECT_EQ(setsockopt(descriptor_, SOL_SOCKET, SO_RCVTIMEO, &time_out, sizeof time_out), 0);
        if (type == SOCK_DGRAM) {
            EXPECT_EQ(setsockopt(descriptor_, IPPROTO_IP, IP_MULTICAST_IF, &local.sin_addr, 4), 0);
        }
    }
    ~Client() { close(descriptor_); }

    void send(const std::string& bytes, const sockaddr_in& to) {
        const auto* target = reinterpret_cast<const sockaddr*>(&to);
        EXPECT_EQ(sendto(descriptor_, bytes.data(), bytes.size(), 0, target, sizeof to),
                  static_cast<ssize_t>(bytes.size()));
    }
    // The next datagram and its sender; none when there is nothing within the time-out.
    std::pair<std::string, std::string> receive() {
        char buffer[4000];
        sockaddr_in from{};
        socklen_t length = sizeof from;
        const ssize_t got =
            recvfrom(descriptor_, buffer, sizeof buffer, 0, reinterpret_cast<sockaddr*>(&from), &length);
        if (got < 0)
            return {};
        return {inet_ntoa(from.sin_addr), std::string(buffer, static_cast<std::size_t>(got))};
    }
    bool has_more() {
        char byte;
        return recv(descriptor_, &byte, 1, MSG_PEEK | MSG_DONTWAIT) >= 0;
    }
    int descriptor() const { return descriptor_; }

private:
    int descriptor_;
};

PrinterOptions options_for(const char* address, std::uint16_t discovery_port) {
    PrinterOptions options;
    options.address = address;
    options.discovery_port = discovery_port;
    options.raw_port = 0;
    return options;
}

TEST(LabelPrinter, SeveralAnswerOneMulticastEachFromItsAddress) {
    std::ostringstream lines;
    PrinterOptions shelf = options_for("127.0.0.11", 0);
    shelf.name = "Shelf A (left)";
    shelf.location = "Hall 2";
    LabelPrinter first(shelf, lines);
    const std::uint16_t port = first.discovery_port();
    LabelPrinter second(options_for("127.0.0.12", port), lines);
    PrinterOptions nothing = options_for("127.0.0.13", port);
    nothing.empty = true;
    LabelPrinter third(nothing, lines);
    EXPECT_EQ(lines.str().find("ready 127.0.0.11 slp " + std::to_string(port)), 0u) << lines.str();

    Client client(SOCK_DGRAM);
    client.send(search_request, endpoint("239.255.255.253", port));
    std::map<std::string, std::string> answers;
    for (LabelPrinter* printer : {&first, &second, &third}) {
        ASSERT_EQ(printer->step(patient), LabelPrinter::Step::served);
        answers.insert(client.receive());
    }
    ASSERT_EQ(answers.size(), 3u);
    EXPECT_EQ(answers["127.0.0.11"], std::string("\x02\x07\0\0\x8c\0\0\0\0\0\x20\x10\0\x02"
                                                 "en\0\0\0\x77",
                                                 20) +
                                         "(printer-name=Shelf A \\28left\\29),(printer-location=Hall 2),"
                                         "(ieee1284-id=MFG:Vorlane;MDL:Label_100_Series;CLS:PRINTER;)" +
                                         std::string(1, '\0'));
    EXPECT_NE(answers["127.0.0.12"].find("(printer-name=Label printer),(ieee1284-id="), std::string::npos);
    EXPECT_EQ(answers["127.0.0.13"].size(), 21u);
    EXPECT_FALSE(client.has_more());
}

TEST(LabelPrinter, KeepsSilentWhenTheRequestIsNoneForIt) {
    std::ostringstream lines;
    LabelPrinter printer(options_for("127.0.0.11", 0), lines);
    const sockaddr_in own = endpoint("127.0.0.11", printer.discovery_port());
    Client client(SOCK_DGRAM);
    std::string other_service = search_request;
    other_service.replace(other_service.find("raw-tcp"), 7, "raw-udp");
    for (const std::string& bytes : {std::string("nonsense"), search_request.substr(0, 55), other_service}) {
        client.send(bytes, own);
        ASSERT_EQ(printer.step(patient), LabelPrinter::Step::served);
    }
    EXPECT_EQ(printer.answers(), 0u);
    client.send(search_request, own);
    ASSERT_EQ(printer.step(patient), LabelPrinter::Step::served);
    EXPECT_EQ(client.receive().first, "127.0.0.11");
    EXPECT_FALSE(client.has_more());
    EXPECT_EQ(printer.answers(), 1u);
}

TEST(LabelPrinter, SendsTheRepliesOfItsListAsTheyAre) {
    std::ostringstream lines;
    PrinterOptions options = options_for("127.0.0.11", 0);
    const std::string broken("\x02\x07\xff", 3);
    options.replies.emplace();
    options.replies->push_back({true, "", {2, 7, 0xff}, 1});
    options.replies->push_back({false, "((,\x1b", {}, 2});
    LabelPrinter hostile(options, lines);
    options.address = "127.0.0.12";
    options.replies->clear();
    LabelPrinter silent(options, lines);
    Client client(SOCK_DGRAM);
    client.send(search_request, endpoint("127.0.0.11", hostile.discovery_port()));
    ASSERT_EQ(hostile.step(patient), LabelPrinter::Step::served);
    EXPECT_EQ(client.receive().second, broken);
    for (int time = 0; time < 2; ++time)
        EXPECT_EQ(client.receive().second, std::string("\x02\x07\0\0\x19\0\0\0\0\0\x20\x10\0\x02"
                                                       "en\0\0\0\x04((,\x1b\0",
                                                       25));
    client.send(search_request, endpoint("127.0.0.12", silent.discovery_port()));
    ASSERT_EQ(silent.step(patient), LabelPrinter::Step::served);
    EXPECT_FALSE(client.has_more());
}

TEST(LabelPrinter, TakesJobsOneAfterTheOther) {
    const TemporaryFolder folder;
    std::ostringstream lines;
    PrinterOptions options = options_for("127.0.0.11", 0);
    options.save = folder.path;
    LabelPrinter printer(options, lines);
    for (const std::string job : {"first label", ""}) {
        Client client(SOCK_STREAM);
        const sockaddr_in target = endpoint("127.0.0.11", printer.raw_port());
        ASSERT_EQ(connect(client.descriptor(), reinterpret_cast<const sockaddr*>(&target), sizeof target), 0);
        ASSERT_EQ(send(client.descriptor(), job.data(), job.size(), 0), static_cast<ssize_t>(job.size()));
        ASSERT_EQ(shutdown(client.descriptor(), SHUT_WR), 0);
        // Taking the connection, the bytes if there are any, and the end.
        for (int step = job.empty() ? 1 : 0; step < 3; ++step)
            ASSERT_EQ(printer.step(patient), LabelPrinter::Step::served);
    }
    EXPECT_NE(lines.str().find("job 1 from 127.0.0.1: 11 bytes\njob 2 from 127.0.0.1: 0 bytes\n"),
              std::string::npos)
        << lines.str();
    EXPECT_EQ(platform::read_whole_file(folder.path / "job-1.raw"), "first label");
}

TEST(LabelPrinter, IsNotSetUpWhereItCouldReachOthers) {
    std::ostringstream lines;
    const struct {
        const char* name;
        const char* address;
    } cases[] = {{"an address of another network", "10.255.255.1"}, {"no address", "printer"}};
    for (const auto& [name, address] : cases)
        EXPECT_THROW(LabelPrinter(options_for(address, 0), lines), std::runtime_error) << name;
    EXPECT_EQ(lines.str(), "");
}

} // namespace
