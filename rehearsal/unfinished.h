// What lies about while a run isn't over, and what a signal does to it.
#pragma once

#include <filesystem>
#include <mutex>

namespace rehearsal {

// A file or folder that goes when this does, or when a signal ends the program before.
class Unfinished {
public:
    explicit Unfinished(std::filesystem::path path);
    ~Unfinished();
    Unfinished(const Unfinished&) = delete;
    Unfinished& operator=(const Unfinished&) = delete;

    const std::filesystem::path& path() const { return path_; }

private:
    const std::filesystem::path path_;
};

// From now on SIGINT, SIGTERM and SIGHUP end the program with what is unfinished taken away, and a closed
// pipe is an error of the writing. To be called before any other thread is begun.
void end_cleanly_on_signals();

// Held while results are put in their places, so that a signal comes before all of them or behind.
std::unique_lock<std::mutex> hold_signals();

// From now on a signal comes behind the run: its results are in their places.
void results_stand();

// Deletes a tree, folders included that may not be written to. Nothing is thrown; what can't go stays.
void delete_tree(const std::filesystem::path& path);

} // namespace rehearsal
