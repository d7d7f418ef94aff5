// A person at a terminal, who is a pseudo terminal here, and the script that is written down meanwhile.
#include "rehearsal/trk_program.h"

#include <pty.h>
#include <unistd.h>

namespace {

struct Conversation {
    std::string shown; // what was typed too, as a terminal echoes it
    int status = -1;
};

// Everything is typed ahead, then the end of the input, so that nobody waits; the program takes a line
// whenever it asks.
Conversation talk(const std::vector<std::string>& arguments, const std::string& typed) {
    std::vector<std::string> kept = arguments;
    std::vector<char*> words;
    for (std::string& word : kept)
        words.push_back(word.data());
    words.push_back(nullptr);
    int terminal = -1;
    const pid_t child = forkpty(&terminal, nullptr, nullptr, nullptr);
    if (child == 0) {
        execv(words[0], words.data());
        _exit(99);
    }
    const std::string all = typed + '\x04';
    EXPECT_EQ(write(terminal, all.data(), all.size()), static_cast<ssize_t>(all.size()));
    Conversation result;
    char buffer[4096];
    for (ssize_t got = 0; (got = read(terminal, buffer, sizeof buffer)) > 0;)
        result.shown.append(buffer, static_cast<std::size_t>(got));
    close(terminal);
    waitpid(child, &result.status, 0);
    result.status = WIFEXITED(result.status) ? WEXITSTATUS(result.status) : -1;
    std::erase(result.shown, '\r');
    return result;
}

class Person : public TrkProgram {
protected:
    Conversation type(const std::string& typed) {
        return talk({program, "rehearse", "--machine", machine.string(), "--record", record.string(),
                     TRK_SAMPLE_MEDIUM},
                    typed);
    }
    const fs::path record = folder.path / "record";
};

std::size_t count(const std::string& text, const std::string& part) {
    std::size_t number = 0;
    for (std::size_t place = 0; (place = text.find(part, place)) != text.npos; place += part.size())
        ++number;
    return number;
}

constexpr char last_of_the_terms[] = "8. General. If a provision";

TEST_F(Person, IsWrittenDownAsAScriptThatDoesTheSame) {
    const Conversation talked =
        type("help\npress Netwrk\n  press network  # by its name\nselect red\n"
             "expect box never\npress 1015\nmore\ntick 1011\nexpect queue Print to File\n"
             "press ok\n");
    EXPECT_EQ(talked.status, 0) << talked.shown;
    EXPECT_EQ(count(talked.shown, "a control is its id or its name"), 2u) << "once of itself, once for help";
    EXPECT_NE(talked.shown.find("nothing that is shown is called \"Netwrk\"; there is \"Cancel\""),
              std::string::npos);
    EXPECT_NE(talked.shown.find("  there is none\n"), std::string::npos) << "the expectation that isn't met";
    EXPECT_EQ(count(talked.shown, last_of_the_terms), 1u) << "only more shows it";
    EXPECT_TRUE(talked.shown.ends_with(
        "OK: queue \"Label 100 Series\" on TRK_10.0.0.7, driver 1.2.3.4, 9 label sizes\n"));
    EXPECT_EQ(TestSession::read(record), "press network  # by its name\nselect red\npress 1015\ntick 1011\n"
                                         "expect queue Print to File\npress ok\n");

    const std::string after = TestSession::read(machine);
    fs::rename(machine.string() + ".drive-c", folder.path / "first");
    TestSession::write(machine, machine_text);
    ASSERT_EQ(rehearse("--quiet --machine " + machine.string() + " --script " + record.string()), 0) << err;
    EXPECT_EQ(TestSession::read(machine), after);
    const std::string compare =
        "diff -r " + (folder.path / "first").string() + " " + machine.string() + ".drive-c";
    EXPECT_EQ(std::system(compare.c_str()), 0);
}

TEST_F(Person, MayLeaveAndKeepsWhatWasDone) {
    const Conversation talked = type("press USB\nmore\nquit\n");
    EXPECT_EQ(talked.status, 0) << talked.shown;
    EXPECT_EQ(TestSession::read(record), "press USB\n");
    EXPECT_EQ(names(), (std::set<std::string>{"m.json", "m.json.drive-c", "record", "s"}));
}

} // namespace
