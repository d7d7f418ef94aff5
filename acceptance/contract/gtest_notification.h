// GoogleTest's notification between threads serves its own tests of threads only. It can't be made without
// the standard library's mutexes, so this one has its shape and waits for nothing.
#pragma once

namespace testing::internal {
class Notification {
public:
    void Notify() {}
    void WaitForNotification() {}
};
} // namespace testing::internal
