// A run that is cut off, as by a power cut, before any of the changes that it makes to files: what the next
// run finds is as before it, or as behind it.
#include "rehearsal/trk_program.h"

#include <algorithm>
#include <csignal>
#include <cstdlib>
#include <iostream>
#include <map>
#include <vector>

#include <fcntl.h>
#include <sys/ptrace.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace {

// Whether the call changes a file or folder.
bool is_change(const __ptrace_syscall_info& call) {
    constexpr unsigned long changes[] = {
        SYS_pwrite64,  SYS_ftruncate, SYS_fallocate, SYS_copy_file_range, SYS_sendfile,
        SYS_renameat,  SYS_renameat2, SYS_unlinkat,  SYS_mkdirat,         SYS_linkat,
        SYS_symlinkat, SYS_mknodat,   SYS_utimensat, SYS_fchmod,          SYS_fchmodat,
#ifdef SYS_rename // not on every processor
        SYS_rename,    SYS_unlink,    SYS_rmdir,     SYS_mkdir,           SYS_link,
        SYS_symlink,   SYS_chmod,     SYS_mknod,
#endif
    };
    if (call.entry.nr == SYS_write || call.entry.nr == SYS_writev)
        return call.entry.args[0] > STDERR_FILENO;
    if (call.entry.nr == SYS_openat)
        return (call.entry.args[2] & O_CREAT) != 0;
    return std::find(std::begin(changes), std::end(changes), call.entry.nr) != std::end(changes);
}

struct CutRun {
    std::vector<unsigned long> changes; // the calls that were made, the one that wasn't at the end
    int status = 0;                     // as waitpid tells it
};

[[noreturn]] void exec_traced(const std::vector<std::string>& words) {
    std::vector<char*> arguments;
    for (const std::string& word : words)
        arguments.push_back(const_cast<char*>(word.c_str()));
    arguments.push_back(nullptr);
    const int nothing = open("/dev/null", O_RDWR);
    for (const int descriptor : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO})
        dup2(nothing, descriptor);
    setenv("ASAN_OPTIONS", "detect_leaks=0", 1); // the leak checker traces, too
    if (ptrace(PTRACE_TRACEME, 0, nullptr, nullptr) == 0) {
        raise(SIGSTOP);
        execv(arguments[0], arguments.data());
    }
    _exit(99);
}

// Runs the command up to its nth change, or to its end when it makes fewer.
CutRun run_up_to(const std::vector<std::string>& words, std::size_t cut) {
    CutRun run;
    const pid_t child = fork();
    if (child == 0)
        exec_traced(words);
    waitpid(child, &run.status, 0);
    if (!WIFSTOPPED(run.status))
        return run;
    ptrace(PTRACE_SETOPTIONS, child, nullptr,
           PTRACE_O_TRACESYSGOOD | PTRACE_O_TRACECLONE | PTRACE_O_TRACEEXEC | PTRACE_O_EXITKILL);
    ptrace(PTRACE_SYSCALL, child, nullptr, nullptr);
    for (;;) {
        int status = 0;
        const pid_t thread = waitpid(-1, &status, __WALL);
        if (thread < 0 || (thread == child && !WIFSTOPPED(status))) {
            run.status = status;
            return run;
        }
        if (!WIFSTOPPED(status))
            continue;
        const int signal = WSTOPSIG(status);
        __ptrace_syscall_info call = {};
        if (signal == (SIGTRAP | 0x80))
            ptrace(PTRACE_GET_SYSCALL_INFO, thread, sizeof call, &call);
        if (call.op == PTRACE_SYSCALL_INFO_ENTRY && is_change(call)) {
            run.changes.push_back(call.entry.nr);
            if (run.changes.size() == cut)
                kill(child, SIGKILL);
        }
        const bool own = (signal & 0x7F) == SIGTRAP || signal == SIGSTOP;
        ptrace(PTRACE_SYSCALL, thread, nullptr, own ? 0 : signal);
    }
}

std::map<std::string, std::string> tree_of(const fs::path& folder) {
    std::map<std::string, std::string> tree;
    for (const fs::directory_entry& entry : fs::recursive_directory_iterator(folder))
        tree[fs::relative(entry.path(), folder).string()] =
            entry.is_regular_file() ? TestSession::read(entry.path()) : "";
    tree.erase("out");
    tree.erase("err");
    return tree;
}

// All around the change of places is looked at, and of the rest a part; with TRK_ALL_CUTS set, all of it.
std::vector<std::size_t> cuts_among(const std::vector<unsigned long>& changes) {
    const auto first = std::find(changes.begin(), changes.end(), SYS_renameat2) - changes.begin();
    std::vector<std::size_t> cuts;
    for (std::size_t cut = 1; cut <= changes.size(); ++cut) {
        const auto distance = static_cast<std::ptrdiff_t>(cut) - first;
        if (std::getenv("TRK_ALL_CUTS") != nullptr || (distance > -6 && distance < 8) || cut % 97 == 1)
            cuts.push_back(cut);
    }
    return cuts;
}

class CutOff : public TrkProgram {
protected:
    CutOff() {
        TestSession::write(report, "old");
        TestSession::write(machine.string() + ".drive-c/Windows/old", "old");
    }
    ~CutOff() override { fs::remove_all(start); }

    std::vector<std::string> rehearsal() const {
        return {program,    "rehearse",      "--quiet",  "--machine",     machine.string(),
                "--script", script.string(), "--report", report.string(), TRK_SAMPLE_MEDIUM};
    }

    // Cuts the command off before its changes, and looks at what the next one makes of it.
    void expect_old_or_new(const std::vector<std::string>& words) {
        fs::copy(folder.path, start, fs::copy_options::recursive);
        const auto old_tree = tree_of(folder.path);
        const CutRun whole = run_up_to(words, SIZE_MAX);
        if (whole.changes.empty())
            GTEST_SKIP() << "programs can't be traced here";
        ASSERT_EQ(WEXITSTATUS(whole.status), 0);
        const auto new_tree = tree_of(folder.path);
        ASSERT_NE(new_tree, old_tree);
        std::set<bool> seen;
        const std::vector<std::size_t> cuts = cuts_among(whole.changes);
        std::cout << cuts.size() << " cuts of a run with " << whole.changes.size() << " changes\n";
        for (const std::size_t cut : cuts) {
            const CutRun run = cut_off(words, cut);
            const auto tree = tree_of(folder.path);
            EXPECT_TRUE(tree == old_tree || tree == new_tree)
                << "change " << cut << " of " << whole.changes.size() << ", call " << run.changes.back();
            seen.insert(tree == new_tree);
        }
        EXPECT_EQ(seen.size(), 2u);
    }

    const fs::path report = folder.path / "r", start = folder.path.string() + ".start";

private:
    CutRun cut_off(const std::vector<std::string>& words, std::size_t cut) {
        for (const fs::directory_entry& entry : fs::directory_iterator(folder.path))
            fs::remove_all(entry.path());
        fs::copy(start, folder.path, fs::copy_options::recursive);
        const CutRun run = run_up_to(words, cut);
        EXPECT_TRUE(WIFSIGNALED(run.status));
        const std::string actions = TestSession::read(script);
        TestSession::write(script, "no action\n"); // the next run finds what there is, and changes nothing
        EXPECT_EQ(rehearse("--report " + report.string() + " " + usual), 2);
        TestSession::write(script, actions);
        return run;
    }
};

constexpr char usb_install[] = "press USB\ntick 1011\npress ok\nexpect box installed\n";

} // namespace

TEST_F(CutOff, UsbInstallIsWhollyOldOrNew) {
    TestSession::write(script, usb_install);
    expect_old_or_new(rehearsal());
}

TEST_F(CutOff, RemovalIsWhollyOldOrNew) {
    TestSession::write(script, usb_install);
    ASSERT_EQ(rehearse("--quiet " + usual), 0) << err;
    expect_old_or_new({program, "remove", "--quiet", "--machine", machine.string()});
}

// Each of its runs searches the network for a second.
TEST_F(CutOff, NetworkInstallIsWhollyOldOrNew) {
    if (std::getenv("TRK_ALL_CUTS") == nullptr)
        GTEST_SKIP() << "with TRK_ALL_CUTS alone, as make sweep sets it";
    expect_old_or_new(rehearsal());
}
