#include "calls/run/clock.h"

#include <chrono>
#include <ctime>
#include <thread>

namespace platform {
namespace {

// An hour after the machine's start, as on a machine that somebody has just logged on to.
constexpr std::int64_t ticks_at_start = 3'600'000;

std::int64_t steady_milliseconds() {
    using namespace std::chrono;
    return duration_cast<milliseconds>(steady_clock::now().time_since_epoch()).count();
}

std::int64_t real_local_seconds() {
    const std::time_t now = std::time(nullptr);
    std::tm local{};
    localtime_r(&now, &local);
    return timegm(&local);
}

std::int64_t parse(const std::string& text) {
    std::tm time{};
    const char* end = strptime(text.c_str(), "%Y-%m-%dT%H:%M:%S", &time);
    return end == nullptr ? real_local_seconds() : timegm(&time);
}

} // namespace

Clock::Clock(const std::string& start, bool real_time)
    : start_seconds_(start.empty() ? real_local_seconds() : parse(start)), real_start_(steady_milliseconds()),
      real_time_(real_time) {}

std::uint32_t Clock::ticks() const {
    const std::lock_guard lock(mutex_);
    const std::int64_t real = real_time_ ? steady_milliseconds() - real_start_ : 0;
    return static_cast<std::uint32_t>(ticks_at_start + passed_ + real);
}

void Clock::pass(std::uint32_t milliseconds) {
    if (real_time_) {
        std::this_thread::sleep_for(std::chrono::milliseconds(milliseconds));
        return;
    }
    const std::lock_guard lock(mutex_);
    passed_ += milliseconds;
}

LocalTime Clock::local_time() const {
    const std::lock_guard lock(mutex_);
    const std::int64_t real = real_time_ ? steady_milliseconds() - real_start_ : 0;
    const std::int64_t passed = passed_ + real;
    const std::time_t seconds = start_seconds_ + passed / 1000;
    std::tm time{};
    gmtime_r(&seconds, &time);
    return {static_cast<unsigned>(time.tm_year + 1900), static_cast<unsigned>(time.tm_mon + 1),
            static_cast<unsigned>(time.tm_wday),        static_cast<unsigned>(time.tm_mday),
            static_cast<unsigned>(time.tm_hour),        static_cast<unsigned>(time.tm_min),
            static_cast<unsigned>(time.tm_sec),         static_cast<unsigned>(passed % 1000)};
}

} // namespace platform
