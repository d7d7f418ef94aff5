#include "rehearsal/matrix/runner.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <fstream>
#include <mutex>
#include <optional>
#include <sstream>
#include <stdexcept>
#include <thread>

#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

namespace fs = std::filesystem;

namespace rehearsal::matrix {
namespace {

constexpr int cell_milliseconds = 60'000; // far above any rehearsal without a real network

std::atomic<bool> interrupted = false;

// For the time of the runs: the first signal lets the cells that run come to their end.
class SignalsWatched {
public:
    SignalsWatched() {
        interrupted = false;
        struct sigaction action = {};
        action.sa_handler = [](int) { interrupted = true; };
        action.sa_flags = SA_RESTART;
        sigaction(SIGINT, &action, &interrupt_);
        sigaction(SIGTERM, &action, &terminate_);
    }
    ~SignalsWatched() {
        sigaction(SIGINT, &interrupt_, nullptr);
        sigaction(SIGTERM, &terminate_, nullptr);
    }
    SignalsWatched(const SignalsWatched&) = delete;
    SignalsWatched& operator=(const SignalsWatched&) = delete;

private:
    struct sigaction interrupt_ = {}, terminate_ = {};
};

void write_file(const fs::path& file, const std::string& text) {
    std::ofstream stream(file, std::ios::binary);
    if (!(stream << text).flush())
        throw std::runtime_error(file.string() + ": " + std::strerror(errno));
}

std::string read_file(const fs::path& file) {
    std::ifstream stream(file, std::ios::binary);
    std::ostringstream text;
    text << stream.rdbuf();
    return text.str();
}

// Starts a program in a process group of its own, so that a terminal's interrupt reaches this one alone, with
// its output in files of the folder. Its process id.
pid_t start(std::vector<std::string> words, const fs::path& folder) {
    std::vector<char*> arguments;
    for (std::string& word : words)
        arguments.push_back(word.data());
    arguments.push_back(nullptr);
    posix_spawn_file_actions_t files;
    posix_spawn_file_actions_init(&files);
    const std::string output = folder / "output", complaints = folder / "complaints";
    posix_spawn_file_actions_addopen(&files, 0, "/dev/null", O_RDONLY, 0);
    posix_spawn_file_actions_addopen(&files, 1, output.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0666);
    posix_spawn_file_actions_addopen(&files, 2, complaints.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0666);
    posix_spawnattr_t attributes;
    posix_spawnattr_init(&attributes);
    posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETPGROUP);
    pid_t child = 0;
    const int error = posix_spawn(&child, arguments[0], &files, &attributes, arguments.data(), environ);
    posix_spawnattr_destroy(&attributes);
    posix_spawn_file_actions_destroy(&files);
    if (error != 0)
        throw std::runtime_error(words[0] + ": " + std::strerror(error));
    return child;
}

// The child's exit status, or nothing when it took too long or was ended by a signal.
std::optional<int> wait_for(pid_t child) {
    const int descriptor = static_cast<int>(syscall(SYS_pidfd_open, child, 0));
    if (descriptor >= 0) {
        pollfd ended = {descriptor, POLLIN, 0};
        int got = 0;
        do
            got = poll(&ended, 1, cell_milliseconds);
        while (got < 0 && errno == EINTR);
        if (got == 0)
            kill(child, SIGKILL);
        close(descriptor);
    }
    int state = 0;
    while (waitpid(child, &state, 0) < 0 && errno == EINTR) {
    }
    return WIFEXITED(state) ? std::optional<int>(WEXITSTATUS(state)) : std::nullopt;
}

std::string first_line(const std::string& text) {
    std::string line = text.substr(0, text.find_first_of("\r\n"));
    return line.empty() && !text.empty() ? "(an empty line)" : line;
}

std::string on_one_line(std::string text) {
    std::string out;
    for (const char c : text) {
        if (c == '\r')
            continue;
        out.push_back(c == '\n' ? ' ' : c);
    }
    return out;
}

using Json = nlohmann::json;

// What the machine has afterwards that this run can have made.
std::vector<std::string> things_left(const Json& report) {
    std::vector<std::string> out;
    for (const Json& file : report.value("files", Json::array())) {
        const std::string path = file.value("path", "");
        if (file.value("folder", false))
            out.push_back("folder " + path);
    }
    for (const Json& shortcut : report.value("shortcuts", Json::array()))
        out.push_back("shortcut " + shortcut.value("path", ""));
    const Json spooler = report.value("machine", Json::object()).value("spooler", Json::object());
    for (const Json& package : spooler.value("packages", Json::array()))
        out.push_back("package " + package.value("inf_path", ""));
    for (const Json& port : spooler.value("ports", Json::array()))
        if (port.value("monitor", "") == "Standard TCP/IP Port")
            out.push_back("port " + port.value("name", ""));
    for (const Json& queue : spooler.value("queues", Json::array()))
        if (const std::string port = queue.value("port", ""); port.rfind("TRK_", 0) == 0)
            out.push_back("queue " + queue.value("name", "") + " on " + port);
    return out;
}

void read_report(const fs::path& folder, Result& result) {
    const Json report = Json::parse(read_file(folder / "report.json"), nullptr, false);
    if (!report.is_object()) {
        result.verdict = "FAIL: " + first_line(read_file(folder / "complaints"));
        return;
    }
    constexpr unsigned icon_mask = 0xF0;
    result.exit_code = report.value("exit_code", 0);
    result.verdict = report.value("verdict", "");
    result.missing = report.value("missing", std::vector<std::string>());
    if (const Json boxes = report.value("boxes", Json::array()); !boxes.empty()) {
        result.box = on_one_line(boxes.back().value("text", ""));
        result.success_box = (boxes.back().value("flags", 0u) & icon_mask) == 0;
    }
    result.stayed = things_left(report);
    const Json calls = report.value("calls", Json::object());
    for (auto call = calls.begin(); call != calls.end(); ++call)
        result.calls.push_back(call.key());
}

Result run_cell(const Cell& cell, const Package& package, const RunSettings& settings, std::size_t number) {
    const fs::path folder = settings.folder / std::to_string(number);
    fs::create_directories(folder);
    write_file(folder / "machine.json", machine_text(cell, package));
    write_file(folder / "run.actions", script_text(cell));
    const pid_t child =
        start({settings.program, "rehearse", "--quiet", "--jump", "--machine", folder / "machine.json",
               "--script", folder / "run.actions", "--report", folder / "report.json", settings.medium},
              folder);
    Result result;
    result.cell = cell;
    const std::optional<int> status = wait_for(child);
    result.status = status.value_or(3);
    if (status)
        read_report(folder, result);
    else
        result.verdict = "FAIL: the rehearsal was ended, by a signal or after a minute";
    return result;
}

} // namespace

Matrix run_cells(const std::vector<Cell>& cells, const Package& package, const RunSettings& settings) {
    const SignalsWatched watched;
    const auto begin = std::chrono::steady_clock::now();
    std::vector<std::optional<Result>> results(cells.size());
    std::mutex mutex; // over all below
    std::size_t next = 0, done = 0, failed = 0;
    std::string problem;
    const auto take = [&]() -> std::optional<std::size_t> {
        const std::lock_guard lock(mutex);
        const bool late =
            settings.limit.count() != 0 && std::chrono::steady_clock::now() - begin >= settings.limit;
        if (interrupted || late || next == cells.size() || !problem.empty())
            return std::nullopt;
        return next++;
    };
    const auto work = [&] {
        while (const auto place = take()) {
            try {
                Result result = run_cell(cells[*place], package, settings, *place);
                const std::lock_guard lock(mutex);
                ++done;
                failed += result.status != 0 && result.cell.fault.empty() ? 1u : 0u;
                results[*place] = std::move(result);
                if (settings.progress)
                    settings.progress(done, failed);
            } catch (const std::exception& error) {
                const std::lock_guard lock(mutex);
                problem = error.what();
            }
        }
    };
    std::vector<std::thread> workers;
    for (unsigned i = 0; i < settings.jobs; ++i)
        workers.emplace_back(work);
    for (std::thread& worker : workers)
        worker.join();
    if (!problem.empty())
        throw std::runtime_error(problem);
    Matrix matrix;
    matrix.medium = settings.medium.string();
    for (std::optional<Result>& result : results) {
        if (result)
            matrix.results.push_back(std::move(*result));
        else
            ++matrix.not_run;
    }
    return matrix;
}

} // namespace rehearsal::matrix
