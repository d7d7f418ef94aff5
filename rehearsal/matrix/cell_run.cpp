#include "rehearsal/matrix/cell_run.h"

#include "machine/machine_json.h"
#include "rehearsal/difference.h"
#include "rehearsal/exit_status.h"
#include "rehearsal/judge.h"
#include "rehearsal/program_run.h"
#include "rehearsal/users.h"

#include <algorithm>
#include <sstream>
#include <string_view>

namespace fs = std::filesystem;

namespace rehearsal::matrix {
namespace {

std::vector<Action> actions_of(const Cell& cell) {
    std::istringstream lines(script_text(cell));
    std::vector<Action> actions;
    for (std::string line; std::getline(lines, line);)
        if (Action action; parse_action(line, action))
            actions.push_back(action);
    return actions;
}

std::string on_one_line(std::string text) {
    std::erase(text, '\r');
    std::replace(text.begin(), text.end(), '\n', ' ');
    return text;
}

// What came and changed, without what lies in a folder that came.
std::vector<std::string> things_left(const Outcome& outcome) {
    constexpr std::string_view folder_line = "+ folder ";
    std::vector<std::string> left;
    std::string inside = "\n"; // no line begins so
    std::size_t files = 0;
    const auto close_folder = [&] {
        if (files != 0)
            left.back() += " (" + std::to_string(files) + (files == 1 ? " file)" : " files)");
        files = 0;
    };
    for (const std::string& line :
         difference({outcome.before, outcome.files_before}, {outcome.after, outcome.files_after})) {
        const std::size_t path = line.find(' ', 2) + 1;
        if (line.compare(path, inside.size(), inside) == 0) {
            files += line.starts_with("+ file ") ? 1u : 0u;
            continue;
        }
        close_folder();
        inside = line.starts_with(folder_line) ? line.substr(path) + "\\" : "\n";
        if (line.starts_with("+ ") || line.starts_with("* "))
            left.push_back(line.substr(2));
    }
    close_folder();
    return left;
}

Result result_of(const Cell& cell, const Outcome& outcome, const Verdict& verdict) {
    constexpr std::uint32_t icon_mask = 0xF0, exclamation = 0x30;
    Result result;
    result.cell = cell;
    result.status = verdict.status;
    result.verdict = verdict.line;
    result.exit_code = outcome.exit_code;
    result.missing = verdict.missing;
    unsigned warnings = outcome.warnings; // they come before every other box
    for (const platform::BoxView& box : outcome.boxes) {
        const std::uint32_t icon = box.flags & icon_mask;
        result.success_box |= icon == 0;
        result.failure_box |= icon == exclamation && warnings == 0;
        warnings -= icon == exclamation && warnings != 0 ? 1 : 0;
        result.box = on_one_line(box.text);
    }
    result.stayed = things_left(outcome);
    return result;
}

std::vector<std::string> calls_of(const Outcome& outcome) {
    std::vector<std::string> calls;
    for (const platform::JournalEntry& entry : outcome.journal)
        if (entry.can_fail && std::find(calls.begin(), calls.end(), entry.call) == calls.end())
            calls.push_back(entry.call);
    return calls;
}

} // namespace

CellEnd run_cell(const Cell& cell, const MediumDriver& driver, const fs::path& medium,
                 const fs::path& drive_c) {
    platform::Machine machine = platform::parse_machine(machine_text(cell, driver), cell.name());
    std::ostringstream nowhere;
    TerminalView view(nowhere, true);
    ScriptUser user(view, actions_of(cell));
    ProgramRun run;
    run.drive_c = drive_c;
    run.medium = medium;
    choose_program(machine, run);
    Outcome outcome = run_program(run, machine, user, view.log);
    outcome.boxes = user.boxes;
    user.finish(outcome);
    outcome.problem = user.problem;
    return {result_of(cell, outcome, judge_install(outcome, medium, drive_c)), calls_of(outcome)};
}

} // namespace rehearsal::matrix
