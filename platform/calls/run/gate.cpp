#include "calls/run/gate.h"

#include "calls/run/session.h"

namespace platform {
std::size_t Gate::enter(const char* call, const std::string& argument) {
    JournalEntry entry;
    std::size_t place = 0;
    {
        const std::lock_guard lock(mutex_);
        if (stopped_)
            throw RunStopped(stop_reason_);
        if (journal_.size() >= longest_run) {
            stopped_ = true;
            stop_reason_ = "the run doesn't end: too many calls, the last of " + std::string(call);
            throw RunStopped(stop_reason_);
        }
        entry = {call, ++counts_[call], current_thread_number(), argument};
        place = journal_.size();
        journal_.push_back(entry);
    }
    // Outside the lock: the hook may wait for another thread, whose calls move the run on.
    if (on_call)
        on_call(entry);
    return place;
}

bool Gate::fails(std::size_t place, std::uint32_t default_error, std::uint32_t& error) {
    const std::lock_guard lock(mutex_);
    JournalEntry& entry = journal_[place];
    entry.can_fail = true;
    const Fault* const fault = fault_counts_.due(faults_, entry.call, entry.argument);
    if (fault == nullptr)
        return false;
    entry.failed = true;
    error = fault->error.value_or(default_error);
    return true;
}

void Gate::stop(const std::string& reason) {
    const std::lock_guard lock(mutex_);
    if (!stopped_) {
        stopped_ = true;
        stop_reason_ = reason;
    }
}

void Gate::refuse(const std::string& reason) {
    stop(reason);
    throw RunStopped(reason);
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
    return journal_;
}

unsigned Gate::count(const std::string& call) const {
    const std::lock_guard lock(mutex_);
    const auto found = counts_.find(call);
    return found == counts_.end() ? 0 : found->second;
}

Call::Call(const char* name, std::string argument)
    : name_(name), argument_(std::move(argument)), place_(session().gate.enter(name, argument_)) {}

bool Call::fails(std::uint32_t default_error) {
    if (!session().gate.fails(place_, default_error, error_))
        return false;
    set_last_error(error_);
    return true;
}

void Call::refuse(const std::string& why) const {
    session().gate.refuse(std::string(name_) + "(" + argument_ + "): " + why);
}

} // namespace platform
