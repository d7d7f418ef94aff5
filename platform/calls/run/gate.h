// The gate that every platform call passes. It knows the call's name and how often it came, writes the
// journal, makes calls fail on demand and stops a run that asks for something the layer doesn't model.
#pragma once

#include "machine/fault_rules.h"
#include "machine/told_size.h"

#include <cstdint>
#include <functional>
#include <memory_resource>
#include <mutex>
#include <stdexcept>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace platform {

// Ends a run from inside a call: it unwinds through the program up to whoever started the run or the thread.
struct RunStopped : std::runtime_error {
    using std::runtime_error::runtime_error;
};

struct JournalEntry {
    std::string call;
    unsigned nth = 0;      // counted for each name, from 1
    unsigned thread = 0;   // 0 the main thread, then the others in the order of their start
    std::string argument;  // UTF-8; what faults and readers may ask about
    bool can_fail = false; // the call has a way to fail, and asked the gate for it
    bool failed = false;   // a fault was due
};

class Gate {
public:
    explicit Gate(const std::vector<Fault>& faults) : faults_(faults) {}
    ~Gate();
    Gate(const Gate&) = delete;
    Gate& operator=(const Gate&) = delete;

    // Counts and journals a call and gives its place in the journal; the argument is copied, the name must
    // stay. Throws RunStopped once the run is stopped.
    std::size_t enter(const char* call, std::string_view argument);
    // Whether a fault is due for the call at this place; the error is the fault's, else default_error.
    bool fails(std::size_t place, std::uint32_t default_error, std::uint32_t& error);
    // What the call at this place, whose caller has room for `capacity`, answers to whom it needs `needed`.
    ToldSize size(std::size_t place, std::uint32_t needed, std::uint32_t capacity);

    // Stops the run: every later call of any thread throws. The first reason stays.
    void stop(const std::string& reason);
    [[noreturn]] void refuse(const std::string& reason);                 // stop, and leave the present call
    [[noreturn]] void refuse(std::size_t place, const std::string& why); // with the call that stands there
    bool stopped() const;
    std::string stop_reason() const;
    // A descriptor that can be read from as soon as the run is stopped, for waits outside the run's own lock;
    // -1 when the system has none left.
    int stop_event();

    // Notes a use that the platform forbids (a second close, a wrong kind of handle, a freed block).
    void misuse(const std::string& what);
    std::vector<std::string> misuses() const;

    std::vector<JournalEntry> journal() const;
    unsigned count(const std::string& call) const;

    // Called, when set, on the calling thread before a call does its work; for tests that act in mid-run.
    std::function<void(const JournalEntry&)> on_call;
    // Called, when set, on the calling thread before a call tells a size; for tests in which the platform
    // lies about sizes.
    std::function<void(const JournalEntry&, std::uint32_t capacity, ToldSize&)> on_size;

private:
    static constexpr std::size_t longest_run = 2'000'000; // calls; far above any run that ends by itself

    // An entry as it is kept: calls come by the hundred thousand, so each of them allocates nothing of its
    // own.
    struct Entry {
        std::string_view call;
        std::string_view argument; // in arguments_
        unsigned nth;
        unsigned thread;
        bool can_fail;
        bool failed;
    };
    static JournalEntry shown(const Entry& entry);
    void stop_locked(const std::string& reason);
    std::string_view kept(std::string_view argument);

    const std::vector<Fault>& faults_;
    FaultCounts fault_counts_;
    std::vector<Entry> journal_;
    std::pmr::monotonic_buffer_resource arguments_;
    std::unordered_map<std::string_view, unsigned> counts_;
    std::vector<std::string> misuses_;
    std::string stop_reason_;
    bool stopped_ = false;
    int stop_event_ = -1; // made when it is asked for
    mutable std::mutex mutex_;
};

// One call at the gate. Every function of platform/calls that stands for a platform call begins with one.
class Call {
public:
    explicit Call(const char* name, std::string_view argument = {});
    // True when this call has to fail. It has then set the thread's last error to error(); a call whose
    // result is the code itself returns error().
    bool fails(std::uint32_t default_error);
    std::uint32_t error() const { return error_; }
    // What to tell about the size that this call needs, in its own unit; `capacity` is the caller's, 0
    // without a buffer.
    ToldSize size(std::size_t needed, std::size_t capacity) const;
    [[noreturn]] void refuse(const std::string& why) const; // what the layer doesn't model

private:
    std::size_t place_;
    std::uint32_t error_ = 0;
};

} // namespace platform
