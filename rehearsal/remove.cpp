#include "rehearsal/remove.h"

#include "machine/machine_json.h"
#include "machine/text.h"
#include "rehearsal/difference.h"
#include "rehearsal/exit_status.h"
#include "rehearsal/program_run.h"
#include "rehearsal/remover.h"
#include "rehearsal/users.h"

#include <iostream>

namespace fs = std::filesystem;

namespace rehearsal {
namespace {

// The model to remove: the one asked for, or the only folder of the maker's.
std::string choose_model(const RemoveOptions& options, const fs::path& drive_c) {
    if (!options.model.empty())
        return options.model;
    const fs::path maker = drive_c / "Program Files" / "Vorlane";
    std::vector<std::string> models;
    if (fs::is_directory(maker))
        for (const fs::directory_entry& entry : fs::directory_iterator(maker))
            models.push_back(entry.path().filename().string());
    if (models.size() == 1)
        return models.front();
    throw std::runtime_error(options.machine_file.string() + ": " + std::to_string(models.size()) +
                             " models are installed; name one with --model");
}

void tell_difference(const RemoveOptions& options, const Outcome& outcome) {
    MachineState before;
    before.machine = platform::load_machine(options.before);
    const fs::path drive = drive_of(options.before);
    fs::create_directories(drive);
    prepare_drive(before.machine, drive);
    before.files = list_drive(drive);
    std::cout << "\n  == What is different from before the first install ==\n";
    for (const std::string& line : difference(before, {outcome.after, outcome.files_after}))
        std::cout << "    " << line << "\n";
}

int remove_from(const RemoveOptions& options) {
    platform::Machine machine = platform::load_machine(options.machine_file);
    const fs::path drive_c = options.drive_c.empty() ? drive_of(options.machine_file) : options.drive_c;
    const std::u16string model = platform::to_utf16(choose_model(options, drive_c));
    TerminalView view(std::cout, options.quiet);
    ScriptUser user(view, {});
    ProgramRun run;
    run.drive_c = drive_c;
    run.entry = [&model](HINSTANCE instance, char*) { return run_remover(instance, model); };
    run.finished = [&view] { view.look(); };
    const Outcome outcome = run_program(run, machine, user, view.log);
    platform::save_machine(machine, options.machine_file);
    if (!options.before.empty())
        tell_difference(options, outcome);
    if (!outcome.refusal.empty()) {
        std::cerr << "trk: the run was stopped: " << outcome.refusal << "\n";
        return layer_refused;
    }
    int status = outcome.exit_code == 0 ? ended_well : ended_badly;
    if (status == ended_badly)
        std::cerr << "trk: the removal left something behind or found nothing to remove; the log tells\n";
    for (const std::string& misuse : outcome.misuses) {
        std::cerr << "trk: forbidden by the platform: " << misuse << "\n";
        status = ended_badly;
    }
    return status;
}

} // namespace

int remove(const RemoveOptions& options) {
    try {
        return remove_from(options);
    } catch (const std::exception& error) {
        std::cerr << "trk: " << error.what() << "\n";
        return wrong_usage;
    }
}

} // namespace rehearsal
