#include "rehearsal/network.h"

#include "rehearsal/exit_status.h"
#include "rehearsal/network_namespaces.h"
#include "rehearsal/printer_list.h"
#include "rehearsal/printer_run.h"
#include "rehearsal/shown_text.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <fstream>
#include <iostream>
#include <optional>
#include <sstream>
#include <stdexcept>

#include <fcntl.h>
#include <poll.h>
#include <sys/prctl.h>
#include <sys/signalfd.h>
#include <sys/wait.h>
#include <unistd.h>

namespace rehearsal {
namespace {

constexpr int first_printer = 11;            // the last part of its address
constexpr int ready_timeout = 20'000;        // milliseconds; far above what the set-up takes
constexpr unsigned a_day = 24 * 60 * 60;     // seconds
constexpr std::size_t most_told = 4'000'000; // bytes that are kept of what a printer tells

void say(const std::string& line) {
    std::cerr << "network: " + shown_text(line) + "\n" << std::flush;
}

// What ends the command, and what tells that it has ended, as a descriptor to wait on.
class Signals {
public:
    Signals() {
        sigemptyset(&waited_);
        for (const int signal : {SIGCHLD, SIGINT, SIGTERM, SIGHUP})
            sigaddset(&waited_, signal);
        sigprocmask(SIG_BLOCK, &waited_, &before_);
        descriptor_ = signalfd(-1, &waited_, SFD_CLOEXEC | SFD_NONBLOCK);
    }
    ~Signals() { close(descriptor_); }
    Signals(const Signals&) = delete;
    Signals& operator=(const Signals&) = delete;

    int descriptor() const { return descriptor_; }
    void give_back() const { sigprocmask(SIG_SETMASK, &before_, nullptr); } // in a new process
    // One that has come; none when there is no more.
    std::optional<signalfd_siginfo> take() const {
        signalfd_siginfo info{};
        if (read(descriptor_, &info, sizeof info) != sizeof info)
            return std::nullopt;
        return info;
    }

private:
    sigset_t waited_{};
    sigset_t before_{};
    int descriptor_ = -1;
};

// A printer in a process of its own.
struct PrinterProcess {
    pid_t process = -1;
    int lines = -1; // what it tells
    std::string told;

    // Takes what there is; false when that was all.
    bool listen() {
        std::array<char, 4096> buffer;
        const ssize_t got = read(lines, buffer.data(), buffer.size());
        if (got <= 0)
            return got < 0 && errno == EINTR;
        if (told.size() < most_told)
            told.append(buffer.data(), static_cast<std::size_t>(got));
        return true;
    }
};

class Printers {
public:
    explicit Printers(const Signals& signals) : signals_(signals) {}
    // All printers end, and what they have told is passed on.
    ~Printers();
    Printers(const Printers&) = delete;
    Printers& operator=(const Printers&) = delete;

    // Gives back when the printer is ready; std::runtime_error when it doesn't start.
    void start(const PrinterOptions& options);
    // Until a signal comes.
    void listen();

private:
    const Signals& signals_;
    std::vector<PrinterProcess> all_;
};

void Printers::start(const PrinterOptions& options) {
    int ends[2];
    if (pipe2(ends, O_CLOEXEC) != 0)
        throw std::runtime_error(std::string("no pipe can be made: ") + std::strerror(errno));
    const pid_t parent = getpid();
    const pid_t process = fork();
    if (process == 0) {
        prctl(PR_SET_PDEATHSIG, SIGKILL);
        setpgid(0, 0); // what a terminal's keys send goes to the command alone
        signals_.give_back();
        dup2(ends[1], STDOUT_FILENO);
        _exit(getppid() == parent ? run_printer(options) : 0);
    }
    close(ends[1]);
    PrinterProcess& printer = all_.emplace_back(PrinterProcess{process, ends[0], {}});
    pollfd waiting{printer.lines, POLLIN, 0};
    while (printer.told.find('\n') == std::string::npos)
        if (poll(&waiting, 1, ready_timeout) <= 0 || !printer.listen())
            throw std::runtime_error("the printer at " + options.address + " didn't start");
    say("printer " + printer.told.substr(0, printer.told.find('\n')));
}

void Printers::listen() {
    std::vector<pollfd> waiting = {{signals_.descriptor(), POLLIN, 0}};
    for (const PrinterProcess& printer : all_)
        waiting.push_back({printer.lines, POLLIN, 0});
    while (poll(waiting.data(), waiting.size(), -1) < 0 || waiting[0].revents == 0)
        for (std::size_t index = 1; index < waiting.size(); ++index)
            if (waiting[index].revents != 0 && !all_[index - 1].listen())
                waiting[index].fd = -1; // it has ended
}

Printers::~Printers() {
    for (const PrinterProcess& printer : all_)
        kill(printer.process, SIGTERM);
    for (std::size_t number = 1; PrinterProcess & printer : all_) {
        while (printer.listen()) {
        }
        close(printer.lines);
        waitpid(printer.process, nullptr, 0);
        std::istringstream lines(printer.told);
        std::string line;
        for (std::getline(lines, line); std::getline(lines, line);) // behind "ready", which is told already
            say("printer " + std::to_string(number) + " " + line);
        ++number;
    }
}

pid_t start_command(const std::vector<std::string>& words, const Signals& signals) {
    std::vector<std::string> kept = words;
    std::vector<char*> arguments;
    for (std::string& word : kept)
        arguments.push_back(word.data());
    arguments.push_back(nullptr);
    const pid_t process = fork();
    if (process < 0)
        throw std::runtime_error(std::string("the command can't be started: ") + std::strerror(errno));
    if (process == 0) {
        prctl(PR_SET_PDEATHSIG, SIGTERM);
        signals.give_back();
        execvp(arguments[0], arguments.data());
        const bool missing = errno == ENOENT;
        say(kept[0] + ": " + std::strerror(errno));
        _exit(missing ? 127 : 126);
    }
    return process;
}

int exit_status(int status) {
    return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}

// Waits for the command's end and passes signals on to it. What a terminal's key sent it has got itself.
int wait_for(pid_t command, Printers& printers, const Signals& signals) {
    for (;;) {
        printers.listen();
        while (const std::optional<signalfd_siginfo> signal = signals.take())
            if (signal->ssi_signo != SIGCHLD && signal->ssi_code != SI_KERNEL)
                kill(command, static_cast<int>(signal->ssi_signo));
        int status = 0;
        if (waitpid(command, &status, WNOHANG) == command)
            return exit_status(status);
    }
}

// What the command began and left came to this process as its child, for the kernel was asked for it.
void end_left_behind() {
    for (;;) {
        std::ifstream list("/proc/self/task/" + std::to_string(getpid()) + "/children");
        bool any = false;
        for (pid_t process = 0; list >> process; any = true)
            kill(process, SIGKILL);
        if (!any)
            return;
        while (waitpid(-1, nullptr, 0) > 0) {
        }
    }
}

std::vector<PrinterOptions> with_addresses(std::vector<PrinterOptions> printers, const std::string& network) {
    for (int number = first_printer; PrinterOptions & printer : printers) {
        printer.address = network + std::to_string(number++);
        printer.seconds = a_day;
    }
    return printers;
}

int run_among(const std::vector<PrinterOptions>& list, const NetworkOptions& options,
              const NetworkNamespaces* namespaces) {
    const Signals signals;
    int status = ended_well;
    {
        Printers printers(signals);
        if (namespaces != nullptr)
            namespaces->enter_printers();
        for (const PrinterOptions& printer : list)
            printers.start(printer);
        if (namespaces != nullptr)
            namespaces->enter_program();
        setenv("TRK_NETWORK", namespaces != nullptr ? "namespaces" : "loopback", 1);
        setenv("TRK_PROGRAM_ADDRESS", namespaces != nullptr ? program_in_namespace : "127.0.0.1", 1);
        prctl(PR_SET_CHILD_SUBREAPER, 1);
        status = wait_for(start_command(options.command, signals), printers, signals);
    }
    end_left_behind();
    return status;
}

int run_checked(const NetworkOptions& options) {
    const std::vector<PrinterOptions> list = read_printer_list(options.printers);
    if (!NetworkNamespaces::permitted()) {
        say("network namespaces aren't permitted here, so the printers share loopback with the program:");
        say("it will find that another process uses its discovery port");
        return run_among(with_addresses(list, "127.0.0."), options, nullptr);
    }
    const std::vector<PrinterOptions> printers = with_addresses(list, "10.77.0.");
    std::vector<std::string> addresses;
    for (const PrinterOptions& printer : printers)
        addresses.push_back(printer.address);
    const NetworkNamespaces namespaces(addresses);
    return run_among(printers, options, &namespaces);
}

} // namespace

int run_network(const NetworkOptions& options) {
    try {
        return run_checked(options);
    } catch (const std::exception& error) {
        std::cerr << "trk: " << shown_text(error.what()) << "\n";
        return wrong_usage;
    }
}

} // namespace rehearsal
