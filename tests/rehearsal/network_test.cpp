// A command among printers, in namespaces of the test's own.
#include "rehearsal/network_namespaces.h"
#include "rehearsal/printer_list.h"
#include "rehearsal/trk_program.h"

#include <csignal>
#include <fstream>
#include <stdexcept>

#include <sys/stat.h>
#include <unistd.h>

namespace {

TEST(PrinterList, IsReadWithItsReplies) {
    const TemporaryFolder folder;
    const fs::path file = folder.path / "list.json";
    TestSession::write(file, R"({"printers": [{"name": "A", "delay": 20},
      {"replies": [{"hex": "0207ff"}, {"attributes": "((", "times": 3}]}, {"replies": []}]})");
    const std::vector<rehearsal::PrinterOptions> printers = rehearsal::read_printer_list(file);
    ASSERT_EQ(printers.size(), 3u);
    EXPECT_EQ(printers[0].name, "A");
    EXPECT_EQ(printers[0].delay, 20u);
    EXPECT_FALSE(printers[0].replies);
    ASSERT_EQ(printers[1].replies->size(), 2u);
    EXPECT_EQ(printers[1].replies->at(0).datagram, (std::vector<std::uint8_t>{2, 7, 255}));
    EXPECT_EQ(printers[1].replies->at(1).attributes, "((");
    EXPECT_EQ(printers[1].replies->at(1).times, 3u);
    EXPECT_TRUE(printers[2].replies->empty());
}

TEST(PrinterList, TellsWhereItIsWrong) {
    const TemporaryFolder folder;
    const fs::path file = folder.path / "list.json";
    const struct {
        std::string text;
        std::string line;
        std::string complaint;
    } cases[] = {
        {"[]", ":1:", "lacks \"printers\""},
        {"{\"printers\": []}", ":1:", "must be a list of 1 to 200 printers"},
        {"{\"printers\": [\n {\"nmae\": \"A\"}]}", ":2:", "unknown key"},
        {"{\"printers\": [{\"delay\": 60001}]}", ":1:", "delay: "},
        {"{\"printers\": [{\"replies\": [\n{\"times\": 2}]}]}", ":2:", "needs either"},
        {"{\"printers\": [{\"replies\": [{\"hex\": \"0\"}]}]}", ":1:", "hex: "},
        {"{\"printers\"", ":1:", ""},
    };
    for (const auto& item : cases) {
        TestSession::write(file, item.text);
        try {
            rehearsal::read_printer_list(file);
            ADD_FAILURE() << item.text;
        } catch (const std::runtime_error& error) {
            const std::string told = error.what();
            EXPECT_TRUE(told.starts_with(file.string() + item.line)) << told;
            EXPECT_NE(told.find(item.complaint), std::string::npos) << told;
        }
    }
    fs::remove(file);
    EXPECT_THROW(rehearsal::read_printer_list(file), std::runtime_error);
}

class Network : public TrkProgram {
protected:
    void SetUp() override {
        if (!rehearsal::NetworkNamespaces::permitted())
            GTEST_SKIP() << "network namespaces aren't permitted here";
        TestSession::write(list, R"({"printers": [{"name": "red"}, {"delay": 300, "replies": [
          {"hex": "0207ff"}, {"attributes": "(((,(printer-name=%s%n\u001b[2J", "times": 200}]}]})");
    }
    int among_printers(const std::string& command) {
        return run(program, "network --printers " + list.string() + " -- " + command);
    }
    const fs::path list = folder.path / "list.json";
};

TEST_F(Network, HasPrintersThatTheProgramFinds) {
    TestSession::write(machine, R"({"adapters": [{"addresses": ["10.77.0.2"], "network": "real"}]})");
    EXPECT_EQ(among_printers(program + " rehearse --quiet " + usual + " " + TRK_SAMPLE_MEDIUM), 0) << err;
    EXPECT_EQ(out, "OK: queue \"Label 100 Series\" on TRK_10.77.0.11, driver 1.2.3.4, 9 label sizes\n");
    EXPECT_NE(err.find("network: printer ready 10.77.0.12 "), std::string::npos) << err;
    EXPECT_NE(err.find("network: printer 2 answered 10.77.0.2 with "), std::string::npos) << err;
}

TEST_F(Network, PassesTheExitStatusOn) {
    EXPECT_EQ(among_printers("sh -c 'exit 7'"), 7);
    EXPECT_EQ(among_printers("sh -c 'kill -9 $$'"), 128 + SIGKILL);
    EXPECT_EQ(among_printers(folder.path / "nonesuch"), 127);
    EXPECT_EQ(among_printers(list), 126);
    TestSession::write(list, "{}");
    EXPECT_EQ(among_printers("true"), 2);
    EXPECT_NE(err.find("lacks \"printers\""), std::string::npos) << err;
}

TEST_F(Network, HasNoOtherCardAndNoWayOut) {
    EXPECT_EQ(
        among_printers(
            "sh -c 'cat /proc/net/dev | tail -n +3 | cut -d: -f1; tail -n +2 /proc/net/route | cut -f1,2; "
            "echo $TRK_PROGRAM_ADDRESS $TRK_NETWORK'"),
        0);
    std::erase(out, ' ');
    EXPECT_TRUE(out == "lo\ntrk-program\ntrk-program\t00004D0A\n10.77.0.2namespaces\n" ||
                out == "trk-program\nlo\ntrk-program\t00004D0A\n10.77.0.2namespaces\n")
        << out;
}

// What the command began lies in files, a process id each.
bool is_alive(const fs::path& file) {
    std::ifstream stream(file);
    pid_t process = 0;
    stream >> process;
    EXPECT_GT(process, 0) << file;
    return process > 0 && kill(process, 0) == 0;
}

TEST_F(Network, EndsWithItsCommand) {
    const std::string left = (folder.path / "left").string();
    EXPECT_EQ(among_printers("sh -c 'tail -f /dev/null & echo $! >" + left +
                             "; setsid tail -f /dev/null & echo $! >" + left + "2'"),
              0);
    EXPECT_FALSE(is_alive(left));
    EXPECT_FALSE(is_alive(left + "2"));
}

TEST_F(Network, EndsWithASignal) {
    const fs::path fifo = folder.path / "fifo";
    const fs::path left = folder.path / "left";
    ASSERT_EQ(mkfifo(fifo.c_str(), 0600), 0);
    const std::string words =
        "echo $$ >" + left.string() + "; echo >" + fifo.string() + "; exec tail -f /dev/null";
    const pid_t child = fork();
    if (child == 0) {
        execl(program.c_str(), "trk", "network", "--printers", list.c_str(), "--", "sh", "-c", words.c_str(),
              nullptr);
        _exit(99);
    }
    std::string line;
    std::ifstream stream(fifo); // waits until the command runs
    std::getline(stream, line);
    kill(child, SIGTERM);
    int status = 0;
    waitpid(child, &status, 0);
    EXPECT_EQ(WEXITSTATUS(status), 128 + SIGTERM);
    EXPECT_FALSE(is_alive(left));
}

} // namespace
