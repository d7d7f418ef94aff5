#include "rehearsal/rehearse.h"

#include "machine/machine_json.h"
#include "rehearsal/exit_status.h"
#include "rehearsal/machine_view.h"
#include "rehearsal/program_run.h"
#include "rehearsal/report.h"
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
        return std::make_unique<ScriptUser>(view, read_script(options.script));
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
    outcome.problem = user->problem;
    outcome.boxes = user->boxes;
    return outcome;
}

// Tells on standard error what went wrong, and turns it into the exit status.
int judge(const RehearseOptions& options, const Outcome& outcome) {
    if (!outcome.refusal.empty()) {
        std::cerr << "trk: the run was stopped: " << outcome.refusal << "\n";
        return layer_refused;
    }
    for (const std::string& call : find_idle_faults(outcome))
        std::cerr << "trk: note: the fault of " << call << " never struck\n";
    int status = ended_well;
    const auto complain = [&](const std::string& what) {
        std::cerr << "trk: " << what << "\n";
        status = ended_badly;
    };
    if (!outcome.problem.empty())
        complain(options.script.string() + ": " + outcome.problem);
    for (const std::string& failure : find_failures(outcome))
        complain(failure);
    for (const std::string& misuse : outcome.misuses)
        complain("forbidden by the platform: " + misuse);
    for (const std::string& leak : outcome.leaks)
        complain("left open: " + leak);
    if (outcome.exit_code != 0)
        complain("the program's exit code is " + std::to_string(outcome.exit_code));
    return status;
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
    std::unique_ptr<TemporaryFolder> temporary;
    const fs::path drive_c = choose_drive_c(options, temporary);
    const Outcome outcome = run(options, machine, drive_c);
    if (!options.machine_file.empty())
        platform::save_machine(machine, options.machine_file);
    if (!options.quiet)
        print_machine(std::cout, outcome, drive_c);
    std::cout << std::flush;
    const int status = judge(options, outcome);
    if (!options.report.empty())
        write_report(options, report_text(outcome, status, drive_c));
    return status;
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
