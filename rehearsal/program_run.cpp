#include "rehearsal/program_run.h"

#include "calls/run/failed_steps.h"
#include "calls/run/session.h"
#include "calls/windows/user_input.h"
#include "machine/text.h"
#include "rehearsal/asked.h"
#include "rehearsal/embedded_resources.h"
#include "state/app_state.h"

#include <windows.h>

#include <algorithm>
#include <memory>
#include <utility>

int WINAPI WinMain(HINSTANCE instance, HINSTANCE, LPSTR command_line, int show);

namespace fs = std::filesystem;

namespace rehearsal {
namespace {

// A folder that the machine has from the start.
void make_folder(const fs::path& drive_c, const std::u16string& windows_path) {
    std::string path = platform::to_utf8(windows_path).substr(3); // behind "C:\"
    std::replace(path.begin(), path.end(), '\\', '/');
    fs::create_directories(drive_c / path);
}

// The program's state is that of a new process.
void reset_program() {
    std::destroy_at(&app);
    std::construct_at(&app);
}

// What may be left when a process ends: the log's mutex, dialogs, modules, and what the end itself closes.
bool may_stay_open(const std::string& kind) {
    return kind == "mutex" || kind == "window" || kind == "cursor" || kind == "thread" || kind == "module";
}

void enter_program(platform::Session& session, const ProgramRun& run, Outcome& outcome) {
    std::string arguments = run.command_line;
    const HINSTANCE instance = GetModuleHandleW(nullptr);
    try {
        outcome.exit_code = run.entry ? run.entry(instance, arguments.data())
                                      : WinMain(instance, nullptr, arguments.data(), SW_SHOWNORMAL);
    } catch (const platform::RunStopped& stop) {
        outcome.refusal = stop.what();
    }
    session.join_threads();
    if (session.gate.stopped())
        outcome.refusal = session.gate.stop_reason();
}

// Puts what the session has seen behind what is there already of the sibling's.
template<class List>
void append(List& list, const List& more) {
    list.insert(list.end(), more.begin(), more.end());
}

void look_at_session(platform::Session& session, Outcome& outcome) {
    const std::vector<platform::DialogView> dialogs = platform::dialogs();
    append(outcome.dialogs, dialogs);
    if (!dialogs.empty()) // not the program that only handed over
        outcome.asked = what_was_asked(dialogs, session.machine.code_page);
    for (const platform::FailedStep& step : platform::failed_steps())
        outcome.failed_steps.push_back((step.logged ? "log: " : "failed: ") + platform::to_utf8(step.text));
    outcome.warnings += platform::announced_warnings();
    append(outcome.misuses, session.gate.misuses());
    append(outcome.journal, session.gate.journal());
    for (const std::string& kind : session.handles.open_kinds())
        if (!may_stay_open(kind))
            outcome.leaks.push_back(kind);
    for (const std::string& block : session.memory.live())
        outcome.leaks.push_back(block);
}

platform::SessionOptions session_options(const ProgramRun& run) {
    platform::SessionOptions options;
    options.drive_c = run.drive_c;
    options.medium = run.medium.empty() ? run.medium : fs::absolute(run.medium);
    options.resources = embedded_resources();
    options.command_line = platform::to_utf16(run.command_line);
    options.real_time = run.real_time;
    options.program_bits = run.program_bits;
    options.lend_sibling = run.lend_sibling;
    return options;
}

// What a session of one of the two programs needs, and where it leaves what it saw.
struct Stage {
    const ProgramRun& run;
    platform::Machine& machine;
    platform::User& user;
    LogFollower& log;
    Outcome& outcome;
};

platform::ChildEnd run_sibling(const Stage& stage, const std::u16string& command_line);

// One program from its start to its end. How long it ran, in milliseconds.
std::uint32_t run_session(const Stage& stage, platform::SessionOptions options) {
    const ProgramRun& run = stage.run;
    reset_program();
    if (run.hand_over)
        options.run_sibling = [&stage](const std::u16string& command) { return run_sibling(stage, command); };
    platform::Session session(stage.machine, options, stage.user);
    session.gate.on_call = [&](const platform::JournalEntry& entry) {
        // The first thing done with the open log; nothing is in it yet of this run.
        if (entry.call == "WriteFile" && entry.thread == 0)
            stage.log.find();
        if (run.on_call)
            run.on_call(entry);
    };
    const std::uint32_t begun = session.clock.ticks();
    enter_program(session, run, stage.outcome);
    const std::uint32_t passed = session.clock.ticks() - begun;
    look_at_session(session, stage.outcome);
    stage.log.take();
    if (run.finished)
        run.finished();
    return passed;
}

// The same program again with 64 bits, on the same machine and with the same user, while the one that started
// it waits. Its own state is put back for what that one still does.
platform::ChildEnd run_sibling(const Stage& stage, const std::u16string& command_line) {
    const HINSTANCE instance = app.app_instance;
    const auto silent = app.silent;
    const std::u16string name = std::exchange(stage.machine.program_name, platform::sibling_name);
    const std::size_t path_end = command_line.find(u'"', 1) + 1; // the program quotes the path
    ProgramRun run = stage.run;
    run.command_line = platform::to_utf8(
        command_line.substr(std::min(command_line.find_first_not_of(u' ', path_end), command_line.size())));
    run.program_bits = 64;
    run.hand_over = false;
    platform::SessionOptions options = session_options(run);
    options.child = true;
    platform::ChildEnd end;
    end.milliseconds = run_session({run, stage.machine, stage.user, stage.log, stage.outcome}, options);
    end.exit_code = static_cast<std::uint32_t>(stage.outcome.exit_code);
    stage.machine.program_name = name;
    reset_program();
    app.app_instance = instance;
    app.silent = silent;
    return end;
}

} // namespace

fs::path drive_of(const fs::path& machine_file) {
    return fs::path(machine_file).concat(".drive-c");
}

std::vector<std::u16string> first_folders(const platform::Machine& machine) {
    return {machine.folders.windows + u"\\Temp",
            machine.folders.windows + u"\\System32\\DriverStore\\FileRepository",
            machine.folders.program_files, machine.folders.common_programs};
}

void prepare_drive(const platform::Machine& machine, const fs::path& drive_c) {
    for (const std::u16string& folder : first_folders(machine))
        make_folder(drive_c, folder);
}

void choose_program(const platform::Machine& machine, ProgramRun& run) {
    if (machine.system == platform::System::x86 ||
        platform::same_name(machine.program_name, platform::sibling_name))
        return;
    run.program_bits = 32;
    run.hand_over = true;
    const bool known =
        std::any_of(machine.child_programs.begin(), machine.child_programs.end(), [](const auto& child) {
            return platform::same_name(child.name, platform::sibling_name);
        });
    std::error_code ignored;
    run.lend_sibling = known && !fs::exists(run.medium / platform::to_utf8(platform::sibling_name), ignored);
}

Outcome run_program(const ProgramRun& run, platform::Machine& machine, platform::User& user,
                    LogFollower& log) {
    Outcome outcome;
    prepare_drive(machine, run.drive_c);
    outcome.before = machine;
    const bool with_digests = run.original_drive.empty();
    outcome.files_before = list_drive(run.drive_c, with_digests);
    run_session({run, machine, user, log, outcome}, session_options(run));
    outcome.log = log.text();
    outcome.after = machine;
    outcome.files_after = list_drive(run.drive_c, with_digests);
    if (!with_digests)
        digest_differing(outcome.files_before, run.original_drive, outcome.files_after, run.drive_c);
    return outcome;
}

} // namespace rehearsal
