#include "scenarios/scenario.h"

#include "rehearsal/program_run.h"

#include <stdexcept>

namespace fs = std::filesystem;

namespace {

// Follows the lines, and keeps what was shown.
class ListedUser : public platform::User {
public:
    explicit ListedUser(const std::vector<std::string>& lines) {
        for (const std::string& line : lines) {
            rehearsal::Action action;
            if (rehearsal::parse_action(line, action))
                actions_.push_back(action);
        }
    }
    bool act() override {
        if (next_ == actions_.size() || !problem.empty())
            return false;
        const rehearsal::Action& action = actions_[next_++];
        const std::string reason = rehearsal::perform(action);
        if (!reason.empty())
            problem = action.shown + ": " + reason;
        return reason.empty();
    }
    void box(const platform::BoxView& view) override { boxes.push_back(view); }

    std::vector<platform::BoxView> boxes;
    std::string problem;

private:
    std::vector<rehearsal::Action> actions_;
    std::size_t next_ = 0;
};

// A reply as a printer sends it: the header of an attribute reply of RFC 2608 (section 10.4) with the
// language tag "en", the attribute list, and no authentication blocks.
platform::ScriptedDatagram reply(const std::string& from, const std::string& attributes) {
    const std::size_t length = 20 + attributes.size() + 1;
    const auto byte = [](std::size_t value) { return static_cast<std::uint8_t>(value & 0xff); };
    std::vector<std::uint8_t> bytes = {2,
                                       7,
                                       0,
                                       byte(length >> 8),
                                       byte(length),
                                       0,
                                       0,
                                       0,
                                       0,
                                       0,
                                       0x20,
                                       0x10,
                                       0,
                                       2,
                                       'e',
                                       'n',
                                       0,
                                       0,
                                       byte(attributes.size() >> 8),
                                       byte(attributes.size())};
    bytes.insert(bytes.end(), attributes.begin(), attributes.end());
    bytes.push_back(0);
    return {from, bytes};
}

} // namespace

const std::vector<std::string> network_install = {"press 1014", "select 0",  "tick 1007",
                                                  "press 1015", "tick 1011", "press 1"};
const std::vector<std::string> usb_install = {"press 1013", "tick 1011", "press 1"};

Scenario::Scenario()
    : machine(platform::default_machine()), drive_c_(folder_.path / "c"), medium_(TRK_SAMPLE_MEDIUM) {
    fs::create_directories(drive_c_);
    machine.clock = "2024-07-04T09:05:01";
    platform::Adapter adapter;
    adapter.description = "Ethernet";
    adapter.addresses = {"10.0.0.2"};
    const std::vector<platform::ScriptedDatagram> answers = {
        reply("10.0.0.7",
              "(printer-name=Shelf A),(ieee1284-id=MFG:Vorlane;MDL:Label_100_Series;CLS:PRINTER;)"),
        reply("10.0.0.9", "(printer-name=Other),(ieee1284-id=MFG:Vorlane;MDL:Label_200_Series;CLS:PRINTER;)"),
        reply("10.0.0.10", ""),
        reply("10.0.0.8",
              "(printer-name=Shelf B),(ieee1284-id=MFG:Vorlane;MDL:Label_100_Series;CLS:PRINTER;)"),
    };
    adapter.searches = {answers, answers, answers};
    machine.adapters = {adapter};
}

fs::path Scenario::own_medium() {
    const fs::path copy = folder_.path / "medium";
    if (medium_ != copy)
        fs::copy(medium_, copy, fs::copy_options::recursive);
    medium_ = copy;
    return copy;
}

rehearsal::Outcome Scenario::run() {
    ListedUser user(actions);
    rehearsal::LogFollower log;
    rehearsal::ProgramRun run;
    run.drive_c = drive_c_;
    run.medium = medium_;
    run.command_line = command_line;
    run.on_call = on_call;
    rehearsal::Outcome outcome = rehearsal::run_program(run, machine, user, log);
    outcome.boxes = user.boxes;
    outcome.problem = user.problem;
    return outcome;
}

std::string caption_of(const rehearsal::Outcome& outcome, int dialog) {
    for (const platform::DialogView& view : outcome.dialogs)
        if (view.id == dialog)
            return view.caption;
    return {};
}

const platform::ControlView& control_of(const rehearsal::Outcome& outcome, int dialog, int control) {
    for (const platform::DialogView& view : outcome.dialogs)
        for (const platform::ControlView& one : view.controls)
            if (view.id == dialog && one.id == control)
                return one;
    throw std::out_of_range("no such control");
}

const platform::PrintQueue* queue_of(const rehearsal::Outcome& outcome, const std::u16string& name) {
    for (const platform::PrintQueue& queue : outcome.after.spooler.queues)
        if (queue.name == name)
            return &queue;
    return nullptr;
}
