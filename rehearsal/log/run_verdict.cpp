// What a run left on the machine, and the verdict over it.
#include "rehearsal/log/run_reader.h"

#include <algorithm>

namespace rehearsal::logs {
namespace {

std::string last_element(const std::string& path) {
    const std::size_t separator = path.find_last_of('\\');
    return separator == std::string::npos ? path : path.substr(separator + 1);
}

bool any_in(const std::vector<Step>& steps, std::initializer_list<Area> areas) {
    return std::any_of(steps.begin(), steps.end(), [&](const Step& step) {
        return std::find(areas.begin(), areas.end(), step.line->area) != areas.end();
    });
}

const Step* stopping_step(const Run& run) {
    const auto found = std::find_if(run.steps.begin(), run.steps.end(),
                                    [](const Step& step) { return step.weight == Weight::stopped; });
    return found == run.steps.end() ? nullptr : &*found;
}

void decide(Run& run, Verdict verdict, const std::string& reason) {
    run.verdict = verdict;
    run.reason = reason;
}

} // namespace

void RunReader::tell_leftovers() {
    const auto add = [this](const char* kind, const std::string& what) {
        run_.leftovers.push_back({kind, what});
    };
    if (!install_folder_.empty())
        add("program folder", install_folder_ + " (" + std::to_string(files_) + " files copied by name)");
    if (!start_menu_.empty() && !install_folder_.empty())
        add("Start-menu group",
            start_menu_ + "\\" + last_element(maker_folder_) + "\\" + last_element(install_folder_));
    for (const std::string& shortcut : shortcuts_)
        add("shortcut", last_element(shortcut));
    if (!store_path_.empty())
        add("driver package", store_path_);
    if (driver_done_)
        add("driver", run_.driver + " " + run_.version);
    if (port_made_)
        add("port", port_);
    if (queue_.empty() || queue_failed_)
        return;
    add("queue", queue_ + " with " + std::to_string(labels_) + " label sizes");
    if (run_.default_wanted)
        add("default printer", queue_);
}

// A run in which no install began.
void RunReader::judge_without_install() {
    Run& run = run_;
    if (const Step* step = stopping_step(run); step != nullptr && run.state != 'C')
        decide(run, Verdict::failed, step->meaning);
    else if (run.state == 'C')
        decide(run, Verdict::blocked,
               "The driver is installed in another version; it has to be removed before this one can come.");
    else if (run.inf.empty() && last_role_ == Role::inf_rejected)
        decide(run, Verdict::failed, "No driver was found on the medium; nothing was installed.");
    else if (run.state == 0)
        decide(run, Verdict::unfinished, "The log ends before the run was ready for the user.");
    else if (!run.steps.empty())
        decide(run, Verdict::failed, "A step failed, and nothing was installed.");
    else if (run.searched && run.printers.empty())
        decide(run, Verdict::failed, "The search found no printer of the model, and nothing was installed.");
    else
        decide(run, Verdict::left, "The user left without installing anything.");
}

void RunReader::judge() {
    const bool driver_there = driver_done_ || run_.state == 'A' || run_.state == 'B';
    const bool usb = run_.road == "USB";
    if (!began_) {
        judge_without_install();
    } else if (const Step* step = stopping_step(run_)) {
        decide(run_, Verdict::failed, step->meaning);
    } else if (usb ? !driver_there : queue_.empty()) {
        decide(run_, Verdict::unfinished, "The log ends in the middle of the install.");
    } else if (queue_failed_) {
        decide(run_, Verdict::incomplete, "The success box came, but there is no print queue.");
    } else if (!usb && !port_made_) {
        decide(run_, Verdict::incomplete, "The success box came, but the printer's port wasn't made.");
    } else if (!usb && labels_ == 0) {
        decide(run_, Verdict::incomplete,
               "The queue has no label sizes: media.inf has no row that the setup reads, or the log was cut "
               "there.");
    } else if (any_in(run_.steps, {Area::files, Area::driver, Area::port, Area::queue})) {
        decide(run_, Verdict::incomplete, "The success box came, but not every step was done.");
    } else {
        decide(run_, Verdict::installed,
               usb ? "Everything is in place; the USB cable may be plugged in." : "Everything is in place.");
    }
}

} // namespace rehearsal::logs
