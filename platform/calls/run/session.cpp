#include "calls/run/session.h"

#include <cstdio>
#include <cstdlib>

namespace platform {
namespace {

Session* current = nullptr;
thread_local std::uint32_t thread_last_error = 0;
thread_local unsigned thread_number = 0;

} // namespace

Session::Session(Machine& the_machine, SessionOptions the_options, User& the_user)
    : machine(the_machine), options(std::move(the_options)), user(the_user),
      clock(the_machine.clock, options.real_time), gate(the_machine.faults), outer_(current) {
    if (current != nullptr && !options.child) {
        std::fputs("a session is open already\n", stderr);
        std::abort();
    }
    current = this;
    settle(machine);
    thread_last_error = 0;
    thread_number = 0;
}

Session::~Session() {
    join_threads();
    areas_.clear();
    current = outer_;
}

std::size_t Session::next_area_slot() {
    static std::size_t next = 0; // before main, on one thread
    return next++;
}

Session& session() {
    if (current == nullptr) {
        std::fputs("a platform call outside any session\n", stderr);
        std::abort();
    }
    return *current;
}

unsigned program_bits() {
    const Session& now = session();
    if (now.options.program_bits != 0)
        return now.options.program_bits;
    return now.machine.system == System::x64 ? 64 : 32;
}

void set_last_error(std::uint32_t code) {
    thread_last_error = code;
}

bool in_session() {
    return current != nullptr;
}

std::uint32_t last_error() {
    return thread_last_error;
}

int failed(std::uint32_t code) {
    set_last_error(code);
    return 0;
}

unsigned current_thread_number() {
    return thread_number;
}

void set_current_thread_number(unsigned number) {
    thread_number = number;
}

} // namespace platform
