// The threads of a run and their one lock: windows, messages and mutexes are what the threads share, and all
// of it stands under this lock. Window procedures and the user are called without it.
#pragma once

#include "calls/run/kernel_object.h"

#include <condition_variable>
#include <cstdint>
#include <functional>
#include <mutex>
#include <thread>
#include <vector>

namespace platform {

using RunLock = std::unique_lock<std::mutex>;

class RunThreads {
public:
    // Takes the lock that all other members, and the state of the areas above, need.
    [[nodiscard]] RunLock lock() { return RunLock(mutex_); }

    bool others_live() const { return alive_ > 0; }
    // The main thread's part of the run is over: nobody serves messages any more.
    bool main_left() const { return main_left_; }

    // To be called after every change that another thread may wait for.
    void wake() { changed_.notify_all(); }

    // Waits until ready() holds, which is asked with the lock held. Throws RunStopped when the run was
    // stopped, and stops it when every thread of it waits and none can go on.
    void wait(RunLock& lock, const std::function<bool()>& ready);

    // Starts a thread of the run: its number, or 0 when the system refuses. `body` may throw RunStopped.
    // `ended` is called with the lock held when it has ended.
    unsigned start(std::function<void()> body, std::function<void()> ended);

    // Called by the main thread: marks it as gone, waits for all the others, and forgets them.
    void join();

private:
    void run(unsigned number, const std::function<void()>& body, const std::function<void()>& ended);
    bool nobody_can_go_on() const;

    std::mutex mutex_;
    std::condition_variable changed_;
    std::vector<std::thread> threads_;
    std::vector<const std::function<bool()>*> waiting_;
    unsigned started_ = 0;
    unsigned alive_ = 0;
    bool main_left_ = false;
};

RunThreads& run_threads();

struct ThreadObject final : KernelObject {
    const char* kind() const override { return "thread"; }
    bool ended = false;
    std::uint32_t exit_code = 0;
};

} // namespace platform
