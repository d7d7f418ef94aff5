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
    // The same machine with a copy of the drive; the medium is shared and has to live as long.
    Scenario(const Scenario& other);

    platform::Machine machine;
    std::string command_line;
    unsigned program_bits = 0; // as ProgramRun has it
    bool hand_over = false;
    std::vector<std::string> actions; // in the form of a script's lines
    // Called before each platform call, on the calling thread.
    std::function<void(const platform::JournalEntry&)> on_call;
    std::function<int(HINSTANCE, char*)> entry; // empty: the setup program

    // A fresh spooler of that system.
    void use_system(platform::System system);
    // The sample's driver is there already, at the given version.
    void add_driver(std::uint64_t version);
    void add_queue(const std::u16string& name);

    // A copy of the sample medium, to be changed by the test; from then on it is this scenario's medium.
    std::filesystem::path own_medium();
    // A medium of the test's own, which has to live as long.
    void use_medium(const std::filesystem::path& medium) { medium_ = medium; }

    // Runs the program once more on the same machine and drive.
    rehearsal::Outcome run();

    const std::filesystem::path& drive_c() const { return drive_c_; }
    const std::filesystem::path& medium() const { return medium_; }

private:
    TemporaryFolder folder_;
    std::filesystem::path drive_c_;
    std::filesystem::path medium_;
};

// The actions of the usual roads, up to the worker's start.
extern const std::vector<std::string> network_install; // Network, the first row, default box, terms, accepted
extern const std::vector<std::string> usb_install;     // USB, terms, accepted

// Answers of a label printer at the address to every search, at the scenario's adapter.
platform::ScriptedDatagram slp_reply(const std::string& from, const std::string& attributes);

bool has(const std::string& text, const std::string& part);
// Replaces every `from`.
std::string replaced(std::string text, const std::string& from, const std::string& to);
// With "<store>" for each package's folder in the driver store.
std::string mask_store(std::string text);
void replace_in_file(const std::filesystem::path& file, const std::string& from, const std::string& to);

// "" without such a dialog.
std::string caption_of(const rehearsal::Outcome& outcome, int dialog);
const platform::ControlView& control_of(const rehearsal::Outcome& outcome, int dialog, int control);
const platform::PrintQueue* queue_of(const rehearsal::Outcome& outcome, const std::u16string& name);

// The main dialog's controls that the user sees and can use, greyed ones with a "-" behind: "usb- network
// cancel".
std::string shown_controls(const rehearsal::Outcome& outcome);
std::string status_of(const rehearsal::Outcome& outcome);
// The boxes, each as "caption: text" with a "!" in front of a warning, one behind the other with " / "
// between.
std::string boxes_of(const rehearsal::Outcome& outcome);
// What the run changed but files and folders, each with its sign.
std::string changes_of(const rehearsal::Outcome& outcome);
unsigned calls_of(const rehearsal::Outcome& outcome, const std::string& call);

// The run did what it was asked, was never stopped, and left nothing open.
void expect_clean(const rehearsal::Outcome& outcome);

constexpr char success[] = "Vorlane Inc: Driver successfully installed";
constexpr char failure[] = "!Vorlane Inc: Driver failed to install!";
constexpr char install_folder[] = "C:\\Program Files\\Vorlane\\Label 100 Series";
