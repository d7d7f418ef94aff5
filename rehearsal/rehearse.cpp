#include "rehearsal/rehearse.h"

#include "machine/machine_json.h"
#include "rehearsal/check/check.h"
#include "rehearsal/exit_status.h"
#include "rehearsal/fault_names.h"
#include "rehearsal/judge.h"
#include "rehearsal/machine_view.h"
#include "rehearsal/program_run.h"
#include "rehearsal/report.h"
#include "rehearsal/shown_text.h"
#include "rehearsal/users.h"

#include <fstream>
#include <iostream>
#include <memory>

#include <unistd.h>

namespace fs = std::filesystem;

namespace rehearsal {
namespace {

// A folder of the rehearsal's own, taken away at its end.
class TemporaryFolder {
public:
    TemporaryFolder() {
        std::string name = (fs::temp_directory_path() / "trk-rehearsal-XXXXXX").string();
        if (mkdtemp(name.data()) == nullptr)
            throw std::runtime_error("no temporary folder can be made");
        path = name;
    }
    ~TemporaryFolder() {
        std::error_code ignored;
        fs::remove_all(path, ignored);
    }
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;
    fs::path path;
};

fs::path choose_drive_c(const RehearseOptions& options, std::unique_ptr<TemporaryFolder>& temporary) {
    if (!options.drive_c.empty())
        return options.drive_c;
    if (!options.machine_file.empty())
        return drive_of(options.machine_file);
    temporary = std::make_unique<TemporaryFolder>();
    return temporary->path;
}

std::unique_ptr<ViewedUser> choose_user(const RehearseOptions& options, TerminalView& view) {
    if (!options.script.empty())
        return std::make_unique<ScriptUser>(view, read_script(options.script), options.script.string());
    if (isatty(STDIN_FILENO))
        return std::make_unique<Person>(view, std::cin, std::cout);
    return std::make_unique<ScriptUser>(view, std::vector<Action>{});
}

Outcome run(const RehearseOptions& options, platform::Machine& machine, const fs::path& drive_c) {
    TerminalView view(std::cout, options.quiet);
    const std::unique_ptr<ViewedUser> user = choose_user(options, view);
    ProgramRun program;
    program.drive_c = drive_c;
    program.medium = options.medium;
    program.command_line = options.command_line;
    program.real_time = true;
    program.finished = [&view] { view.look(); };
    Outcome outcome = run_program(program, machine, *user, view.log);
    outcome.boxes = user->boxes;
    user->finish(outcome);
    outcome.problem = user->problem;
    return outcome;
}

void write_report(const RehearseOptions& options, const std::string& text) {
    if (options.report == "-") {
        std::cout << text;
        return;
    }
    std::ofstream file(options.report);
    if (!(file << text).flush())
        throw std::runtime_error(options.report + ": can't be written");
}

int rehearse_on(const RehearseOptions& options) {
    platform::Machine machine = options.machine_file.empty() ? platform::default_machine()
                                                             : platform::load_machine(options.machine_file);
    check_fault_names(machine, options.machine_file);
    std::unique_ptr<TemporaryFolder> temporary;
    const fs::path drive_c = choose_drive_c(options, temporary);
    const Outcome outcome = run(options, machine, drive_c);
    if (!options.machine_file.empty())
        platform::save_machine(machine, options.machine_file);
    if (!options.quiet)
        print_machine(std::cout, outcome, drive_c);
    const Verdict verdict = judge_install(outcome, options.medium, drive_c);
    tell_verdict(verdict, std::cout);
    if (verdict.status != ended_well)
        check::explain_failed_run(std::cout, options.medium);
    if (!options.report.empty())
        write_report(options, report_text(outcome, verdict, drive_c));
    return verdict.status;
}

} // namespace

int rehearse(const RehearseOptions& options) {
    try {
        return rehearse_on(options);
    } catch (const std::exception& error) { // an unreadable file, with its name, line and reason
        std::cerr << "trk: " << error.what() << "\n";
        return wrong_usage;
    }
}

} // namespace rehearsal
