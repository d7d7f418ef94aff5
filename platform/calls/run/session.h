// One run of the program over one machine: what all areas of the calls share. Areas keep their own state in
// area<T>() and their objects behind handles.
#pragma once

#include "calls/run/clock.h"
#include "calls/run/gate.h"
#include "calls/run/handles.h"
#include "calls/run/user.h"
#include "machine/machine.h"

#include <filesystem>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

namespace platform {

// The 64-bit sibling of the program, which it hands over to on a 64-bit system.
constexpr std::u16string_view sibling_name = u"trk_setup64.exe";

struct ChildEnd {
    std::uint32_t exit_code = 0;
    std::uint32_t milliseconds = 0; // that it ran
};

struct SessionOptions {
    std::filesystem::path drive_c;   // what C:\ is; must exist
    std::filesystem::path medium;    // what the current folder is, read-only; may be empty
    std::filesystem::path resources; // the .res file
    std::u16string command_line;     // arguments only; GetCommandLineW puts the quoted program path in front
    bool real_time = false;          // Sleep and waits really wait; otherwise the clock jumps
    unsigned program_bits = 0;       // of the program that runs, 32 or 64; 0: as many as the system has
    bool child = false; // begun inside another session, which is the current one again afterwards
    // Runs the sibling program of this command line to its end; empty: it behaves as child_programs say.
    std::function<ChildEnd(const std::u16string& command_line)> run_sibling;
    bool lend_sibling = false; // trk_setup64.exe counts as present where the medium has none
};

class Session {
public:
    // Makes this the current session; there is one at a time. The machine is changed in place.
    Session(Machine& machine, SessionOptions options, User& user);
    // Waits for the run's threads and ends the session. A thread that still waits is stopped first.
    ~Session();
    Session(const Session&) = delete;
    Session& operator=(const Session&) = delete;

    Machine& machine;
    const SessionOptions options;
    User& user;
    Clock clock;
    Gate gate;
    HandleTable handles;
    MemoryLedger memory;

    // An area's own state, made on first use and destroyed with the session.
    template<class T>
    T& area() {
        const std::lock_guard lock(areas_mutex_);
        if (areas_.size() <= area_slot<T>)
            areas_.resize(area_slot<T> + 1);
        auto& slot = areas_[area_slot<T>];
        if (!slot)
            slot = std::make_shared<T>();
        return *static_cast<T*>(slot.get());
    }

    // Called by the windows area at the end of the run and by the destructor: see threads.cpp.
    void join_threads();

private:
    Session* const outer_;

    // Each type that any source asks for has a number, the same in every session.
    static std::size_t next_area_slot();
    template<class T>
    static inline const std::size_t area_slot = next_area_slot();

    std::mutex areas_mutex_;
    std::vector<std::shared_ptr<void>> areas_;
};

// The current session; a call outside any session ends the process with a message.
Session& session();
bool in_session();

unsigned program_bits(); // of the program that runs in the current session, 32 or 64

// The calling thread's last error, as GetLastError gives it.
void set_last_error(std::uint32_t code);
std::uint32_t last_error();
int failed(std::uint32_t code); // sets the last error and gives 0, by which most calls tell that they failed

// 0 for the thread that made the session, then 1, 2, ... in the order of _beginthread.
unsigned current_thread_number();
void set_current_thread_number(unsigned number);

} // namespace platform
