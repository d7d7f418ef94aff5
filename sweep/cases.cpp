#include "sweep/cases.h"

#include "calls/run/session.h"
#include "sweep/error_codes.h"
#include "sweep/quiet.h"

#include <iterator>
#include <mutex>
#include <set>
#include <stdexcept>
#include <utility>

namespace sweep {
namespace {

// A hand-over runs two programs, each of which counts its calls anew.
class Calls {
public:
    void add(const std::string& name, unsigned nth) {
        if (known_.insert({name, nth}).second)
            calls.push_back({name, nth});
    }
    std::vector<SeenCall> calls;

private:
    std::set<std::pair<std::string, unsigned>> known_;
};

// What such a call would have given back stays when it fails, of course.
bool gives_back(const std::string& call) {
    for (const char* const word : {"Close", "Free", "Destroy", "closesocket"})
        if (call.find(word) != call.npos)
            return true;
    return false;
}

void add_faults(const PreparedRoad& road, std::vector<Case>& cases) {
    for (const SeenCall& call : road.can_fail)
        for (const bool ever : {false, true})
            for (const std::uint32_t error : error_codes(call.name)) {
                if (gives_back(call.name))
                    continue;
                Case one{&road, Kind::fault, call};
                one.ever = ever;
                one.error = error;
                cases.push_back(one);
            }
}

void add_lies(const PreparedRoad& road, std::vector<Case>& cases) {
    for (const SeenCall& call : road.tells_size)
        for (const bool ever : {false, true})
            for (std::size_t lie = 0; lie < std::size(lie_names); ++lie) {
                Case one{&road, Kind::size, call};
                one.ever = ever;
                one.lie = static_cast<Lie>(lie);
                cases.push_back(one);
            }
}

void add_events(const PreparedRoad& road, std::vector<Case>& cases) {
    for (const SeenCall& call : road.of_worker)
        for (std::size_t event = 0; event < std::size(event_names); ++event) {
            Case one{&road, Kind::event, call};
            one.event = static_cast<Event>(event);
            cases.push_back(one);
        }
}

} // namespace

std::string Case::name() const {
    const std::string begin =
        std::string(road->road->name) + "/" + call.name + "/" + std::to_string(call.nth) + "/";
    const std::string often = ever ? "ever/" : "once/";
    switch (kind) {
    case Kind::fault:
        return begin + often + std::to_string(error);
    case Kind::size:
        return begin + often + lie_names[static_cast<std::size_t>(lie)];
    default:
        return begin + "user/" + event_names[static_cast<std::size_t>(event)];
    }
}

PreparedRoad prepare(const Road& road) {
    const Quiet quiet;
    PreparedRoad prepared;
    prepared.road = &road;
    prepared.scenario = std::make_shared<Scenario>();
    road.prepare(*prepared.scenario);
    Scenario clean(*prepared.scenario);
    Calls can_fail, tells_size, of_worker;
    std::mutex mutex; // the two threads may ask at once
    clean.on_call = [&](const platform::JournalEntry&) {
        const std::lock_guard lock(mutex);
        platform::session().gate.on_size = [&](const platform::JournalEntry& entry, std::uint32_t,
                                               platform::ToldSize&) {
            const std::lock_guard held(mutex);
            tells_size.add(entry.call, entry.nth);
        };
    };
    prepared.clean = clean.run();
    if (!prepared.clean.refusal.empty() || !prepared.clean.problem.empty())
        throw std::runtime_error(std::string("the road ") + road.name +
                                 " can't be gone: " + prepared.clean.refusal + prepared.clean.problem);
    for (const platform::JournalEntry& entry : prepared.clean.journal) {
        if (entry.can_fail)
            can_fail.add(entry.call, entry.nth);
        if (entry.thread == 1)
            of_worker.add(entry.call, entry.nth);
    }
    prepared.clean.journal = {};
    prepared.can_fail = can_fail.calls;
    prepared.tells_size = tells_size.calls;
    prepared.of_worker = of_worker.calls;
    return prepared;
}

std::vector<Case> cases_of(const PreparedRoad& road) {
    std::vector<Case> cases;
    add_faults(road, cases);
    add_lies(road, cases);
    add_events(road, cases);
    return cases;
}

} // namespace sweep
