#include "rehearsal/matrix/runner.h"

#include "rehearsal/exit_status.h"
#include "rehearsal/temporary_folder.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <deque>
#include <fstream>
#include <stdexcept>
#include <utility>

#include <fcntl.h>
#include <poll.h>
#include <sys/prctl.h>
#include <sys/signalfd.h>
#include <sys/wait.h>
#include <unistd.h>

namespace fs = std::filesystem;

namespace rehearsal::matrix {
namespace {

using Clock = std::chrono::steady_clock;

[[noreturn]] void fail(const char* what) {
    throw std::runtime_error(std::string(what) + ": " + std::strerror(errno));
}

// For its time the ending signals are read from a descriptor and do nothing else.
class SignalWatch {
public:
    SignalWatch() {
        sigset_t set;
        sigemptyset(&set);
        for (const int number : {SIGINT, SIGTERM, SIGHUP})
            sigaddset(&set, number);
        sigprocmask(SIG_BLOCK, &set, &before_);
        descriptor_ = signalfd(-1, &set, SFD_CLOEXEC | SFD_NONBLOCK);
    }
    ~SignalWatch() {
        close(descriptor_);
        sigprocmask(SIG_SETMASK, &before_, nullptr);
    }
    SignalWatch(const SignalWatch&) = delete;
    SignalWatch& operator=(const SignalWatch&) = delete;

    int descriptor() const { return descriptor_; }
    const sigset_t& before() const { return before_; }
    int take() const { // the number of one that came, or 0
        signalfd_siginfo came = {};
        return read(descriptor_, &came, sizeof came) == sizeof came ? static_cast<int>(came.ssi_signo) : 0;
    }

private:
    sigset_t before_ = {};
    int descriptor_ = -1;
};

struct Child {
    Cell cell;
    pid_t process = 0;
    int pipe = -1;
    fs::path folder;
    Clock::time_point deadline;
    std::string text; // what it has written so far
    bool overdue = false;
};

// The first line that a broken process left on standard error, a sanitizer's or the library's.
std::string complaint_of(const Child& child) {
    std::ifstream stream(child.folder / "complaints", std::ios::binary);
    for (std::string line; std::getline(stream, line);)
        if (line.find_first_not_of("= \r") != line.npos)
            return ": " + line.substr(line.find_first_not_of("= "));
    return "";
}

// What a child that broke off is counted as.
Result broken_result(const Child& child, int state) {
    Result result;
    result.cell = child.cell;
    result.status = layer_refused;
    result.verdict = "FAIL: the rehearsal ";
    if (child.overdue)
        result.verdict += "took too long and was ended";
    else if (WIFSIGNALED(state))
        result.verdict += "was ended by signal " + std::to_string(WTERMSIG(state)) + complaint_of(child);
    else
        result.verdict += "broke off" + complaint_of(child);
    return result;
}

void redirect(int descriptor, const char* file, int flags) {
    const int opened = open(file, flags | O_CLOEXEC, 0666);
    if (opened >= 0)
        dup2(opened, descriptor);
}

std::string run_as_text(const Child& child, const MediumDriver& driver, const fs::path& medium) {
    const fs::path drive_c = child.folder / "c";
    fs::create_directory(drive_c);
    const CellEnd end = run_cell(child.cell, driver, medium, drive_c);
    delete_tree(drive_c);
    return result_text(end.result) + "\n" + nlohmann::json(end.calls).dump();
}

// The child's whole life. What it prints is lost, and what it complains about goes to a file.
[[noreturn]] void live(const Child& child, int pipe, const MediumDriver& driver, const fs::path& medium) {
    redirect(STDIN_FILENO, "/dev/null", O_RDONLY);
    redirect(STDOUT_FILENO, "/dev/null", O_WRONLY);
    redirect(STDERR_FILENO, (child.folder / "complaints").c_str(), O_WRONLY | O_CREAT | O_TRUNC);
    try {
        const std::string text = run_as_text(child, driver, medium);
        for (std::size_t written = 0; written < text.size();) {
            const ssize_t count = write(pipe, text.data() + written, text.size() - written);
            if (count < 0 && errno != EINTR)
                break;
            written += count > 0 ? static_cast<std::size_t>(count) : 0;
        }
    } catch (const std::exception& error) {
        dprintf(STDERR_FILENO, "%s\n", error.what());
    }
    _exit(0);
}

class Runner {
public:
    Runner(const std::vector<Cell>& cells, const MediumDriver& driver, const RunSettings& settings)
        : driver_(driver), settings_(settings), waiting_(cells.begin(), cells.end()) {
        without_fault_left_ = static_cast<std::size_t>(
            std::count_if(cells.begin(), cells.end(), [](const Cell& cell) { return cell.fault.empty(); }));
    }
    ~Runner() { end_children(); }
    Runner(const Runner&) = delete;
    Runner& operator=(const Runner&) = delete;

    RunEnd run();

private:
    bool may_begin();
    void begin(Cell cell);
    void wait();
    void read_from(Child& child);
    void finish(Child child);
    void take_result(Result result, const std::vector<std::string>& calls);
    void end_children();
    void end_overdue();
    int poll_milliseconds() const;

    const MediumDriver& driver_;
    const RunSettings& settings_;
    const SignalWatch signals_;
    const TemporaryFolder folder_{"trk-matrix"};
    const Clock::time_point begun_ = Clock::now();
    std::deque<Cell> waiting_;
    std::vector<Child> children_;
    std::size_t without_fault_left_ = 0;
    std::size_t failed_ = 0;
    std::size_t number_ = 0; // of the next folder
    RunEnd end_;
};

bool Runner::may_begin() {
    if (waiting_.empty() || end_.signal != 0 || children_.size() >= settings_.jobs)
        return false;
    end_.late = settings_.limit && Clock::now() - begun_ >= *settings_.limit;
    return !end_.late;
}

void Runner::begin(Cell cell) {
    Child child;
    child.cell = std::move(cell);
    child.folder = folder_.path() / std::to_string(number_++);
    fs::create_directory(child.folder);
    child.deadline = Clock::now() + settings_.longest;
    int ends[2];
    if (pipe2(ends, O_CLOEXEC) != 0)
        fail("pipe");
    const pid_t parent = getpid();
    child.process = fork();
    if (child.process == 0) {
        prctl(PR_SET_PDEATHSIG, SIGKILL); // with the one thread that began it
        if (getppid() != parent)
            _exit(0);
        setpgid(0, 0); // a terminal's interrupt goes to the parent alone
        sigprocmask(SIG_SETMASK, &signals_.before(), nullptr);
        live(child, ends[1], driver_, settings_.medium);
    }
    close(ends[1]);
    child.pipe = ends[0];
    if (child.process < 0) {
        close(child.pipe);
        fail("fork");
    }
    children_.push_back(std::move(child));
}

int Runner::poll_milliseconds() const {
    Clock::time_point first = Clock::time_point::max();
    for (const Child& child : children_)
        first = child.overdue ? first : std::min(first, child.deadline);
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(first - Clock::now()).count();
    return static_cast<int>(std::clamp<std::int64_t>(left, 0, 1'000'000));
}

// For news of a child or a signal.
void Runner::wait() {
    std::vector<pollfd> watched = {{signals_.descriptor(), POLLIN, 0}};
    for (const Child& child : children_)
        watched.push_back({child.pipe, POLLIN, 0});
    if (poll(watched.data(), watched.size(), poll_milliseconds()) < 0 && errno != EINTR)
        fail("poll");
    if (const int number = signals_.take(); number != 0) {
        end_.signal = number;
        return end_children();
    }
    end_overdue();
    for (std::size_t i = children_.size(); i-- > 0;)
        if (watched[i + 1].revents != 0)
            read_from(children_[i]);
}

void Runner::end_overdue() {
    for (Child& child : children_) {
        if (child.overdue || Clock::now() < child.deadline)
            continue;
        child.overdue = true;
        kill(child.process, SIGKILL);
    }
}

void Runner::read_from(Child& child) {
    char bytes[16384];
    const ssize_t count = ::read(child.pipe, bytes, sizeof bytes);
    if (count > 0) {
        child.text.append(bytes, static_cast<std::size_t>(count));
    } else if (count == 0 || errno != EINTR) {
        Child ended = std::move(child);
        std::swap(child, children_.back());
        children_.pop_back();
        finish(std::move(ended));
    }
}

int reaped(const Child& child) {
    int state = 0;
    while (waitpid(child.process, &state, 0) < 0 && errno == EINTR) {
    }
    close(child.pipe);
    return state;
}

void Runner::finish(Child child) {
    const int state = reaped(child);
    const std::size_t line = child.text.find('\n');
    if (line == child.text.npos || child.overdue)
        take_result(broken_result(child, state), {});
    else
        take_result(read_result(child.text.substr(0, line)),
                    nlohmann::json::parse(child.text.substr(line + 1)).get<std::vector<std::string>>());
    delete_tree(child.folder);
}

void Runner::take_result(Result result, const std::vector<std::string>& calls) {
    if (result.cell.fault.empty()) {
        --without_fault_left_;
        failed_ += result.status != 0 ? 1u : 0u;
        if (result.status == 0 && settings_.faults_of)
            for (Cell& cell : settings_.faults_of(result.cell, calls))
                waiting_.push_back(std::move(cell));
    }
    end_.results.push_back(std::move(result));
    if (settings_.counted)
        settings_.counted(
            {end_.results.size(), failed_, waiting_.size() + children_.size(), without_fault_left_});
}

void Runner::end_children() {
    for (const Child& child : children_)
        kill(child.process, SIGKILL);
    for (const Child& child : children_) {
        reaped(child);
        waiting_.push_back(child.cell);
    }
    children_.clear();
}

RunEnd Runner::run() {
    do {
        while (may_begin()) {
            Cell next = std::move(waiting_.front());
            waiting_.pop_front();
            begin(std::move(next));
        }
        if (!children_.empty())
            wait();
    } while (!children_.empty() || (!waiting_.empty() && !end_.late && end_.signal == 0));
    end_.not_run = waiting_.size();
    end_.more = without_fault_left_ != 0 && settings_.faults_of;
    return std::move(end_);
}

} // namespace

RunEnd run_cells(const std::vector<Cell>& cells, const MediumDriver& driver, const RunSettings& settings) {
    return Runner(cells, driver, settings).run();
}

} // namespace rehearsal::matrix
