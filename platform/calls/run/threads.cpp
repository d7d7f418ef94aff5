#include "calls/run/threads.h"

#include "calls/run/session.h"

#include <windows.h>

#include <process.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <memory>
#include <system_error>

namespace platform {
namespace {

// A stopped run wakes nobody by itself, so waits look up now and then.
constexpr std::chrono::milliseconds look_up_interval{50};

} // namespace

RunThreads& run_threads() {
    return session().area<RunThreads>();
}

bool RunThreads::nobody_can_go_on() const {
    const std::size_t threads = alive_ + (main_left_ ? 0u : 1u);
    return waiting_.size() == threads &&
           std::none_of(waiting_.begin(), waiting_.end(), [](const auto* ready) { return (*ready)(); });
}

void RunThreads::wait(RunLock& lock, const std::function<bool()>& ready) {
    // Leaves the list on every way out of the wait.
    struct Entry {
        explicit Entry(std::vector<const std::function<bool()>*>& list, const std::function<bool()>* mine)
            : list_(list), mine_(mine) {
            list_.push_back(mine_);
        }
        ~Entry() { std::erase(list_, mine_); }
        std::vector<const std::function<bool()>*>& list_;
        const std::function<bool()>* mine_;
    };
    const Entry entry(waiting_, &ready);
    while (!ready()) {
        if (nobody_can_go_on())
            session().gate.stop("every thread of the run waits for another");
        if (session().gate.stopped()) {
            wake();
            throw RunStopped(session().gate.stop_reason());
        }
        changed_.wait_for(lock, look_up_interval);
    }
}

bool RunThreads::wait_for(RunLock& lock, std::uint32_t milliseconds, const std::function<bool()>& ready) {
    if (ready())
        return true;
    if (milliseconds == INFINITE) {
        wait(lock, ready);
        return true;
    }
    lock.unlock();
    session().clock.pass(milliseconds);
    lock.lock();
    return ready();
}

void RunThreads::tell_leaving(unsigned number) const {
    for (const auto& left : leaving_)
        left(number);
}

void RunThreads::run(unsigned number, const std::function<void()>& body, const std::function<void()>& ended) {
    set_current_thread_number(number);
    set_last_error(0);
    try {
        body();
    } catch (const RunStopped&) {
        // The reason stands at the gate; whoever started the run asks for it there.
    }
    const RunLock held = lock();
    tell_leaving(number);
    ended();
    --alive_;
    wake();
}

unsigned RunThreads::start(std::function<void()> body, std::function<void()> ended) {
    const RunLock held = lock();
    const unsigned number = started_ + 1;
    try {
        threads_.emplace_back(
            [this, number, body = std::move(body), ended = std::move(ended)] { run(number, body, ended); });
    } catch (const std::system_error&) {
        return 0;
    }
    ++started_;
    ++alive_;
    return number;
}

void RunThreads::join() {
    RunLock held = lock();
    main_left_ = true;
    tell_leaving(current_thread_number());
    wake();
    while (!threads_.empty()) {
        std::vector<std::thread> joining;
        joining.swap(threads_);
        held.unlock();
        for (std::thread& thread : joining)
            thread.join();
        held.lock();
    }
    main_left_ = false;
}

void Session::join_threads() {
    run_threads().join();
}

unsigned thread_id_of(unsigned thread) {
    return 0x1000 + 4 * thread;
}

std::optional<std::uint32_t> ThreadObject::wait(std::uint32_t milliseconds) {
    RunLock lock = run_threads().lock();
    return run_threads().wait_for(lock, milliseconds, [this] { return ended; }) ? WAIT_OBJECT_0
                                                                                : WAIT_TIMEOUT;
}

} // namespace platform

using namespace platform;

std::uintptr_t _beginthread(void (*start)(void*), unsigned stack_size, void* argument) {
    Call call("_beginthread", std::to_string(stack_size));
    if (call.fails(ERROR_NOT_ENOUGH_MEMORY)) {
        errno = EAGAIN;
        return static_cast<std::uintptr_t>(-1);
    }
    if (run_threads().start([start, argument] { start(argument); }, [] {}) == 0) {
        errno = EAGAIN;
        return static_cast<std::uintptr_t>(-1);
    }
    // The thread closes its handle when it ends, which may be before the caller looks at it; here it always
    // is.
    void* const handle = session().handles.open(std::make_shared<ThreadObject>());
    session().handles.close(handle);
    return reinterpret_cast<std::uintptr_t>(handle);
}

std::uintptr_t _beginthreadex(void* security, unsigned stack_size, unsigned (*start)(void*), void* argument,
                              unsigned flags, unsigned* thread_id) {
    Call call("_beginthreadex", std::to_string(stack_size));
    if (security != nullptr || flags != 0)
        call.refuse("only a thread that runs at once, without security attributes, is modelled");
    if (call.fails(ERROR_NOT_ENOUGH_MEMORY)) {
        errno = EAGAIN;
        return 0;
    }
    const auto thread = std::make_shared<ThreadObject>();
    const auto body = [thread, start, argument] { thread->exit_code = start(argument); };
    const unsigned number = run_threads().start(body, [thread] { thread->ended = true; });
    if (number == 0) {
        errno = EAGAIN;
        return 0;
    }
    if (thread_id != nullptr)
        *thread_id = thread_id_of(number);
    return reinterpret_cast<std::uintptr_t>(session().handles.open(thread));
}

DWORD GetCurrentThreadId() {
    const Call call("GetCurrentThreadId");
    return thread_id_of(current_thread_number());
}
