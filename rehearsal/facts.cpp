#include "rehearsal/facts.h"

#include "machine/inf_package.h"
#include "machine/text.h"
#include "rehearsal/exit_status.h"
#include "rehearsal/judge.h"
#include "rehearsal/log_follower.h"
#include "rehearsal/machine_view.h"
#include "rehearsal/medium_driver.h"
#include "rehearsal/program_run.h"
#include "rehearsal/temporary_folder.h"
#include "rehearsal/users.h"

#include <algorithm>
#include <sstream>
#include <stdexcept>

namespace fs = std::filesystem;

namespace rehearsal {
namespace {

constexpr char example_address[] = "192.0.2.10"; // of the range for examples (RFC 5737)

void add_models(MediumFacts& facts, const std::u16string& inf, const char16_t* environment) {
    platform::InfPackage package;
    if (platform::read_inf_package(inf, environment, package) != 0)
        return;
    for (const platform::PackageModel& model : package.models) {
        ModelFact fact{platform::to_utf8(environment), platform::to_utf8(model.driver_name),
                       platform::to_utf8(model.install_section), platform::to_utf8(model.hardware_id), false};
        fact.installed = fact.driver == facts.driver;
        facts.models.push_back(fact);
    }
}

void read_models(MediumFacts& facts, const check::Medium& medium) {
    const check::MediumEntry* file = medium.find_file("Drivers/" + facts.inf);
    if (file == nullptr)
        return;
    const std::u16string text = platform::to_utf16(ansi_to_utf8(medium.bytes(*file), driver_code_page));
    for (const char16_t* environment : {u"Windows NT x86", u"Windows x64", u"Windows ARM64"})
        add_models(facts, text, environment);
}

void read_driver(MediumFacts& facts, const check::Medium& medium) {
    const std::optional<MediumDriver> driver = read_medium_driver(medium);
    if (!driver)
        throw std::runtime_error("the setup finds no driver on this medium; trk check tells why");
    facts.driver = driver->name;
    facts.version = version_text(driver->version);
    facts.inf = driver->inf;
    facts.model = driver->model;
    facts.usb = driver->usb;
    read_models(facts, medium);
}

std::vector<Action> install_actions(bool usb) {
    std::vector<std::string> lines = {"press 1016", std::string("type 1000 ") + example_address,
                                      "press 1",    "select 0",
                                      "press 1015", "tick 1011",
                                      "press 1"};
    if (usb) // without it the list is there from the start
        lines.insert(lines.begin(), "press 1014");
    std::vector<Action> actions;
    for (const std::string& line : lines) {
        Action action;
        if (parse_action(line, action))
            actions.push_back(action);
    }
    return actions;
}

Outcome install_from(const fs::path& medium, bool usb, const fs::path& drive_c) {
    platform::Machine machine = platform::default_machine();
    std::ostringstream nowhere;
    TerminalView view(nowhere, true);
    ScriptUser user(view, install_actions(usb));
    ProgramRun run;
    run.drive_c = drive_c;
    run.medium = medium;
    Outcome outcome = run_program(run, machine, user, view.log);
    outcome.problem = user.problem;
    outcome.boxes = user.boxes;
    return outcome;
}

std::string with_variables(std::string path, const platform::Machine& machine) {
    const std::pair<std::u16string, std::string> variables[] = {
        {machine.folders.common_programs, "%ProgramData%\\Microsoft\\Windows\\Start Menu\\Programs"},
        {machine.folders.program_files, "%ProgramFiles%"},
        {machine.folders.windows, "%SystemRoot%"},
    };
    for (const auto& [folder, variable] : variables) {
        const std::string known = platform::to_utf8(folder);
        if (path.starts_with(known + "\\") || path == known)
            return path.replace(0, known.size(), variable);
    }
    return path;
}

// The items that are there after the run and weren't before, by their names.
template<class Item>
std::vector<Item> new_items(const std::vector<Item>& before, const std::vector<Item>& after) {
    std::vector<Item> made;
    std::copy_if(after.begin(), after.end(), std::back_inserter(made), [&](const Item& item) {
        return std::none_of(before.begin(), before.end(),
                            [&](const Item& old) { return old.name == item.name; });
    });
    return made;
}

void take_spooler(MediumFacts& facts, const Outcome& outcome) {
    const platform::SpoolerState& before = outcome.before.spooler;
    const platform::SpoolerState& after = outcome.after.spooler;
    for (const platform::PrintQueue& queue : new_items(before.queues, after.queues)) {
        facts.queue = platform::to_utf8(queue.name);
        facts.processor = platform::to_utf8(queue.processor);
        facts.datatype = platform::to_utf8(queue.datatype);
        facts.label_sizes = queue.data.size();
    }
    for (const platform::PrintPort& port : new_items(before.ports, after.ports)) {
        facts.port = platform::to_utf8(port.name);
        const std::size_t address = facts.port.find(example_address);
        if (address != std::string::npos)
            facts.port.replace(address, std::string(example_address).size(), "<address>");
        facts.monitor = platform::to_utf8(port.monitor);
        facts.tcp_port = port.port_number;
    }
}

// "...\lbl.inf_amd64_ac6cf30ef9694b55\lbl.inf": architecture and number are the system's choice.
std::string with_wildcard(const std::string& path) {
    const std::size_t name = path.find_last_of('\\');
    const std::size_t folder = path.find_last_of('\\', name - 1);
    return path.substr(0, folder + 1) + path.substr(name + 1) + "_*" + path.substr(name);
}

void take_files(MediumFacts& facts, const Outcome& outcome, const fs::path& drive_c) {
    const platform::Machine& machine = outcome.after;
    for (const platform::StoredPackage& package : machine.spooler.packages)
        facts.package = with_variables(with_wildcard(platform::to_utf8(package.inf_path)), machine);
    for (const auto& [path, link] : read_shortcuts(outcome, drive_c))
        facts.shortcuts.push_back(
            {with_variables(path, machine), with_variables(platform::to_utf8(link.target), machine)});
    const std::string windows = platform::to_utf8(machine.folders.windows) + "\\";
    for (const auto& [path, file] : outcome.files_after) {
        if (!was_made(outcome, path))
            continue;
        if (path.ends_with(".log"))
            facts.log = with_variables(path, machine);
        else if (!path.starts_with(windows) && !path.ends_with(".lnk"))
            (file.folder ? facts.folders : facts.files).push_back(with_variables(path, machine));
    }
}

} // namespace

MediumFacts collect_facts(const fs::path& medium) {
    MediumFacts facts;
    read_driver(facts, check::Medium(medium));
    const TemporaryFolder drive("trk-facts");
    const Outcome outcome = install_from(medium, facts.usb, drive.path());
    const Verdict verdict = judge_install(outcome, medium, drive.path());
    facts.failures = verdict.complaints;
    facts.failures.insert(facts.failures.end(), verdict.missing.begin(), verdict.missing.end());
    if (verdict.status != ended_well)
        return facts;
    take_spooler(facts, outcome);
    take_files(facts, outcome, drive.path());
    return facts;
}

} // namespace rehearsal
