// The tool as a program: what it does to the files around it, whatever goes wrong.
#include "machine/json_document.h"
#include "rehearsal/drive_files.h"
#include "rehearsal/shown_text.h"
#include "rehearsal/trk_program.h"
#include "rehearsal/unknown_words.h"

#include <gtest/gtest.h>

#include <csignal>
#include <cstdlib>
#include <fstream>
#include <set>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

TEST_F(TrkProgram, DoesTheSameTwiceByteByByte) {
    ASSERT_EQ(rehearse("--quiet --report " + (folder.path / "r1").string() + " " + usual), 0) << err;
    EXPECT_EQ(out, "OK: queue \"Label 100 Series\" on TRK_10.0.0.7, driver 1.2.3.4, 9 label sizes\n");
    fs::rename(machine.string() + ".drive-c", folder.path / "first");
    fs::rename(machine, folder.path / "first.json");
    TestSession::write(machine, machine_text);
    ASSERT_EQ(rehearse("--quiet --report " + (folder.path / "r2").string() + " " + usual), 0) << err;
    EXPECT_EQ(TestSession::read(machine), TestSession::read(folder.path / "first.json"));
    EXPECT_EQ(TestSession::read(folder.path / "r1"), TestSession::read(folder.path / "r2"));
    const auto report = platform::Json::parse(TestSession::read(folder.path / "r1"));
    EXPECT_EQ(report["verdict"].get<std::string>() + "\n", out);
    EXPECT_TRUE(report["missing"].empty());
    const std::string compare =
        "diff -r " + (folder.path / "first").string() + " " + machine.string() + ".drive-c";
    EXPECT_EQ(std::system(compare.c_str()), 0);
}

// What a user starts is the 32-bit program; who installs is told by the log's banner.
TEST_F(TrkProgram, HandsOverToTheSystemsOwnProgram) {
    const std::string lent = "note: the medium has no trk_setup64.exe";
    const struct {
        const char* keys; // in front of the machine's
        int status;
        const char* banner;
        bool lent;
    } cases[] = {
        {"", 0, "Vorlane Installer 64", true},
        {"\"system\": \"x86\", ", 0, "Vorlane Installer 32", false},
        {"\"program_name\": \"trk_setup64.exe\", ", 0, "Vorlane Installer 64", false},
        {"\"child_programs\": [], ", 1, "", false},
    };
    for (const auto& item : cases) {
        SCOPED_TRACE(item.keys);
        fs::remove_all(machine.string() + ".drive-c");
        TestSession::write(machine, std::string("{") + item.keys + (machine_text + 1));
        EXPECT_EQ(rehearse("--report - " + usual), item.status) << err;
        EXPECT_NE(out.find(item.banner), std::string::npos);
        EXPECT_EQ(out.find("Vorlane Installer 32") != std::string::npos,
                  std::string(item.banner).ends_with("32"));
        EXPECT_EQ(err.find(lent) != std::string::npos, item.lent) << err;
    }
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
        {"--machine " + machine.string() + " --record " + machine.string(), "are the same file"},
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
    for (const int signal : {SIGTERM, SIGINT, SIGHUP}) {
        const pid_t child = fork();
        if (child == 0) {
            execl(program.c_str(), "trk", "rehearse", "--quiet", "--machine", machine.c_str(), "--script",
                  fifo.c_str(), TRK_SAMPLE_MEDIUM, nullptr);
            _exit(99);
        }
        const int writer =
            open(fifo.c_str(), O_WRONLY); // waits until the script is read, when the drive is copied
        EXPECT_GT(names().size(), before.size());
        kill(child, signal);
        int status = 0;
        waitpid(child, &status, 0);
        close(writer);
        EXPECT_EQ(WEXITSTATUS(status), 128 + signal);
        EXPECT_EQ(names(), before);
        EXPECT_EQ(TestSession::read(machine), machine_text);
    }
}

// A disk of its own for machine, drive and report, which is full in the midst of the run, or when the results
// are about to take their places.
TEST_F(TrkProgram, KeepsAllOrNothingOnAFullDisk) {
    if (std::system("unshare -rm true 2>/dev/null") != 0)
        GTEST_SKIP() << "namespaces aren't permitted here";
    const fs::path disk = folder.path / "disk", kept = folder.path / "kept";
    fs::create_directory(disk);
    std::set<int> seen;
    for (const int kilobytes : {60, 120, 160, 400}) {
        fs::remove_all(kept);
        const std::string in_disk = "cd " + disk.string() + " && ";
        const std::string inside = "mount -t tmpfs -o size=" + std::to_string(kilobytes) + "k none " +
                                   disk.string() + " && " + in_disk + "cp " + machine.string() +
                                   " m.json && mkdir -p m.json.drive-c/Windows && " +
                                   "head -c 20000 /dev/zero >m.json.drive-c/Windows/old && " + program +
                                   " rehearse --quiet --machine m.json --report r --script " +
                                   script.string() + " " + TRK_SAMPLE_MEDIUM + "; status=$?; cp -a " +
                                   disk.string() + " " + kept.string() + "; exit $status";
        const int status = run("unshare", "-rm sh -c '" + inside + "'");
        seen.insert(status);
        std::set<std::string> left;
        for (const fs::directory_entry& entry : fs::directory_iterator(kept))
            left.insert(entry.path().filename().string());
        const bool placed = left.contains("r");
        left.erase("r");
        EXPECT_EQ(left, (std::set<std::string>{"m.json", "m.json.drive-c"})) << kilobytes;
        EXPECT_EQ(TestSession::read(kept / "m.json") != machine_text, placed) << kilobytes;
        EXPECT_EQ(fs::exists(kept / "m.json.drive-c/Windows/Temp/trk_install.log"), placed) << kilobytes;
        EXPECT_TRUE(!placed || TestSession::read(kept / "r").ends_with("\n}\n")) << kilobytes;
        EXPECT_EQ(status == 2, !placed) << kilobytes << ": " << err;
        EXPECT_TRUE(placed || err.find("No space left on device") != err.npos) << kilobytes << ": " << err;
    }
    EXPECT_EQ(seen, (std::set<int>{0, 2}));
}

TEST_F(TrkProgram, TakesADriveWithLinksPipesAndLargeFiles) {
    const fs::path drive = machine.string() + ".drive-c";
    fs::create_directories(drive);
    fs::create_symlink("nowhere", drive / "dangling");
    ASSERT_EQ(mkfifo((drive / "pipe").c_str(), 0600), 0);
    TestSession::write(drive / "large", "begin");
    constexpr std::uintmax_t gigabyte = 1 << 30;
    fs::resize_file(drive / "large", gigabyte);
    EXPECT_EQ(rehearse("--quiet " + usual), 0) << err;
    EXPECT_TRUE(fs::is_symlink(drive / "dangling") && fs::is_fifo(drive / "pipe"));
    struct stat large = {};
    ASSERT_EQ(stat((drive / "large").c_str(), &large), 0);
    EXPECT_EQ(fs::file_size(drive / "large"), gigabyte);
    EXPECT_LT(large.st_blocks, 1000) << "what is a hole stays one";
    std::string begin(5, ' ');
    std::ifstream(drive / "large").read(begin.data(), 5);
    EXPECT_EQ(begin, "begin");
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

TEST_F(TrkProgram, RemovesFromWhereTheMachineHasItsPrograms) {
    TestSession::write(machine, "{\"folders\": {\"program_files\": \"C:\\\\Programme\"}," +
                                    std::string(machine_text).substr(1));
    ASSERT_EQ(rehearse("--quiet " + usual), 0) << err;
    const fs::path models = machine.string() + ".drive-c/Programme/Vorlane";
    const std::string with_model = TestSession::read(machine);
    const std::string remove = "remove --quiet --machine " + machine.string();

    const fs::path before = folder.path / "before.json";
    TestSession::write(before, "{\n\"spoler\": {}}");
    EXPECT_EQ(run(program, remove + " --before " + before.string()), 2);
    EXPECT_EQ(err, "trk: " + before.string() + ":2:1: spoler: unknown key (did you mean spooler?)\n");
    EXPECT_EQ(TestSession::read(machine), with_model) << "and nothing was removed before that was read";

    fs::create_directory(models / "Label 200 Series");
    EXPECT_EQ(run(program, remove), 2);
    EXPECT_NE(err.find(": 2 models are installed: \"Label 100 Series\", \"Label 200 Series\"; name one with "
                       "--model"),
              std::string::npos)
        << err;
    EXPECT_EQ(TestSession::read(machine), with_model);

    TestSession::write(before, machine_text);
    EXPECT_EQ(run(program, remove + " --model \"Label 100 Series\" --before " + before.string()), 0) << err;
    EXPECT_NE(out.find("OK: \"Label 100 Series\" is removed\n"), std::string::npos) << out;
    EXPECT_FALSE(fs::exists(models / "Label 100 Series"));
    EXPECT_TRUE(fs::exists(models / "Label 200 Series"));
}

TEST_F(TrkProgram, RunsWhereverItIsCopiedTo) {
    const fs::path copy = folder.path / "copy";
    fs::copy_file(program, copy);
    EXPECT_EQ(run("cd / && " + copy.string(), "rehearse --quiet " + usual + " " + TRK_SAMPLE_MEDIUM), 0)
        << err;
}

// Another's byte behind the same size and time would have been seen by reading all of a drive's bytes.
TEST(DriveFiles, AreDigestedWhereSizeOrTimeDiffer) {
    TemporaryFolder folder;
    const fs::path before = folder.path / "before", after = folder.path / "after";
    const struct {
        const char* name;
        const char* bytes;
        int later; // seconds
        bool digested;
    } cases[] = {{"same", "2", 0, false}, {"later", "2", 1, true}, {"longer", "22", 0, true}};
    for (const auto& item : cases) {
        TestSession::write(before / item.name, "1");
        TestSession::write(after / item.name, item.bytes);
        fs::last_write_time(after / item.name,
                            fs::last_write_time(before / item.name) + std::chrono::seconds(item.later));
    }
    TestSession::write(after / "new", "3");
    rehearsal::DriveFiles old_files = rehearsal::list_drive(before, false);
    rehearsal::DriveFiles new_files = rehearsal::list_drive(after, false);
    rehearsal::digest_differing(old_files, before, new_files, after);
    for (const auto& item : cases)
        EXPECT_EQ(new_files["C:\\" + std::string(item.name)].sha256.empty(), !item.digested) << item.name;
    EXPECT_EQ(new_files["C:\\new"].sha256, rehearsal::file_digest(after / "new"));
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
