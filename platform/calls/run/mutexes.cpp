#include "calls/run/kernel_object.h"
#include "calls/run/session.h"
#include "calls/run/threads.h"
#include "machine/text.h"

#include <windows.h>

#include <memory>
#include <optional>
#include <vector>

namespace platform {
namespace {

struct MutexObject final : KernelObject {
    const char* kind() const override { return "mutex"; }
    std::optional<std::uint32_t> wait(std::uint32_t milliseconds) override;
    DWORD take(); // by the calling thread

    std::optional<unsigned> owner; // a thread is known by its number in the run
    unsigned depth = 0;            // how often its owner took it
    bool abandoned = false;
};

struct MutexList {
    std::vector<std::weak_ptr<MutexObject>> mutexes;
    bool watches_threads = false;
};

DWORD MutexObject::take() {
    owner = current_thread_number();
    ++depth;
    const bool was_abandoned = abandoned;
    abandoned = false;
    return was_abandoned ? WAIT_ABANDONED : WAIT_OBJECT_0;
}

std::optional<std::uint32_t> MutexObject::wait(std::uint32_t milliseconds) {
    const unsigned thread = current_thread_number();
    RunLock lock = run_threads().lock();
    const auto is_free = [&] { return !owner || *owner == thread; };
    return run_threads().wait_for(lock, milliseconds, is_free) ? take() : WAIT_TIMEOUT;
}

// Takes all mutexes off a thread that ends; the next owner is told.
void abandon_mutexes(unsigned thread) {
    for (const std::weak_ptr<MutexObject>& entry : session().area<MutexList>().mutexes) {
        const std::shared_ptr<MutexObject> mutex = entry.lock();
        if (!mutex || mutex->owner != thread)
            continue;
        mutex->owner.reset();
        mutex->depth = 0;
        mutex->abandoned = true;
    }
}

// With the run's lock held.
void note_mutex(const std::shared_ptr<MutexObject>& mutex) {
    MutexList& list = session().area<MutexList>();
    if (!list.watches_threads)
        run_threads().when_thread_leaves(abandon_mutexes);
    list.watches_threads = true;
    list.mutexes.push_back(mutex);
}

} // namespace
} // namespace platform

using namespace platform;

HANDLE CreateMutexW(SECURITY_ATTRIBUTES* security, BOOL owned, LPCWSTR name) {
    Call call("CreateMutexW", shown(name));
    if (security != nullptr || name != nullptr)
        call.refuse("only a mutex without name and security attributes is modelled");
    if (call.fails(ERROR_NOT_ENOUGH_MEMORY))
        return nullptr;
    const auto mutex = std::make_shared<MutexObject>();
    const RunLock lock = run_threads().lock();
    if (owned != FALSE)
        mutex->take();
    note_mutex(mutex);
    return session().handles.open(mutex);
}

BOOL ReleaseMutex(HANDLE handle) {
    // The owner's release has no way to fail: a fault would leave a mutex that nobody can take any more,
    // which no platform does.
    const Call call("ReleaseMutex", session().handles.kind_of(handle));
    const auto mutex = session().handles.find<MutexObject>(handle);
    if (!mutex) {
        set_last_error(ERROR_INVALID_HANDLE);
        return FALSE;
    }
    const RunLock lock = run_threads().lock();
    if (mutex->owner != current_thread_number()) {
        set_last_error(ERROR_NOT_OWNER);
        return FALSE;
    }
    if (--mutex->depth == 0) {
        mutex->owner.reset();
        run_threads().wake();
    }
    return TRUE;
}
