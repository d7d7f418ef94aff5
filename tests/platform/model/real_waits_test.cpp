// How waits on real sockets end.
#include "calls/network/real_network.h"
#include "harness/test_session.h"

#include <gtest/gtest.h>

#include <thread>

namespace {

using platform::SocketError;

class RealWaits : public testing::Test {
protected:
    void SetUp() override {
        session_ = &test_.start();
        ASSERT_EQ(socket_.bind({0x7f000001, 0}, {}), SocketError::none);
    }

    SocketError receive(std::uint32_t milliseconds) {
        platform::SocketOptions options;
        options.receive_timeout = milliseconds;
        return socket_.receive(datagram_, options);
    }

    TestSession test_;
    platform::Session* session_ = nullptr;
    platform::RealSocket socket_;
    platform::Datagram datagram_;
};

TEST_F(RealWaits, EndWithADatagramOrTheTimeOut) {
    EXPECT_EQ(receive(1), SocketError::timed_out);
    const std::uint8_t bytes[] = {1, 2, 3};
    ASSERT_EQ(socket_.send(bytes, socket_.local(), {}), SocketError::none);
    EXPECT_EQ(receive(60'000), SocketError::none);
    EXPECT_EQ(datagram_.bytes.size(), 3u);
}

TEST_F(RealWaits, EndWithTheRun) {
    app.log_handle = INVALID_HANDLE_VALUE; // a stopped run takes no more calls
    std::thread other([this] { session_->gate.stop("by another thread"); });
    EXPECT_THROW(receive(60'000), platform::RunStopped);
    other.join();
    EXPECT_THROW(receive(60'000), platform::RunStopped) << "stopped before";
}

} // namespace
