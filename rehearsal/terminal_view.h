// What a rehearsal shows while it runs: the dialogs as they change, the user's actions, the boxes, the log as
// it grows.
#pragma once

#include "calls/run/user.h"
#include "rehearsal/log_follower.h"
#include "rehearsal/timeline.h"

#include <map>
#include <mutex>
#include <ostream>
#include <string>

namespace rehearsal {

// Text for one dialog: caption, what can be seen in reading order, and what is hidden. Lines that differ from
// the same dialog's last text begin with an asterisk; only they are given, and "..." for the rest, when the
// same controls can still be seen and used.
std::string draw_dialog(const platform::DialogView& dialog, const platform::DialogView* before);

class TerminalView {
public:
    TerminalView(std::ostream& out, bool quiet) : out_(out), quiet_(quiet) {}
    ~TerminalView();
    TerminalView(const TerminalView&) = delete;
    TerminalView& operator=(const TerminalView&) = delete;

    void action(const std::string& shown);
    void box(const platform::BoxView& box);
    // Looks what is new; on the program's main thread, and while it is at rest.
    void look();
    void look_at_log(); // from any thread
    void end();         // the run is over: a log line that was only begun is shown too

    // All that was shown so far, quiet or not; when nothing of the run goes on any more.
    const Timeline& timeline() const { return timeline_; }

    LogFollower log;

private:
    void print_log();
    void end_log_line();
    void print_dialogs();

    std::ostream& out_;
    const bool quiet_;
    std::mutex mutex_;
    std::map<int, platform::DialogView> last_;
    std::string log_line_; // begun, and not ended yet
    Timeline timeline_;
};

} // namespace rehearsal
