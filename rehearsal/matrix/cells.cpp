#include "rehearsal/matrix/cells.h"

#include "rehearsal/machine_view.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <iterator>
#include <string_view>
#include <tuple>

namespace rehearsal::matrix {
namespace {

struct Language {
    const char* name;
    const char* locale;
    int ui_language;
    int code_page;
};

constexpr Language all_languages[] = {
    {"en-US", "ENU", 1033, 1252}, {"en-GB", "ENG", 2057, 1252}, {"fr", "FRA", 1036, 1252},
    {"de", "DEU", 1031, 1252},    {"es", "ESN", 3082, 1252},    {"zh", "CHS", 2052, 936},
    {"ja", "JPN", 1041, 932},
};

struct System {
    const char* name;
};

constexpr System all_systems[] = {{"x86"}, {"x64"}};

struct Windows {
    const char* name;
    int major, minor, build;
};

// A program whose manifest names nothing newer is told 6.2 by every later Windows.
constexpr Windows windows_versions[] = {{"vista", 6, 0, 6002}, {"7", 6, 1, 7601}, {"current", 6, 2, 9200}};

struct Road {
    const char* name;
    const char* states; // in which it can be gone
};

constexpr Road all_roads[] = {{"network", "ABDE"}, {"two", "ABDE"}, {"typed", "ABDE"},
                              {"none", "ABDE"},    {"usb", "D"},    {"leave", "C"}};

// The place of a name in one of the tables.
template<class Row, std::size_t count>
std::size_t place_of(const Row (&rows)[count], std::string_view name) {
    const auto found =
        std::find_if(std::begin(rows), std::end(rows), [&](const Row& row) { return row.name == name; });
    return static_cast<std::size_t>(found - std::begin(rows));
}

auto key_of(const Cell& cell) {
    return std::tuple(place_of(all_languages, cell.language), place_of(all_systems, cell.system),
                      place_of(windows_versions, cell.windows), cell.state, place_of(all_roads, cell.road),
                      std::string_view(cell.fault));
}

void add_roads(std::vector<Cell>& cells, Cell cell, const MediumDriver& driver) {
    for (const char state : std::string_view(driver.usb ? "ACD" : "BCE")) {
        for (const Road& road : all_roads) {
            if (std::string_view(road.states).find(state) == std::string_view::npos)
                continue;
            cell.state = state;
            cell.road = road.name;
            cells.push_back(cell);
        }
    }
}

using Json = nlohmann::ordered_json;

Json answer(const MediumDriver& driver, const char* from, const char* name) {
    return {{"from", from},
            {"text", "(printer-name=" + std::string(name) + "),(ieee1284-id=MDL:" + driver.model + ";)"}};
}

Json answers_of(const Cell& cell, const MediumDriver& driver) {
    Json answers = Json::array();
    if (cell.road == "network" || cell.road == "two")
        answers.push_back(answer(driver, "10.0.0.7", "Shelf A"));
    if (cell.road == "two")
        answers.push_back(answer(driver, "10.0.0.8", "Shelf B"));
    return answers;
}

} // namespace

std::string Cell::name() const {
    const std::string out = language + "/" + system + "/" + windows + "/" + kind();
    return fault.empty() ? out : out + "/" + fault;
}

std::string Cell::kind() const {
    return std::string(1, state) + "/" + road;
}

std::strong_ordering operator<=>(const Cell& a, const Cell& b) {
    return key_of(a) <=> key_of(b);
}

bool operator==(const Cell& a, const Cell& b) {
    return (a <=> b) == 0;
}

std::vector<Cell> all_cells(const MediumDriver& driver) {
    std::vector<Cell> cells;
    for (const Language& language : all_languages)
        for (const System& system : all_systems)
            for (const Windows& windows : windows_versions)
                add_roads(cells, {language.name, system.name, windows.name, 'D', "", ""}, driver);
    return cells;
}

std::string machine_text(const Cell& cell, const MediumDriver& driver) {
    const Language& language = all_languages[place_of(all_languages, cell.language)];
    const Windows& windows = windows_versions[place_of(windows_versions, cell.windows)];
    Json machine = {
        {"clock", "2024-07-04T09:05:01"},
        {"system", cell.system},
        {"version", {{"major", windows.major}, {"minor", windows.minor}, {"build", windows.build}}},
        {"locale", language.locale},
        {"ui_language", language.ui_language},
        {"code_page", language.code_page},
    };
    if (cell.state <= 'C') {
        const std::uint64_t other = driver.version == 0 ? 1 : driver.version - 1;
        const std::string version = version_text(cell.state == 'C' ? other : driver.version);
        machine["spooler"]["drivers"] = {{{"name", driver.name}, {"version", version}}};
    }
    machine["adapters"] = {
        {{"addresses", {"10.0.0.2"}}, {"network", "scripted"}, {"searches", {answers_of(cell, driver)}}}};
    if (!cell.fault.empty())
        machine["faults"] = {{{"call", cell.fault}, {"nth", 1}}};
    return machine.dump(2) + "\n";
}

std::string script_text(const Cell& cell) {
    if (cell.road == "leave")
        return "# Nothing but Cancel works.\n";
    if (cell.road == "usb")
        return "press 1013    # USB\ntick 1011     # I accept the terms\npress 1       # OK\n";
    // Without USB the list is there from the start.
    std::string script = cell.state == 'A' || cell.state == 'D' ? "press 1014    # Network\n" : "";
    if (cell.road == "none")
        return script + "# No printer is found.\n";
    if (cell.road == "typed")
        script += "press 1016    # Specify IP\ntype 1000 10.0.0.99\npress 1       # OK\n";
    script += cell.road == "two" ? "select 1\n" : "select 0\n";
    return script + "tick 1007     # Set as Default Printer\npress 1015    # Install Printer\n"
                    "tick 1011     # I accept the terms\npress 1       # OK\n";
}

} // namespace rehearsal::matrix
