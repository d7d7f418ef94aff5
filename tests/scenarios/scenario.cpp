#include "scenarios/scenario.h"

#include "rehearsal/difference.h"
#include "rehearsal/program_run.h"

#include <gtest/gtest.h>

#include <algorithm>
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

} // namespace

// A reply as a printer sends it: the header of an attribute reply of RFC 2608 (section 10.4) with the
// language tag "en", the attribute list, and no authentication blocks.
platform::ScriptedDatagram slp_reply(const std::string& from, const std::string& attributes) {
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
        slp_reply("10.0.0.7",
                  "(printer-name=Shelf A),(ieee1284-id=MFG:Vorlane;MDL:Label_100_Series;CLS:PRINTER;)"),
        slp_reply("10.0.0.9",
                  "(printer-name=Other),(ieee1284-id=MFG:Vorlane;MDL:Label_200_Series;CLS:PRINTER;)"),
        slp_reply("10.0.0.10", ""),
        slp_reply("10.0.0.8",
                  "(printer-name=Shelf B),(ieee1284-id=MFG:Vorlane;MDL:Label_100_Series;CLS:PRINTER;)"),
    };
    adapter.searches = {answers, answers, answers};
    machine.adapters = {adapter};
}

Scenario::Scenario(const Scenario& other)
    : machine(other.machine), command_line(other.command_line), program_bits(other.program_bits),
      hand_over(other.hand_over), actions(other.actions), on_call(other.on_call), entry(other.entry),
      drive_c_(folder_.path / "c"), medium_(other.medium_) {
    fs::copy(other.drive_c_, drive_c_, fs::copy_options::recursive);
}

fs::path Scenario::own_medium() {
    const fs::path copy = folder_.path / "medium";
    if (medium_ != copy)
        fs::copy(medium_, copy, fs::copy_options::recursive);
    medium_ = copy;
    return copy;
}

void Scenario::use_system(platform::System system) {
    machine.system = system;
    machine.spooler = platform::default_machine(system).spooler;
}

void Scenario::add_driver(std::uint64_t version) {
    platform::PrinterDriver driver;
    driver.name = u"Label 100 Driver";
    driver.version = version;
    machine.spooler.drivers.push_back(driver);
}

void Scenario::add_queue(const std::u16string& name) {
    platform::PrintQueue queue = machine.spooler.queues.front();
    queue.name = name;
    machine.spooler.queues.push_back(queue);
}

rehearsal::Outcome Scenario::run() {
    ListedUser user(actions);
    rehearsal::LogFollower log;
    rehearsal::ProgramRun run;
    run.program_bits = program_bits;
    run.hand_over = hand_over;
    run.drive_c = drive_c_;
    run.medium = medium_;
    run.command_line = command_line;
    run.on_call = [this](const platform::JournalEntry& call) {
        spoil_last_error(call);
        if (on_call)
            on_call(call);
    };
    run.entry = entry;
    rehearsal::Outcome outcome = rehearsal::run_program(run, machine, user, log);
    outcome.boxes = user.boxes;
    outcome.problem = user.problem;
    return outcome;
}

bool has(const std::string& text, const std::string& part) {
    return text.find(part) != std::string::npos;
}

std::string replaced(std::string text, const std::string& from, const std::string& to) {
    for (std::size_t place = text.find(from); place != text.npos; place = text.find(from, place + to.size()))
        text.replace(place, from.size(), to);
    return text;
}

std::string mask_store(std::string text) {
    const std::string repository = "C:\\Windows\\System32\\DriverStore\\FileRepository\\";
    for (std::size_t place = text.find(repository); place != text.npos; place = text.find(repository)) {
        const std::size_t end = text.find('\\', place + repository.size());
        text.replace(place, end - place, "<store>");
    }
    return text;
}

void replace_in_file(const fs::path& file, const std::string& from, const std::string& to) {
    const std::string old = TestSession::read(file);
    EXPECT_TRUE(has(old, from)) << file;
    TestSession::write(file, replaced(old, from, to));
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

std::string shown_controls(const rehearsal::Outcome& outcome) {
    const struct {
        int id;
        const char* name;
    } controls[] = {{1013, "usb"},     {1014, "network"}, {1003, "list"},    {1007, "default"},
                    {1015, "install"}, {1017, "refresh"}, {1016, "address"}, {2, "cancel"}};
    std::string text;
    for (const auto& [id, name] : controls)
        if (const platform::ControlView& control = control_of(outcome, 105, id); control.visible)
            text += (text.empty() ? "" : " ") + std::string(name) + (control.enabled ? "" : "-");
    return text;
}

std::string status_of(const rehearsal::Outcome& outcome) {
    return control_of(outcome, 105, 1009).text;
}

std::string boxes_of(const rehearsal::Outcome& outcome) {
    std::string text;
    for (const platform::BoxView& box : outcome.boxes) {
        const std::string sign = box.flags == 0x40030 ? "!" : box.flags == 0x40000 ? "" : "?";
        text += (text.empty() ? "" : " / ") + sign + box.caption + ": " + box.text;
    }
    return text;
}

std::string changes_of(const rehearsal::Outcome& outcome) {
    const rehearsal::MachineState before = {outcome.before, {}};
    const rehearsal::MachineState after = {outcome.after, {}};
    std::string text;
    for (const std::string& line : rehearsal::difference(before, after))
        text += (text.empty() ? "" : ", ") + line;
    return mask_store(text);
}

unsigned calls_of(const rehearsal::Outcome& outcome, const std::string& call) {
    return static_cast<unsigned>(
        std::count_if(outcome.journal.begin(), outcome.journal.end(),
                      [&](const platform::JournalEntry& entry) { return entry.call == call; }));
}

void expect_clean(const rehearsal::Outcome& outcome) {
    EXPECT_EQ(outcome.refusal, "");
    EXPECT_EQ(outcome.problem, "");
    EXPECT_EQ(outcome.exit_code, 0);
    EXPECT_EQ(outcome.misuses, std::vector<std::string>{});
    EXPECT_EQ(outcome.leaks, std::vector<std::string>{});
}
