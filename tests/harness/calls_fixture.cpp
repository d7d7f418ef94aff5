#include "harness/calls_fixture.h"

#include "harness/test_session.h"

CallsTest::CallsTest() : session_(std::make_unique<TestSession>()) {
    std::filesystem::create_directories(session_->drive_c / "Scratch");
    session_->machine.child_programs = {{u"The child.exe", 0, child_exit_code}};
    session_->looks_at_leftovers = false; // this fixture does
    session_->start().gate.on_call = nullptr;
    SetLastError(0);
}

CallsTest::~CallsTest() {
    const platform::Session& session = platform::session();
    EXPECT_EQ(session.handles.open_kinds(), std::vector<std::string>{"file"}) << "but for the session's log";
    EXPECT_EQ(session.memory.live(), std::vector<std::string>());
    EXPECT_EQ(session.gate.stop_reason(), "");
    if (misuse_expected_)
        EXPECT_FALSE(session.gate.misuses().empty());
    else
        EXPECT_EQ(session.gate.misuses(), std::vector<std::string>());
}

Text CallsTest::scratch_folder() {
    return TEXT("C:\\Scratch");
}

Text CallsTest::child_program() const {
    TestSession::write(session_->drive_c / "Scratch" / "The child.exe", "a program");
    return scratch_folder() + TEXT("\\The child.exe");
}
