// One run with its fault, its lie or its user.
#include "calls/run/session.h"
#include "calls/windows/user_input.h"
#include "sweep/cases.h"
#include "sweep/judgement.h"

#include <algorithm>
#include <atomic>

namespace sweep {
namespace {

constexpr std::uint32_t grown_by = 64;
constexpr std::uint32_t two_gigabytes = 0x80000000;

bool strikes(const Case& one, const platform::JournalEntry& entry) {
    return entry.call == one.call.name &&
           (entry.nth == one.call.nth || (one.ever && entry.nth > one.call.nth));
}

void lie_about(Lie lie, std::uint32_t capacity, platform::ToldSize& size) {
    switch (lie) {
    case Lie::small:
        size.told = size.needed / 2;
        break;
    case Lie::large:
        size.told = size.needed * 2 + grown_by;
        break;
    case Lie::grown: // what the caller has made room for isn't enough any more
        size.needed = std::max(size.needed, capacity) + grown_by;
        size.told = size.needed;
        break;
    case Lie::none:
        size.told = 0;
        break;
    case Lie::huge:
        size.told = two_gigabytes;
        break;
    }
}

// The user who meddles, on the worker's thread while it is at a call. Waits until the main thread has taken
// what came of it, or waits itself for the worker.
class Meddler {
public:
    explicit Meddler(const Case& one) : one_(one) {}

    void operator()(const platform::JournalEntry& entry) {
        if (entry.thread == 0) {
            if (entry.call == "GetMessageW")
                ++taken_;
            else if (entry.call == "MessageBoxW")
                ended_ = true;
            busy_ = entry.call != "WaitForSingleObject";
            ++steps_;
            steps_.notify_all();
        } else if (entry.thread == 1 && strikes(one_, entry) && !acted_.exchange(true)) {
            act();
        }
    }

private:
    void act() {
        const unsigned before = taken_;
        switch (one_.event) {
        case Event::press:
            for (const int button : {2, 1013, 1014, 1015, 1016, 1017})
                platform::press(button);
            break;
        case Event::key:
            for (const unsigned key : {13u, 27u, 9u, 40u})
                platform::press_key(key);
            break;
        case Event::close:
            platform::close_dialog();
            break;
        case Event::command: // what no hand can do, but a program can
            for (const WPARAM command : {1u, 2u, 1016u, 1017u})
                PostMessageW(app.main_dialog, WM_COMMAND, command, 0);
            PostMessageW(app.main_dialog, setup_message, terms_page_closed, 0);
            break;
        }
        PostMessageW(app.main_dialog, WM_NULL, 0, 0);
        for (unsigned now = steps_; taken_ == before && busy_ && !ended_; now = steps_)
            steps_.wait(now);
    }

    const Case& one_;
    std::atomic<bool> acted_ = false;
    std::atomic<bool> ended_ = false; // the end's box is shown
    std::atomic<bool> busy_ = true;   // not waiting for the worker
    std::atomic<unsigned> taken_ = 0; // calls for the next message
    std::atomic<unsigned> steps_ = 0; // changes with each of them
};

void set_lie(const Case& one) {
    platform::session().gate.on_size = [&one](const platform::JournalEntry& entry, std::uint32_t capacity,
                                              platform::ToldSize& size) {
        if (strikes(one, entry))
            lie_about(one.lie, capacity, size);
    };
}

} // namespace

std::string run_case(const Case& one) {
    Scenario scenario(*one.road->scenario);
    Meddler meddler(one);
    if (one.kind == Kind::fault)
        scenario.machine.faults = {{one.call.name, one.call.nth, one.ever, one.error, "", true}};
    else if (one.kind == Kind::event)
        scenario.on_call = std::ref(meddler);
    else
        scenario.on_call = [&one](const platform::JournalEntry& entry) {
            if (entry.thread == 0)
                set_lie(one);
        };
    const rehearsal::Outcome outcome = scenario.run();
    std::string wrong;
    for (const std::string& text : judge(one, scenario, outcome))
        wrong += (wrong.empty() ? "" : "\n") + text;
    return wrong;
}

} // namespace sweep
