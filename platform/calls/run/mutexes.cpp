#include "calls/run/mutexes.h"

#include "calls/run/kernel_object.h"
#include "calls/run/session.h"
#include "calls/run/threads.h"
#include "calls/system/processes.h"
#include "machine/text.h"

#include <windows.h>

#include <algorithm>
#include <memory>
#include <optional>
#include <vector>

namespace platform {
namespace {

struct MutexObject final : KernelObject {
    const char* kind() const override { return "mutex"; }

    bool is_free_for(unsigned thread) const { return !owner || *owner == thread; }

    std::optional<unsigned> owner;
    unsigned depth = 0; // how often its owner took it
    bool abandoned = false;
};

struct MutexList {
    std::vector<std::weak_ptr<MutexObject>> mutexes;
};

std::string kind_of(HANDLE handle) {
    const auto object = session().handles.peek(handle);
    return object ? object->kind() : "no object";
}

DWORD take(MutexObject& mutex) {
    mutex.owner = current_thread_number();
    ++mutex.depth;
    const bool abandoned = mutex.abandoned;
    mutex.abandoned = false;
    return abandoned ? WAIT_ABANDONED : WAIT_OBJECT_0;
}

// Only a wait without end really waits; a limited one lets its time pass at once and looks again.
bool wait_until(RunLock& lock, DWORD milliseconds, const std::function<bool()>& ready) {
    if (ready())
        return true;
    if (milliseconds == INFINITE) {
        run_threads().wait(lock, ready);
        return true;
    }
    lock.unlock();
    session().clock.pass(milliseconds);
    lock.lock();
    return ready();
}

DWORD wait_for_mutex(MutexObject& mutex, DWORD milliseconds) {
    const unsigned thread = current_thread_number();
    RunLock lock = run_threads().lock();
    if (!wait_until(lock, milliseconds, [&] { return mutex.is_free_for(thread); }))
        return WAIT_TIMEOUT;
    return take(mutex);
}

DWORD wait_for_thread(const ThreadObject& thread, DWORD milliseconds) {
    RunLock lock = run_threads().lock();
    return wait_until(lock, milliseconds, [&] { return thread.ended; }) ? WAIT_OBJECT_0 : WAIT_TIMEOUT;
}

} // namespace

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

unsigned thread_id_of(unsigned thread) {
    return 0x1000 + 4 * thread;
}

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
        take(*mutex);
    session().area<MutexList>().mutexes.push_back(mutex);
    return session().handles.open(mutex);
}

BOOL ReleaseMutex(HANDLE handle) {
    // The owner's release has no way to fail: a fault would leave a mutex that nobody can take any more,
    // which no platform does.
    const Call call("ReleaseMutex", kind_of(handle));
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

DWORD WaitForSingleObject(HANDLE handle, DWORD milliseconds) {
    Call call("WaitForSingleObject", kind_of(handle));
    if (call.fails(ERROR_INVALID_HANDLE))
        return WAIT_FAILED;
    const auto object = session().handles.find<Object>(handle);
    if (!object) {
        set_last_error(ERROR_INVALID_HANDLE);
        return WAIT_FAILED;
    }
    if (const auto mutex = std::dynamic_pointer_cast<MutexObject>(object))
        return wait_for_mutex(*mutex, milliseconds);
    if (const auto thread = std::dynamic_pointer_cast<ThreadObject>(object))
        return wait_for_thread(*thread, milliseconds);
    if (const auto process = std::dynamic_pointer_cast<ProcessObject>(object))
        return wait_for_process(*process, milliseconds);
    call.refuse("waits are modelled for mutexes, threads and processes only");
}
