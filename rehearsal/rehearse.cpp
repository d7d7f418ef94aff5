#include "rehearsal/rehearse.h"

#include "calls/run/session.h"
#include "machine/machine_json.h"
#include "machine/text.h"
#include "rehearsal/check/check.h"
#include "rehearsal/exit_status.h"
#include "rehearsal/fault_names.h"
#include "rehearsal/judge.h"
#include "rehearsal/machine_view.h"
#include "rehearsal/output_file.h"
#include "rehearsal/own_output.h"
#include "rehearsal/pages/run_page.h"
#include "rehearsal/profiles.h"
#include "rehearsal/program_run.h"
#include "rehearsal/report.h"
#include "rehearsal/shown_text.h"
#include "rehearsal/staged_drive.h"
#include "rehearsal/unfinished.h"
#include "rehearsal/users.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <iostream>
#include <memory>
#include <optional>

#include <unistd.h>

namespace fs = std::filesystem;

namespace rehearsal {
namespace {

// A folder for a drive that isn't kept.
fs::path make_temporary_folder() {
    std::string name = (fs::temp_directory_path() / "trk-rehearsal-XXXXXX").string();
    if (mkdtemp(name.data()) == nullptr)
        throw std::runtime_error(name + ": can't be made: " + std::strerror(errno));
    return name;
}

// Everything that a run reads and writes beside the medium. Each part is checked or opened before the run.
struct Surroundings {
    explicit Surroundings(const RehearseOptions& options);
    const fs::path& drive_c() const { return drive ? drive->path() : temporary->path(); }

    std::optional<MachineLock> lock;
    std::optional<OutputFile> report;
    std::optional<OutputFile> record;
    std::optional<OutputFile> page;
    std::optional<OutputFile> machine_file;
    std::optional<StagedDrive> drive;    // of a machine that is kept
    std::optional<Unfinished> temporary; // the drive of one that isn't
};

Surroundings::Surroundings(const RehearseOptions& options) {
    const fs::path report_file = options.report == "-" ? fs::path() : fs::path(options.report);
    refuse_same_file("--machine", options.machine_file, "--report", report_file);
    refuse_same_file("--script", options.script, "--report", report_file);
    refuse_same_file("--script", options.script, "--machine", options.machine_file);
    refuse_same_file("--machine", options.machine_file, "--record", options.record);
    refuse_same_file("--report", report_file, "--record", options.record);
    refuse_same_file("--machine", options.machine_file, "--html", options.html);
    refuse_same_file("--script", options.script, "--html", options.html);
    refuse_same_file("--report", report_file, "--html", options.html);
    if (!options.machine_file.empty())
        lock.emplace(options.machine_file);
    if (!report_file.empty())
        report.emplace(report_file);
    if (!options.record.empty())
        record.emplace(options.record);
    if (!options.html.empty())
        page.emplace(options.html);
    if (!options.machine_file.empty())
        machine_file.emplace(options.machine_file);
    if (!options.drive_c.empty())
        drive.emplace(options.drive_c);
    else if (!options.machine_file.empty())
        drive.emplace(drive_of(options.machine_file));
    else
        temporary.emplace(make_temporary_folder());
}

std::string script_text(const std::vector<std::string>& lines) {
    std::string text;
    for (const std::string& line : lines)
        text += line + "\n";
    return text;
}

std::unique_ptr<ViewedUser> choose_user(const RehearseOptions& options, TerminalView& view,
                                        std::ostream& talk) {
    if (!options.script.empty())
        return std::make_unique<ScriptUser>(view, read_script(options.script), options.script.string());
    if (isatty(STDIN_FILENO) || !options.record.empty())
        return std::make_unique<Person>(view, std::cin, talk);
    return std::make_unique<ScriptUser>(view, std::vector<Action>{});
}

// A sibling that isn't on the medium is told of.
void note_lent_sibling(const ProgramRun& program) {
    if (!program.lend_sibling)
        return;
    const std::string name = platform::to_utf8(platform::sibling_name);
    std::error_code ignored;
    std::cerr << "trk: note: the medium has no " << name << ", which a 64-bit system needs; "
              << (fs::exists(fs::path("dist") / name, ignored) ? "that of dist stands in for it"
                                                               : "the rehearsal stands in for it")
              << "\n";
}

Outcome run(const RehearseOptions& options, platform::Machine& machine, Surroundings& around,
            std::ostream& talk, Timeline& timeline) {
    TerminalView view(talk, options.quiet);
    const std::unique_ptr<ViewedUser> user = choose_user(options, view, talk);
    ProgramRun program;
    program.drive_c = around.drive_c();
    program.original_drive = around.drive ? around.drive->original() : fs::path();
    program.medium = options.medium;
    program.command_line = options.command_line;
    program.real_time = true;
    choose_program(machine, program);
    note_lent_sibling(program);
    program.finished = [&view] { view.look(); };
    Outcome outcome = run_program(program, machine, *user, view.log);
    outcome.boxes = user->boxes;
    user->finish(outcome);
    outcome.problem = user->problem;
    if (around.record)
        around.record->write(script_text(user->done));
    view.end();
    timeline = view.timeline();
    return outcome;
}

// The run as a page, with what a check of the medium finds.
std::string page_of(const RehearseOptions& options, const Outcome& outcome, const Verdict& verdict,
                    const Timeline& timeline) {
    const std::vector<check::Finding> findings = check::check_medium(options.medium);
    const check::Medium medium(options.medium);
    const std::string machine =
        options.profile.empty() ? options.machine_file.string() : "profile " + options.profile;
    return pages::run_page({machine, options.script.string(), timeline, outcome, verdict, medium, findings});
}

// What a run leaves beside its machine, as text; empty where it isn't wanted.
struct Results {
    std::string report, page;
};

Results make_results(const RehearseOptions& options, const Outcome& outcome, const Verdict& verdict,
                     const Timeline& timeline, const fs::path& drive_c) {
    Results results;
    if (!options.report.empty())
        results.report = report_text(outcome, verdict, drive_c);
    if (!options.html.empty())
        results.page = page_of(options, outcome, verdict, timeline);
    return results;
}

// All results into their places, or none. A run that was stopped leaves the machine as it was.
void keep_results(const RehearseOptions& options, Surroundings& around, const platform::Machine& machine,
                  const Results& results, bool stopped) {
    std::vector<Replacement> all;
    const auto write = [&all](std::optional<OutputFile>& file, const std::string& text) {
        if (!file)
            return;
        file->write(text);
        if (const auto replacement = file->replacement())
            all.push_back(*replacement);
    };
    if (around.drive && !stopped)
        all.push_back(around.drive->replacement());
    write(around.report, results.report);
    write(around.page, results.page);
    if (around.record)
        if (const auto replacement = around.record->replacement())
            all.push_back(*replacement);
    if (around.machine_file && !stopped)
        all.push_back(finished_machine(*around.machine_file, machine));
    const std::unique_lock held = hold_signals();
    change_over(options.machine_file, all);
}

platform::Machine first_machine(const RehearseOptions& options) {
    if (!options.machine_file.empty())
        return platform::load_machine(options.machine_file);
    return options.profile.empty() ? platform::default_machine()
                                   : profile_machine(options.profile, options.medium);
}

int rehearse_on(const RehearseOptions& options) {
    Surroundings around(options);
    platform::Machine machine = first_machine(options);
    check_fault_names(machine, options.machine_file);
    OwnOutput own;
    const bool to_output = options.report == "-";
    std::ostream& talk = to_output ? std::cerr : own.stream();
    Timeline timeline;
    const Outcome outcome = run(options, machine, around, talk, timeline);
    if (!options.quiet)
        print_machine(talk, outcome, around.drive_c());
    const Verdict verdict = judge_install(outcome, options.medium, around.drive_c());
    const Results results = make_results(options, outcome, verdict, timeline, around.drive_c());
    keep_results(options, around, machine, results, !outcome.refusal.empty());
    tell_verdict(verdict, talk);
    if (verdict.status != ended_well)
        check::explain_failed_run(talk, options.medium);
    if (to_output)
        own.stream() << results.report << std::flush;
    own.check();
    return verdict.status;
}

} // namespace

int rehearse(const RehearseOptions& options) {
    end_cleanly_on_signals();
    try {
        return rehearse_on(options);
    } catch (const std::exception& error) { // an unreadable file, with its name, line and reason
        std::cerr << "trk: " << shown_text(error.what()) << "\n";
        return wrong_usage;
    }
}

} // namespace rehearsal
