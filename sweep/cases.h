// What is swept: a case is one run of a road in which the platform or the user does one thing otherwise.
#pragma once

#include "rehearsal/outcome.h"
#include "sweep/roads.h"

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace sweep {

// A call that the undisturbed run of a road makes, by its name and how often that came before.
struct SeenCall {
    std::string name;
    unsigned nth = 0;
};

// A road made ready for its runs, each of which gets a copy of the scenario.
struct PreparedRoad {
    const Road* road = nullptr;
    std::shared_ptr<Scenario> scenario;
    rehearsal::Outcome clean;         // of the undisturbed run
    std::vector<SeenCall> can_fail;   // each once, in their order
    std::vector<SeenCall> tells_size; // likewise
    std::vector<SeenCall> of_worker;  // all calls of the worker
};

enum class Kind { fault, size, event };

// How a size is lied about. A buffer is filled truly all the same, but where it is told to be too small.
enum class Lie { small, large, grown, none, huge };
constexpr const char* lie_names[] = {"small", "large", "grown", "zero", "2^31"};

// What the user does while the worker is at a call.
enum class Event { press, key, close, command };
constexpr const char* event_names[] = {"press", "key", "close", "command"};

struct Case {
    const PreparedRoad* road = nullptr;
    Kind kind = Kind::fault;
    SeenCall call;
    bool ever = false;       // the nth call and all later ones
    std::uint32_t error = 0; // of a fault
    Lie lie = Lie::small;
    Event event = Event::press;

    std::string name() const; // "network/CreateFileW/3/once/5"
};

// Prepares a road: makes its scenario and runs it once. What it prints goes nowhere.
PreparedRoad prepare(const Road& road);

// All cases of a road, always in the same order.
std::vector<Case> cases_of(const PreparedRoad& road);

// Runs the case in this process: what is wrong with the run, a line each; empty when it is a good one.
std::string run_case(const Case& one);

} // namespace sweep
