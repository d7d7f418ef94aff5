// The tool as a program: what it does to the files around it, whatever goes wrong.
#include "harness/test_session.h"
#include "rehearsal/shown_text.h"
#include "rehearsal/unknown_words.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <set>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace fs = std::filesystem;

namespace {

constexpr char machine_text[] =
    R"json({"clock": "2024-07-04T09:05:01", "adapters": [{"addresses": ["10.0.0.2"],
  "network": "scripted", "searches": [[{"from": "10.0.0.7",
  "text": "(printer-name=\u001b[31mred),(id=MDL:Label_100_Series;)"}]]}]})json";
constexpr char install_script[] =
    "press Network\nselect red\npress \"Install Printer\"\ntick 1011\npress ok\n"
    "expect box installed\nexpect queue Label 100 Series\n";

class TrkProgram : public testing::Test {
protected:
    TrkProgram() {
        TestSession::write(machine, machine_text);
        TestSession::write(script, install_script);
    }

    // The exit status of a rehearsal with these options; what it printed is in `out` and `err`.
    int rehearse(const std::string& options) {
        return run(program, "rehearse " + options + " " + TRK_SAMPLE_MEDIUM);
    }
    int run(const std::string& trk, const std::string& options) {
        const std::string command = trk + " " + options + " </dev/null >" + (folder.path / "out").string() +
                                    " 2>" + (folder.path / "err").string();
        const int status = std::system(command.c_str());
        out = fs::exists(folder.path / "out") ? TestSession::read(folder.path / "out") : "";
        err = TestSession::read(folder.path / "err");
        return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    }
    // The names beside the machine, without the two files of what was printed.
    std::set<std::string> names() const {
        std::set<std::string> all;
        for (const fs::directory_entry& entry : fs::directory_iterator(folder.path))
            all.insert(entry.path().filename().string());
        all.erase("out");
        all.erase("err");
        return all;
    }

    TemporaryFolder folder;
    const std::string program = TRK_PROGRAM;
    const fs::path machine = folder.path / "m.json";
    const fs::path script = folder.path / "s";
    const std::string usual = "--machine " + machine.string() + " --script " + script.string();
    std::string out, err;
};

TEST_F(TrkProgram, DoesTheSameTwiceByteByByte) {
    ASSERT_EQ(rehearse("--quiet --report " + (folder.path / "r1").string() + " " + usual), 0) << err;
    EXPECT_EQ(out, "OK: queue \"Label 100 Series\" on TRK_10.0.0.7, driver 1.2.3.4, 9 label sizes\n");
    fs::rename(machine.string() + ".drive-c", folder.path / "first");
    fs::rename(machine, folder.path / "first.json");
    TestSession::write(machine, machine_text);
    ASSERT_EQ(rehearse("--quiet --report " + (folder.path / "r2").string() + " " + usual), 0) << err;
    EXPECT_EQ(TestSession::read(machine), TestSession::read(folder.path / "first.json"));
    EXPECT_EQ(TestSession::read(folder.path / "r1"), TestSession::read(folder.path / "r2"));
    const std::string compare =
        "diff -r " + (folder.path / "first").string() + " " + machine.string() + ".drive-c";
    EXPECT_EQ(std::system(compare.c_str()), 0);
}

TEST_F(TrkProgram, ShowsNoControlCharacterAndKeepsItsStreamsApart) {
    ASSERT_EQ(rehearse("--report - " + usual), 0) << err;
    EXPECT_TRUE(out.starts_with("{\n") && out.ends_with("\n}\n"));
    EXPECT_NE(err.find(" [31mred"), std::string::npos) << "the program's log has a blank there";
    EXPECT_EQ(err.find('\x1b'), std::string::npos);
}

TEST_F(TrkProgram, RefusesBeforeTheRunAndLeavesEverything) {
    const std::string other = (folder.path / "none/r").string();
    const struct {
        std::string options;
        std::string complaint;
    } cases[] = {
        {usual + " --report " + machine.string(), "--machine and --report are the same file"},
        {usual + " --report " + other, other + ": can't be written: No such file or directory"},
        {usual + " --report " + folder.path.string(), "can't be written: Is a directory"},
        {"--machine " + script.string() + " --script " + script.string(), "are the same file"},
    };
    const std::set<std::string> before = names();
    for (const auto& item : cases) {
        EXPECT_EQ(rehearse(item.options), 2);
        EXPECT_NE(err.find(item.complaint), std::string::npos) << err;
        EXPECT_EQ(TestSession::read(machine), machine_text);
        EXPECT_EQ(names(), before);
    }
}

TEST_F(TrkProgram, TellsWhenAResultCannotBeWritten) {
    EXPECT_EQ(rehearse("--quiet --report /dev/full " + usual), 2);
    EXPECT_NE(err.find("/dev/full: can't be written: No space left on device"), std::string::npos) << err;
    EXPECT_EQ(names(), (std::set<std::string>{"m.json", "s"})) << "and nothing is kept of the run";
    const std::string command = program + " rehearse --quiet --report - " + usual + " " + TRK_SAMPLE_MEDIUM +
                                " >/dev/full 2>/dev/null";
    EXPECT_EQ(WEXITSTATUS(std::system(command.c_str())), 2);
}

TEST_F(TrkProgram, KeepsAMachineToOneRunAtATime) {
    const int descriptor = open(machine.c_str(), O_RDONLY);
    ASSERT_EQ(flock(descriptor, LOCK_EX), 0);
    EXPECT_EQ(rehearse(usual), 2);
    EXPECT_NE(err.find(": another trk is at work on this machine"), std::string::npos) << err;
    close(descriptor);
    EXPECT_EQ(rehearse("--quiet " + usual), 0) << err;
}

TEST_F(TrkProgram, LeavesNothingBehindASignal) {
    const fs::path fifo = folder.path / "fifo";
    ASSERT_EQ(mkfifo(fifo.c_str(), 0600), 0);
    fs::create_directories(machine.string() + ".drive-c/Windows");
    const std::set<std::string> before = names();
    const pid_t child = fork();
    if (child == 0) {
        execl(program.c_str(), "trk", "rehearse", "--quiet", "--machine", machine.c_str(), "--script",
              fifo.c_str(), TRK_SAMPLE_MEDIUM, nullptr);
        _exit(99);
    }
    const int writer =
        open(fifo.c_str(), O_WRONLY); // waits until the script is read, when the drive is copied
    EXPECT_GT(names().size(), before.size());
    kill(child, SIGTERM);
    int status = 0;
    waitpid(child, &status, 0);
    close(writer);
    EXPECT_EQ(WEXITSTATUS(status), 128 + SIGTERM);
    EXPECT_EQ(names(), before);
    EXPECT_EQ(TestSession::read(machine), machine_text);
}

TEST_F(TrkProgram, TakesADriveWithLinksAndPipes) {
    const fs::path drive = machine.string() + ".drive-c";
    fs::create_directories(drive);
    fs::create_symlink("nowhere", drive / "dangling");
    ASSERT_EQ(mkfifo((drive / "pipe").c_str(), 0600), 0);
    EXPECT_EQ(rehearse("--quiet " + usual), 0) << err;
    EXPECT_TRUE(fs::is_symlink(drive / "dangling") && fs::is_fifo(drive / "pipe"));
}

TEST_F(TrkProgram, TellsWhereAScriptOrAFaultIsWrong) {
    const struct {
        std::string script;
        std::string complaint;
    } scripts[] = {
        {"press 1014\n  pres 2\n", ":2:3: \"pres\" is no action (did you mean press?); there are press"},
        {"press Install Printer\n", ":1:15: \"Printer\" is too much"},
        {"type 1000 \"10\n", ":1:11: the quote isn't closed"},
        {"expect bock x\n", ":1:8: \"bock\" is no expectation (did you mean box?)"},
    };
    for (const auto& item : scripts) {
        TestSession::write(script, item.script);
        EXPECT_EQ(rehearse(usual), 2);
        EXPECT_NE(err.find(script.string() + item.complaint), std::string::npos) << err;
    }
    TestSession::write(script, install_script);
    TestSession::write(machine, "{\"faults\": [\n  {\"call\": \"AddPrintrW\"}]}");
    EXPECT_EQ(rehearse(usual), 2);
    EXPECT_NE(err.find("m.json:2:12: no call is named \"AddPrintrW\" (did you mean AddPrinterW"),
              std::string::npos)
        << err;
}

TEST_F(TrkProgram, EndsIn1WhenAScriptIsntMet) {
    const struct {
        std::string script;
        std::string complaint;
    } scripts[] = {
        {"press 2\npress 1014\n", ":2:1: press 1014: the run was over before it came to this"},
        {"press 1014\nselect blue\n", ":2:1: select blue: no row has \"blue\" in it"},
        {"press 1014\nexpect queue None\npress 2\n", ":2:1: expect queue None: there is \"Print to File\""},
        {"press 1014\nexpect box gone\n", ":2:1: expect box gone: there is none"},
        {"press Netwrk\n", "nothing that is shown is called \"Netwrk\"; there is \"Cancel\", \"USB\""},
    };
    for (const auto& item : scripts) {
        TestSession::write(machine, machine_text);
        TestSession::write(script, item.script);
        EXPECT_EQ(rehearse("--quiet " + usual), 1);
        EXPECT_NE(err.find(item.complaint), std::string::npos) << err;
        EXPECT_TRUE(out.starts_with("FAIL: " + script.string())) << out;
    }
}

TEST_F(TrkProgram, AsksWhatAMistypedWordMeant) {
    EXPECT_EQ(run(program, "rehears x"), 2);
    EXPECT_EQ(err, "trk: there is no sub-command \"rehears\" (did you mean rehearse?)\n");
    EXPECT_EQ(rehearse("--machin x"), 2);
    EXPECT_EQ(err, "trk: rehearse has no option --machin (did you mean --machine?)\n");
}

TEST(ShownText, SpellsOutWhatCannotBePrinted) {
    const struct {
        const char* text;
        const char* expected;
    } cases[] = {
        {"Regal \xC3\xA4\xE3\x82\xA2", "Regal \xC3\xA4\xE3\x82\xA2"},
        {"\x1b[2J\r\n\t\x7f", "\\x1b[2J\\x0d\\x0a\\x09\\x7f"},
        {"\xC2\x9B"
         "31m",
         "\\xc2\\x9b31m"},
        {"\xFF\xC3", "\\xff\\xc3"},
    };
    for (const auto& item : cases)
        EXPECT_EQ(rehearsal::shown_text(item.text), item.expected);
}

} // namespace
