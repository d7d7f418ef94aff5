#include "rehearsal/unfinished.h"

#include <csignal>
#include <cstdio>
#include <cstring>
#include <set>
#include <thread>

#include <pthread.h>
#include <unistd.h>

namespace fs = std::filesystem;

namespace rehearsal {
namespace {

std::mutex placing;
std::mutex listing;
std::set<fs::path> unfinished;
bool results_are_placed = false; // under `placing`

sigset_t ending_signals() {
    sigset_t set;
    sigemptyset(&set);
    for (const int number : {SIGINT, SIGTERM, SIGHUP})
        sigaddset(&set, number);
    return set;
}

// The main thread may still be making files. Under another name they are out of its reach, and what it makes
// in the old place meanwhile goes in the second round.
void delete_unfinished() {
    const std::lock_guard lock(listing);
    for (const fs::path& path : unfinished) {
        fs::path aside = path;
        aside += ".gone";
        std::error_code ignored;
        fs::rename(path, aside, ignored);
        delete_tree(aside);
        delete_tree(path);
    }
}

void wait_for_signal() {
    const sigset_t set = ending_signals();
    int number = 0;
    if (sigwait(&set, &number) != 0)
        return;
    const std::lock_guard lock(placing);
    delete_unfinished();
    std::fprintf(stderr, "\ntrk: ended by %s; machine and drive are %s\n", strsignal(number),
                 results_are_placed ? "as the run left them" : "as they were");
    constexpr int signal_status = 128; // as a shell has it
    _exit(signal_status + number);
}

} // namespace

Unfinished::Unfinished(fs::path path) : path_(std::move(path)) {
    const std::lock_guard lock(listing);
    unfinished.insert(path_);
}

Unfinished::~Unfinished() {
    delete_tree(path_);
    const std::lock_guard lock(listing);
    unfinished.erase(path_);
}

void end_cleanly_on_signals() {
    static std::once_flag begun;
    std::call_once(begun, [] {
        const sigset_t set = ending_signals();
        pthread_sigmask(SIG_BLOCK, &set, nullptr);
        std::signal(SIGPIPE, SIG_IGN);
        std::signal(SIGXFSZ, SIG_IGN); // a file that may grow no further, likewise
        std::thread(wait_for_signal).detach();
    });
}

std::unique_lock<std::mutex> hold_signals() {
    return std::unique_lock(placing);
}

void results_stand() {
    results_are_placed = true;
}

void delete_tree(const fs::path& path) {
    std::error_code ignored;
    if (!fs::is_directory(fs::symlink_status(path, ignored))) {
        fs::remove(path, ignored);
        return;
    }
    fs::permissions(path, fs::perms::owner_all, fs::perm_options::add, ignored);
    for (const fs::directory_entry& entry : fs::directory_iterator(path, ignored))
        delete_tree(entry.path());
    fs::remove(path, ignored);
}

} // namespace rehearsal
