// A whole run of the program: a machine, the sample medium and a user's actions, and what comes of them.
#pragma once

#include "harness/test_session.h"
#include "rehearsal/action_script.h"
#include "rehearsal/outcome.h"

#include <functional>
#include <string>
#include <vector>

class Scenario {
public:
    // The default machine with one adapter, on which two printers of the sample's model, one of another model
    // and an agent with nothing to offer answer every search, at a fixed time. The medium is the sample's,
    // read in place.
    Scenario();

    platform::Machine machine;
    std::string command_line;
    std::vector<std::string> actions; // in the form of a script's lines
    // Called before each platform call, on the calling thread.
    std::function<void(const platform::JournalEntry&)> on_call;

    // A copy of the sample medium, to be changed by the test; from then on it is this scenario's medium.
    std::filesystem::path own_medium();

    // Runs the program once more on the same machine and drive.
    rehearsal::Outcome run();

    const std::filesystem::path& drive_c() const { return drive_c_; }

private:
    TemporaryFolder folder_;
    std::filesystem::path drive_c_;
    std::filesystem::path medium_;
};

// The actions of the usual roads, up to the worker's start.
extern const std::vector<std::string> network_install; // Network, the first row, default box, terms, accepted
extern const std::vector<std::string> usb_install;     // USB, terms, accepted

// One of the names, "" without any.
std::string caption_of(const rehearsal::Outcome& outcome, int dialog);
const platform::ControlView& control_of(const rehearsal::Outcome& outcome, int dialog, int control);
const platform::PrintQueue* queue_of(const rehearsal::Outcome& outcome, const std::u16string& name);
