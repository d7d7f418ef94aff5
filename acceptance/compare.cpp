// trk_compare RUNS REHEARSED WINE BEGINNING
//
// Holds a scenario's two outcomes against each other. REHEARSED has machine.json, machine.json.drive-c and a
// report run1.json, run2.json, ... of each run; WINE the same, with the pilot's records, and its drive C in
// prefix/drive_c. BEGINNING is the drive C that the prefix began with. Tells each difference; exit status 0
// when there is none.
#include "acceptance/compare.h"

#include "machine/machine_json.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <exception>

namespace fs = std::filesystem;

namespace acceptance {
namespace {

using nlohmann::json;

constexpr unsigned box_icon_bits = 0xF0;

json read_json(const fs::path& file) {
    return json::parse(read_bytes(file));
}

std::string shown(const json& value) {
    constexpr std::size_t longest = 400;
    const std::string text = value.dump();
    return text.size() <= longest ? text : text.substr(0, longest) + "...";
}

void compare_value(const std::string& what, const json& rehearsed, const json& wine, Differences& out) {
    if (rehearsed != wine)
        out.push_back(what + "\n    rehearsed: " + shown(rehearsed) + "\n    Wine:      " + shown(wine));
}

void compare_control(const std::string& dialog, const json& rehearsed, const json& wine, Differences& out) {
    const std::string name = dialog + ", control " + rehearsed.at("id").dump();
    for (const auto& [key, value] : rehearsed.items())
        // What a picture says its text is are the bytes that name its resource.
        if (key != "text" || rehearsed.at("kind") != "picture")
            compare_value(name + ", " + key, value, wine.value(key, json()), out);
}

void compare_dialog(const std::string& run, const json& rehearsed, const json& wine, Differences& out) {
    const std::string name = run + ": dialog " + rehearsed.at("id").dump();
    compare_value(name + ", caption", rehearsed.at("caption"), wine.at("caption"), out);
    const json& expected = rehearsed.at("controls");
    const json& found = wine.at("controls");
    for (std::size_t place = 0; place < expected.size(); ++place)
        compare_control(name, expected[place], found[place], out);
}

void compare_boxes(const std::string& run, const json& rehearsed, const json& wine, Differences& out) {
    json expected = json::array();
    for (const json& box : rehearsed)
        expected.push_back({{"text", box.at("text")},
                            {"caption", box.at("caption")},
                            {"icon", (box.at("flags").get<unsigned>() & box_icon_bits) != 0}});
    compare_value(run + ": boxes", expected, wine, out);
}

json control_ids(const json& dialog) {
    json ids = json::array();
    for (const json& control : dialog.at("controls"))
        ids.push_back(control.at("id"));
    return ids;
}

// The rehearsal lists dialogs as they lie on the screen, the pilot as they came up. Those of one template
// keep their order in both.
void compare_dialogs(const std::string& run, const json& rehearsed, json wine, Differences& out) {
    compare_value(run + ": number of dialogs", rehearsed.size(), wine.size(), out);
    for (const json& dialog : rehearsed) {
        const json ids = control_ids(dialog);
        const auto found =
            std::find_if(wine.begin(), wine.end(), [&](const json& one) { return control_ids(one) == ids; });
        if (found == wine.end()) {
            out.push_back(run + ": dialog " + dialog.at("id").dump() + " wasn't seen under Wine");
            continue;
        }
        compare_dialog(run, dialog, *found, out);
        wine.erase(found);
    }
}

void compare_run(const std::string& run, const json& rehearsed, const json& wine, Differences& out) {
    compare_value(run + ": exit code", rehearsed.at("exit_code"), wine.at("exit_code"), out);
    compare_value(run + ": ended by the time limit", false, wine.at("timed_out"), out);
    compare_value(run + ": refused by the layer", "", rehearsed.at("refusal"), out);
    compare_value(run + ": problem of the rehearsed script", "", rehearsed.at("script_problem"), out);
    compare_value(run + ": problem of the pilot's script", "", wine.at("script_problem"), out);
    compare_boxes(run, rehearsed.at("boxes"), wine.at("boxes"), out);
    compare_dialogs(run, rehearsed.at("dialogs"), wine.at("dialogs"), out);
}

// The spooler as both files tell it, whoever wrote them, in one form.
void compare_machines(const fs::path& rehearsed, const fs::path& wine, Differences& out) {
    const auto spooler = [](const fs::path& folder) {
        return json::parse(platform::machine_text(platform::load_machine(folder / "machine.json")))
            .at("spooler");
    };
    const json expected = spooler(rehearsed);
    const json found = spooler(wine);
    for (const auto& [key, value] : expected.items())
        compare_value("spooler: " + key, value, found.value(key, json()), out);
}

// Nothing of it where the program handed over before it began one.
std::string log_of(const MadeFiles& files) {
    const auto log = files.find("windows/temp/trk_install.log");
    return log == files.end() ? std::string() : read_bytes(log->second.place);
}

Differences compare(int runs, const fs::path& rehearsed, const fs::path& wine, const fs::path& beginning) {
    Differences out;
    for (int run = 1; run <= runs; ++run) {
        const std::string name = "run" + std::to_string(run);
        compare_run(name, read_json(rehearsed / (name + ".json")), read_json(wine / (name + ".json")), out);
    }
    compare_machines(rehearsed, wine, out);
    if (const fs::path notes = wine / "machine.json.notes"; fs::exists(notes))
        out.push_back("the spooler's notes: " + read_bytes(notes));
    const MadeFiles expected = list_made(rehearsed / "machine.json.drive-c", beginning);
    const MadeFiles found = list_made(wine / "prefix" / "drive_c", beginning);
    compare_logs(log_of(expected), log_of(found), out);
    compare_drives(expected, found, out);
    return out;
}

} // namespace
} // namespace acceptance

int main(int count, char** arguments) {
    if (count != 5) {
        std::fprintf(stderr, "usage: trk_compare RUNS REHEARSED WINE BEGINNING\n");
        return 2;
    }
    try {
        const acceptance::Differences differences =
            acceptance::compare(std::atoi(arguments[1]), arguments[2], arguments[3], arguments[4]);
        for (const std::string& difference : differences)
            std::printf("  differs: %s\n", difference.c_str());
        return differences.empty() ? 0 : 1;
    } catch (const std::exception& error) {
        std::fprintf(stderr, "compare: %s\n", error.what());
        return 2;
    }
}
