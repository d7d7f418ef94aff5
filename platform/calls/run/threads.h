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

    // The same for a wait of the program's: one without end really waits; a limited one lets its time pass at
    // once and looks again. False when the time is over and nothing is ready.
    bool wait_for(RunLock& lock, std::uint32_t milliseconds, const std::function<bool()>& ready);

    // Has `left` called, with the lock held, with the number of each thread that ends from now on.
    void when_thread_leaves(std::function<void(unsigned)> left) { leaving_.push_back(std::move(left)); }

    // Starts a thread of the run: its number, or 0 when the system refuses. `body` may throw RunStopped.
    // `ended` is called with the lock held when it has ended.
    unsigned start(std::function<void()> body, std::function<void()> ended);

    // Called by the main thread: marks it as gone, waits for all the others, and forgets them.
    void join();

private:
    void run(unsigned number, const std::function<void()>& body, const std::function<void()>& ended);
    bool nobody_can_go_on() const;
    void tell_leaving(unsigned number) const;

    std::mutex mutex_;
    std::condition_variable changed_;
    std::vector<std::thread> threads_;
    std::vector<const std::function<bool()>*> waiting_;
    std::vector<std::function<void(unsigned)>> leaving_;
    unsigned started_ = 0;
    unsigned alive_ = 0;
    bool main_left_ = false;
};

RunThreads& run_threads();

// The identifier that the program sees for a thread of that number.
unsigned thread_id_of(unsigned thread);

struct ThreadObject final : KernelObject {
    const char* kind() const override { return "thread"; }
    std::optional<std::uint32_t> wait(std::uint32_t milliseconds) override;
    bool ended = false;
    std::uint32_t exit_code = 0;
};

} // namespace platform
