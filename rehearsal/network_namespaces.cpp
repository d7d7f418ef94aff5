#include "rehearsal/network_namespaces.h"

#include <cerrno>
#include <cstring>
#include <fstream>
#include <stdexcept>

#include <fcntl.h>
#include <ifaddrs.h>
#include <net/if.h>
#include <poll.h>
#include <sched.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

namespace rehearsal {
namespace {

// The layer uses only interfaces whose names begin with "trk" for real traffic.
constexpr char program_link[] = "trk-program";
constexpr char printers_link[] = "trk-printers";
// Root's rights first; a user namespace changes who owns the files that a command makes.
constexpr int ways_in[] = {CLONE_NEWNET, CLONE_NEWUSER | CLONE_NEWNET};

[[noreturn]] void fail(const std::string& what) {
    throw std::runtime_error(what + ": " + std::strerror(errno));
}

// The tool of iproute2, which a user's PATH may lack.
std::string ip_tool() {
    for (const char* path : {"/usr/sbin/ip", "/sbin/ip", "/usr/bin/ip", "/bin/ip"})
        if (access(path, X_OK) == 0)
            return path;
    throw std::runtime_error("a network of its own needs the command ip (package iproute2)");
}

// The exit status of ip with these words.
int run_ip(const std::vector<std::string>& words, bool quiet) {
    std::string tool = ip_tool();
    std::vector<std::string> kept = words;
    std::vector<char*> arguments = {tool.data()};
    for (std::string& word : kept)
        arguments.push_back(word.data());
    arguments.push_back(nullptr);
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    if (quiet)
        posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, "/dev/null", O_WRONLY, 0);
    pid_t child = 0;
    const int error = posix_spawn(&child, tool.c_str(), &actions, nullptr, arguments.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    int status = 0;
    if (error != 0 || waitpid(child, &status, 0) != child)
        return 127;
    return WIFEXITED(status) ? WEXITSTATUS(status) : 127;
}

void ip(const std::vector<std::string>& words) {
    if (run_ip(words, false) == 0)
        return;
    std::string line = "ip";
    for (const std::string& word : words)
        line += " " + word;
    throw std::runtime_error(line + " failed");
}

// Into a new network namespace, and with CLONE_NEWUSER into one of users too, as its root.
bool go_in(int way) {
    const uid_t user = geteuid();
    const gid_t group = getegid();
    if (unshare(way) != 0)
        return false;
    if ((way & CLONE_NEWUSER) == 0)
        return true;
    std::ofstream("/proc/self/setgroups") << "deny";
    std::ofstream users("/proc/self/uid_map");
    std::ofstream groups("/proc/self/gid_map");
    users << "0 " << user << " 1" << std::flush;
    groups << "0 " << group << " 1" << std::flush;
    return users.good() && groups.good();
}

bool leads_in(int way) {
    const std::string tool = ip_tool();
    const pid_t child = fork();
    if (child == 0) {
        const bool made =
            go_in(way) &&
            run_ip({"link", "add", "trk-a", "type", "veth", "peer", "name", "trk-b"}, true) == 0;
        _exit(made ? 0 : 1);
    }
    int status = 1;
    return child > 0 && waitpid(child, &status, 0) == child && WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

// 0: none
int way_in() {
    for (const int way : ways_in)
        if (leads_in(way))
            return way;
    return 0;
}

int this_namespace() {
    const int descriptor = open("/proc/self/ns/net", O_RDONLY | O_CLOEXEC);
    if (descriptor < 0)
        fail("/proc/self/ns/net");
    return descriptor;
}

bool is_running(const std::string& link) {
    ifaddrs* all = nullptr;
    if (getifaddrs(&all) != 0)
        return false;
    bool running = false;
    for (const ifaddrs* one = all; one != nullptr; one = one->ifa_next)
        running = running || (link == one->ifa_name && (one->ifa_flags & IFF_RUNNING) != 0);
    freeifaddrs(all);
    return running;
}

// A link that was just set up drops what is sent until the kernel has seen its other end.
void wait_until_running(const std::string& link) {
    constexpr int step = 5;         // milliseconds
    constexpr int longest = 10'000; // far above what the kernel takes
    for (int waited = 0; !is_running(link); waited += step) {
        if (waited >= longest)
            throw std::runtime_error("the link " + link + " doesn't come up");
        poll(nullptr, 0, step);
    }
}

void enter(int descriptor) {
    if (setns(descriptor, CLONE_NEWNET) != 0)
        fail("a network namespace can't be entered");
}

} // namespace

bool NetworkNamespaces::permitted() {
    return way_in() != 0;
}

NetworkNamespaces::NetworkNamespaces(const std::vector<std::string>& printer_addresses) {
    const int way = way_in();
    if (way == 0 || !go_in(way))
        fail("no network namespace can be made");
    program_ = this_namespace();
    ip({"link", "set", "lo", "up"});
    if (unshare(CLONE_NEWNET) != 0)
        fail("no network namespace can be made");
    printers_ = this_namespace();
    ip({"link", "set", "lo", "up"});
    const std::string there = "/proc/" + std::to_string(getpid()) + "/fd/" + std::to_string(program_);
    ip({"link", "add", printers_link, "type", "veth", "peer", "name", program_link, "netns", there});
    for (const std::string& address : printer_addresses)
        ip({"address", "add", address + "/24", "dev", printers_link});
    ip({"link", "set", printers_link, "up"});
    enter_program();
    ip({"address", "add", std::string(program_in_namespace) + "/24", "dev", program_link});
    ip({"link", "set", program_link, "up"});
    wait_until_running(program_link);
    enter_printers();
    wait_until_running(printers_link);
    enter_program();
}

NetworkNamespaces::~NetworkNamespaces() {
    for (const int descriptor : {program_, printers_})
        if (descriptor >= 0)
            close(descriptor);
}

void NetworkNamespaces::enter_printers() const {
    enter(printers_);
}

void NetworkNamespaces::enter_program() const {
    enter(program_);
}

} // namespace rehearsal
