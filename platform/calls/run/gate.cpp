#include "calls/run/gate.h"

#include "calls/run/session.h"

#include <sys/eventfd.h>
#include <unistd.h>

namespace platform {

Gate::~Gate() {
    if (stop_event_ >= 0)
        close(stop_event_);
}

JournalEntry Gate::shown(const Entry& entry) {
    return {std::string(entry.call),     entry.nth,      entry.thread,
            std::string(entry.argument), entry.can_fail, entry.failed};
}

// Successive calls are often about the same thing.
std::string_view Gate::kept(std::string_view argument) {
    if (argument.empty() || (!journal_.empty() && journal_.back().argument == argument))
        return argument.empty() ? std::string_view() : journal_.back().argument;
    char* const place = static_cast<char*>(arguments_.allocate(argument.size(), 1));
    argument.copy(place, argument.size());
    return {place, argument.size()};
}

std::size_t Gate::enter(const char* call, std::string_view argument) {
    JournalEntry entry;
    std::size_t place = 0;
    {
        const std::lock_guard lock(mutex_);
        if (stopped_)
            throw RunStopped(stop_reason_);
        if (journal_.size() >= longest_run) {
            stop_locked("the run doesn't end: too many calls, the last of " + std::string(call));
            throw RunStopped(stop_reason_);
        }
        const std::string_view name = call;
        place = journal_.size();
        journal_.push_back({name, kept(argument), ++counts_[name], current_thread_number(), false, false});
        if (!on_call)
            return place;
        entry = shown(journal_.back());
    }
    // Outside the lock: the hook may wait for another thread, whose calls move the run on.
    on_call(entry);
    return place;
}

bool Gate::fails(std::size_t place, std::uint32_t default_error, std::uint32_t& error) {
    const std::lock_guard lock(mutex_);
    Entry& entry = journal_[place];
    entry.can_fail = true;
    const Fault* const fault = fault_counts_.due(faults_, entry.call, entry.argument);
    if (fault == nullptr)
        return false;
    entry.failed = true;
    error = fault->error.value_or(default_error);
    return true;
}

ToldSize Gate::size(std::size_t place, std::uint32_t needed, std::uint32_t capacity) {
    ToldSize size{needed, needed, 0};
    if (!on_size)
        return size;
    JournalEntry entry;
    {
        const std::lock_guard lock(mutex_);
        entry = shown(journal_[place]);
    }
    on_size(entry, capacity, size);
    return size;
}

void Gate::stop_locked(const std::string& reason) {
    if (stopped_)
        return;
    stopped_ = true;
    stop_reason_ = reason;
    if (stop_event_ >= 0)
        eventfd_write(stop_event_, 1);
}

void Gate::stop(const std::string& reason) {
    const std::lock_guard lock(mutex_);
    stop_locked(reason);
}

int Gate::stop_event() {
    const std::lock_guard lock(mutex_);
    if (stop_event_ < 0)
        stop_event_ = eventfd(stopped_ ? 1 : 0, EFD_CLOEXEC | EFD_NONBLOCK);
    return stop_event_;
}

void Gate::refuse(const std::string& reason) {
    stop(reason);
    throw RunStopped(reason);
}

void Gate::refuse(std::size_t place, const std::string& why) {
    std::string call;
    {
        const std::lock_guard lock(mutex_);
        call = std::string(journal_[place].call) + "(" + std::string(journal_[place].argument) + "): ";
    }
    refuse(call + why);
}

bool Gate::stopped() const {
    const std::lock_guard lock(mutex_);
    return stopped_;
}

std::string Gate::stop_reason() const {
    const std::lock_guard lock(mutex_);
    return stop_reason_;
}

void Gate::misuse(const std::string& what) {
    const std::lock_guard lock(mutex_);
    misuses_.push_back(what);
}

std::vector<std::string> Gate::misuses() const {
    const std::lock_guard lock(mutex_);
    return misuses_;
}

std::vector<JournalEntry> Gate::journal() const {
    const std::lock_guard lock(mutex_);
    std::vector<JournalEntry> journal;
    journal.reserve(journal_.size());
    for (const Entry& entry : journal_)
        journal.push_back(shown(entry));
    return journal;
}

unsigned Gate::count(const std::string& call) const {
    const std::lock_guard lock(mutex_);
    const auto found = counts_.find(call);
    return found == counts_.end() ? 0 : found->second;
}

Call::Call(const char* name, std::string_view argument) : place_(session().gate.enter(name, argument)) {}

bool Call::fails(std::uint32_t default_error) {
    if (!session().gate.fails(place_, default_error, error_))
        return false;
    set_last_error(error_);
    return true;
}

ToldSize Call::size(std::size_t needed, std::size_t capacity) const {
    return session().gate.size(place_, static_cast<std::uint32_t>(needed),
                               static_cast<std::uint32_t>(capacity));
}

void Call::refuse(const std::string& why) const {
    session().gate.refuse(place_, why);
}

} // namespace platform
