// The machine's time: it jumps in tests, and runs with the real clock in a rehearsal.
#pragma once

#include <cstdint>
#include <mutex>
#include <string>

namespace platform {

struct LocalTime {
    unsigned year = 0, month = 0, weekday = 0, day = 0; // month from 1, weekday from 0 for Sunday
    unsigned hour = 0, minute = 0, second = 0, millisecond = 0;
};

class Clock {
public:
    // `start` is local time "2024-07-04T09:05:01", or empty for the real one.
    Clock(const std::string& start, bool real_time);
    std::uint32_t ticks() const;           // milliseconds since the machine's start; wraps at 2^32
    void pass(std::uint32_t milliseconds); // really waits with real time, otherwise jumps
    LocalTime local_time() const;

private:
    std::int64_t start_seconds_ = 0; // local time at the session's start, seconds since 1970
    std::int64_t passed_ = 0;        // milliseconds jumped over
    std::int64_t real_start_ = 0;    // steady milliseconds at the session's start
    bool real_time_ = false;
    mutable std::mutex mutex_;
};

} // namespace platform
