#include "sweep/processes.h"

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstring>
#include <limits>
#include <map>
#include <stdexcept>
#include <vector>

#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

namespace sweep {
namespace {

using Clock = std::chrono::steady_clock;

constexpr int complained = 97; // the exit status of a process that has nowhere to complain
constexpr off_t shown_bytes = 2000;

struct Running {
    std::size_t begin = 0; // the runs from here
    std::size_t end = 0;   // to the one before this
    int complaints = -1;   // files in memory
    int printed = -1;
    Clock::time_point until;
    bool overdue = false;
};

int memory_file(const char* name) {
    const int file = memfd_create(name, 0);
    if (file < 0)
        throw std::runtime_error(std::string("a file in memory can't be made: ") + std::strerror(errno));
    return file;
}

// What the file holds, at most its last `limit` bytes; it is closed.
std::string take_file(int file, off_t limit) {
    const off_t size = lseek(file, 0, SEEK_END);
    std::string bytes(static_cast<std::size_t>(std::min(size, limit)), '\0');
    const ssize_t taken = pread(file, bytes.data(), bytes.size(), std::max<off_t>(0, size - limit));
    bytes.resize(taken < 0 ? 0 : static_cast<std::size_t>(taken));
    close(file);
    return bytes;
}

// A complaint goes into the file as its length and its bytes.
void put_complaint(int file, const std::string& complaint) {
    const std::uint32_t length = static_cast<std::uint32_t>(complaint.size());
    std::string record(sizeof length, '\0');
    std::memcpy(record.data(), &length, sizeof length);
    record += complaint;
    if (write(file, record.data(), record.size()) != static_cast<ssize_t>(record.size()))
        _exit(complained);
}

std::vector<std::string> parse_complaints(const std::string& bytes) {
    std::vector<std::string> complaints;
    std::uint32_t length = 0;
    for (std::size_t place = 0; place + sizeof length <= bytes.size(); place += length) {
        std::memcpy(&length, bytes.data() + place, sizeof length);
        place += sizeof length;
        complaints.push_back(bytes.substr(place, length));
    }
    return complaints;
}

std::string checked_run(const std::function<std::string(std::size_t)>& body, std::size_t index) {
    try {
        return body(index);
    } catch (const std::exception& error) {
        return error.what();
    }
}

[[noreturn]] void run_child(const Running& running, const std::function<std::string(std::size_t)>& body) {
    dup2(running.printed, STDOUT_FILENO);
    dup2(running.printed, STDERR_FILENO);
    for (std::size_t index = running.begin; index < running.end; ++index)
        put_complaint(running.complaints, checked_run(body, index));
    // Without the exit handlers: what they look at belongs to the process that started this one.
    _exit(0);
}

class Processes {
public:
    Processes(const ProcessSettings& settings, const std::function<std::string(std::size_t)>& body,
              const std::function<void(std::size_t, const std::string&)>& ended)
        : settings_(settings), body_(body), ended_(ended) {}

    bool full() const { return running_.size() >= settings_.jobs; }
    bool idle() const { return running_.empty(); }

    void start(std::size_t begin, std::size_t end) {
        Running running{begin, end, memory_file("complaints"), memory_file("printed"),
                        Clock::now() + std::chrono::seconds(settings_.seconds)};
        std::fflush(nullptr);
        const pid_t child = fork();
        if (child < 0)
            throw std::runtime_error(std::string("no process can be started: ") + std::strerror(errno));
        if (child == 0)
            run_child(running, body_);
        running_[child] = running;
    }

    // Waits until one has ended.
    void wait() {
        int status = 0;
        pid_t child = 0;
        while ((child = waitpid(-1, &status, WNOHANG)) == 0) {
            end_overdue();
            wait_for_child();
        }
        const auto found = running_.find(child);
        if (found == running_.end())
            return;
        const Running running = found->second;
        running_.erase(found);
        tell(running, status);
    }

private:
    // Until a child has ended, or for a look at the clock.
    static void wait_for_child() {
        sigset_t children;
        sigemptyset(&children);
        sigaddset(&children, SIGCHLD);
        const timespec second{1, 0};
        sigtimedwait(&children, nullptr, &second);
    }

    void end_overdue() {
        for (auto& [child, running] : running_)
            if (!running.overdue && Clock::now() > running.until) {
                running.overdue = true;
                kill(child, SIGKILL);
            }
    }

    void tell(const Running& running, int status) {
        const std::vector<std::string> complaints =
            parse_complaints(take_file(running.complaints, std::numeric_limits<off_t>::max()));
        const std::string printed = take_file(running.printed, shown_bytes);
        std::size_t index = running.begin;
        for (const std::string& complaint : complaints)
            ended_(index++, complaint);
        if (index == running.end)
            return;
        ended_(index, how_it_broke(running, status) + "\n" + printed);
        if (index + 1 != running.end)
            start(index + 1, running.end);
    }

    std::string how_it_broke(const Running& running, int status) const {
        if (running.overdue)
            return "hang: it didn't end within " + std::to_string(settings_.seconds) + " s";
        return WIFSIGNALED(status) ? "crash: signal " + std::to_string(WTERMSIG(status))
                                   : "crash: status " + std::to_string(WEXITSTATUS(status));
    }

    const ProcessSettings& settings_;
    const std::function<std::string(std::size_t)>& body_;
    const std::function<void(std::size_t, const std::string&)>& ended_;
    std::map<pid_t, Running> running_;
};

// While it lives a child's end waits for who asks for it.
class HeldChildren {
public:
    HeldChildren() {
        sigset_t children;
        sigemptyset(&children);
        sigaddset(&children, SIGCHLD);
        sigprocmask(SIG_BLOCK, &children, &before_);
    }
    ~HeldChildren() { sigprocmask(SIG_SETMASK, &before_, nullptr); }
    HeldChildren(const HeldChildren&) = delete;
    HeldChildren& operator=(const HeldChildren&) = delete;

private:
    sigset_t before_;
};

} // namespace

void run_side_by_side(std::size_t count, const ProcessSettings& settings,
                      const std::function<std::string(std::size_t)>& body,
                      const std::function<void(std::size_t, const std::string&)>& ended) {
    const HeldChildren held;
    Processes processes(settings, body, ended);
    std::size_t next = 0;
    while (next < count || !processes.idle()) {
        if (next == count || processes.full()) {
            processes.wait();
            continue;
        }
        const std::size_t end = std::min(count, next + settings.batch);
        processes.start(next, end);
        next = end;
    }
}

} // namespace sweep
