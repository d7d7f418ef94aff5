#include "rehearsal/remove.h"

#include "machine/machine_json.h"
#include "machine/text.h"
#include "rehearsal/difference.h"
#include "rehearsal/exit_status.h"
#include "rehearsal/fault_names.h"
#include "rehearsal/judge.h"
#include "rehearsal/output_file.h"
#include "rehearsal/own_output.h"
#include "rehearsal/program_run.h"
#include "rehearsal/remover.h"
#include "rehearsal/shown_text.h"
#include "rehearsal/staged_drive.h"
#include "rehearsal/unfinished.h"
#include "rehearsal/users.h"

#include <algorithm>
#include <iostream>
#include <optional>

namespace fs = std::filesystem;

namespace rehearsal {
namespace {

std::filesystem::path on_drive(const fs::path& drive_c, const std::u16string& windows_path) {
    std::string path = platform::to_utf8(windows_path).substr(3); // behind "C:\"
    std::replace(path.begin(), path.end(), '\\', '/');
    return drive_c / path;
}

// The model to remove: the one asked for, or the only folder of the maker's.
std::string choose_model(const RemoveOptions& options, const platform::Machine& machine,
                         const fs::path& drive_c) {
    if (!options.model.empty())
        return options.model;
    const fs::path maker = on_drive(drive_c, machine.folders.program_files) / "Vorlane";
    std::vector<std::string> models;
    if (fs::is_directory(maker))
        for (const fs::directory_entry& entry : fs::directory_iterator(maker))
            models.push_back(entry.path().filename().string());
    if (models.size() == 1)
        return models.front();
    std::sort(models.begin(), models.end());
    std::string names;
    for (const std::string& model : models)
        names += (names.empty() ? ": " : ", ") + ("\"" + shown_text(model) + "\"");
    throw std::runtime_error(options.machine_file.string() + ": " +
                             (models.empty() ? "no model is installed"
                                             : std::to_string(models.size()) + " models are installed" +
                                                   names + "; name one with --model"));
}

// The earlier machine and its drive, which is looked at as it is.
MachineState read_before(const fs::path& file) {
    if (was_cut_off(file))
        const MachineLock lock(file);
    MachineState before;
    before.machine = platform::load_machine(file);
    if (const fs::path drive = drive_of(file); fs::is_directory(drive))
        before.files = list_drive(drive, false);
    for (const std::u16string& folder : first_folders(before.machine))
        for (std::u16string path = folder; path.size() > 3; path.erase(path.rfind(u'\\')))
            before.files.try_emplace(platform::to_utf8(path), DriveFile{0, {}, true, 0});
    return before;
}

void tell_difference(MachineState& before, const fs::path& before_drive, const Outcome& outcome,
                     const fs::path& drive_c, std::ostream& out) {
    MachineState after = {outcome.after, outcome.files_after};
    digest_differing(before.files, before_drive, after.files, drive_c);
    out << "\n  == What is different from before the first install ==\n";
    for (const std::string& line : difference(before, after))
        out << "    " << shown_text(line) << "\n";
}

int remove_from(const RemoveOptions& options) {
    const MachineLock lock(options.machine_file);
    OutputFile machine_file(options.machine_file);
    platform::Machine machine = platform::load_machine(options.machine_file);
    std::optional<MachineState> before;
    if (!options.before.empty())
        before = read_before(options.before);
    StagedDrive drive(options.drive_c.empty() ? drive_of(options.machine_file) : options.drive_c);
    Removal removal;
    removal.model = platform::to_utf16(choose_model(options, machine, drive.path()));
    check_fault_names(machine, options.machine_file);
    OwnOutput own;
    TerminalView view(own.stream(), options.quiet);
    ScriptUser user(view, {});
    ProgramRun run;
    run.drive_c = drive.path();
    run.original_drive = drive.original();
    run.entry = [&removal](HINSTANCE instance, char*) { return run_remover(instance, removal); };
    run.finished = [&view] { view.look(); };
    const Outcome outcome = run_program(run, machine, user, view.log);
    if (before)
        tell_difference(*before, drive_of(options.before), outcome, drive.path(), own.stream());
    const Verdict verdict = judge_removal(outcome, removal);
    if (outcome.refusal.empty()) {
        const std::vector<Replacement> all = {drive.replacement(), finished_machine(machine_file, machine)};
        const std::unique_lock held = hold_signals();
        change_over(options.machine_file, all);
    }
    tell_verdict(verdict, own.stream());
    own.check();
    return verdict.status;
}

} // namespace

int remove(const RemoveOptions& options) {
    end_cleanly_on_signals();
    try {
        return remove_from(options);
    } catch (const std::exception& error) {
        std::cerr << "trk: " << shown_text(error.what()) << "\n";
        return wrong_usage;
    }
}

} // namespace rehearsal
