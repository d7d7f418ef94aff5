#include "rehearsal/matrix/cells.h"

#include "machine/text.h"
#include "package/driver_inf.h"
#include "rehearsal/check/medium.h"
#include "rehearsal/check/program_view.h"

#include <windows.h>

#include <nlohmann/json.hpp>

#include <algorithm>
#include <stdexcept>
#include <string_view>

namespace rehearsal::matrix {
namespace {

struct Language {
    const char* name;
    const char* locale;
    int ui_language;
    int code_page;
};

constexpr Language languages[] = {
    {"en-US", "ENU", 1033, 1252}, {"en-GB", "ENG", 2057, 1252}, {"fr", "FRA", 1036, 1252},
    {"de", "DEU", 1031, 1252},    {"es", "ESN", 3082, 1252},    {"zh", "CHS", 2052, 936},
    {"ja", "JPN", 1041, 932},
};

struct Windows {
    const char* name;
    int major, minor, build;
};

// A program whose manifest names nothing newer is told 6.2 by every later Windows.
constexpr Windows windows_versions[] = {{"vista", 6, 0, 6002}, {"7", 6, 1, 7601}, {"current", 6, 2, 9200}};

constexpr const char* systems[] = {"x86", "x64"};

const char* roads_of(char state, std::size_t place) {
    static constexpr const char* all[] = {"network", "two", "typed", "none", "usb", nullptr};
    static constexpr const char* without_usb[] = {"network", "two", "typed", "none", nullptr};
    static constexpr const char* leave[] = {"leave", nullptr};
    if (state == 'C')
        return leave[place];
    return state == 'D' ? all[place] : without_usb[place];
}

void add_roads(std::vector<Cell>& cells, Cell cell, const Package& package) {
    for (const char state : std::string_view(package.usb ? "ACD" : "BCE")) {
        cell.state = state;
        for (std::size_t i = 0; const char* const road = roads_of(state, i); ++i) {
            cell.road = road;
            cells.push_back(cell);
        }
    }
}

// A file version that is another one than the package's.
std::string other_version(const std::string& version) {
    return version == "0.0.0.1" ? "0.0.0.2" : "0.0.0.1";
}

using Json = nlohmann::ordered_json;

Json answer(const Package& package, const char* from, const char* name) {
    return {{"from", from},
            {"text", "(printer-name=" + std::string(name) + "),(ieee1284-id=MDL:" + package.model + ";)"}};
}

Json answers_of(const Cell& cell, const Package& package) {
    Json answers = Json::array();
    if (cell.road == "network" || cell.road == "two")
        answers.push_back(answer(package, "10.0.0.7", "Shelf A"));
    if (cell.road == "two")
        answers.push_back(answer(package, "10.0.0.8", "Shelf B"));
    return answers;
}

// Whether `pattern` fits all of `text`; '*' is any text, also none.
bool fits(std::string_view pattern, std::string_view text) {
    std::size_t p = 0, t = 0, star = std::string_view::npos, behind = 0;
    while (t < text.size()) {
        if (p < pattern.size() && pattern[p] == '*') {
            star = p++;
            behind = t;
        } else if (p < pattern.size() && pattern[p] == text[t]) {
            ++p;
            ++t;
        } else if (star != std::string_view::npos) {
            p = star + 1;
            t = ++behind;
        } else {
            return false;
        }
    }
    return pattern.find_first_not_of('*', p) == std::string_view::npos;
}

std::vector<std::string_view> parts_of(std::string_view text) {
    std::vector<std::string_view> parts;
    for (std::size_t end; (end = text.find('/')) != std::string_view::npos; text.remove_prefix(end + 1))
        parts.push_back(text.substr(0, end));
    parts.push_back(text);
    return parts;
}

bool fits_parts(const std::string& pattern, const std::string& name) {
    const auto wanted = parts_of(pattern);
    const auto given = parts_of(name);
    if (wanted.size() > given.size())
        return false;
    // Parts that a pattern doesn't have may be anything, but it takes a part of its own to ask for a fault.
    return std::equal(wanted.begin(), wanted.end(), given.begin(), fits) &&
           (given.size() <= 5 || wanted.size() == given.size());
}

} // namespace

Package read_package(const std::string& medium) {
    Package package;
    char driver[256] = {}, maker[256] = {}, model[256] = {}, file[512] = {};
    WCHAR path[256] = {};
    DriverVersion version = 0;
    DWORD usb = 0;
    int found = 0;
    check::with_program(check::Medium(medium), [&] {
        found = find_driver_inf(driver, 255, maker, 255, model, 255, path, file, 1, &version, &usb, 0);
        WCHAR wide[256] = {};
        MultiByteToWideChar(CP_ACP, 0, driver, -1, wide, 256);
        package.driver = platform::to_utf8(wide);
        MultiByteToWideChar(CP_ACP, 0, model, -1, wide, 256);
        package.model = platform::to_utf8(wide);
    });
    if (found == 0)
        throw std::runtime_error(medium + ": the program finds no driver there; trk check tells why");
    for (int shift = 48; shift >= 0; shift -= 16)
        package.version +=
            std::to_string((static_cast<std::uint64_t>(version) >> shift) & 0xFFFF) + (shift == 0 ? "" : ".");
    package.usb = usb != 0;
    return package;
}

std::string Cell::name() const {
    std::string out = language + "/" + system + "/" + windows + "/" + state + "/" + road;
    return fault.empty() ? out : out + "/" + fault;
}

std::vector<Cell> all_cells(const Package& package) {
    std::vector<Cell> cells;
    for (const Language& language : languages)
        for (const char* const system : systems)
            for (const Windows& windows : windows_versions)
                add_roads(cells, {language.name, system, windows.name, 'D', "", ""}, package);
    return cells;
}

std::vector<Cell> base_cells(const Package& package) {
    std::vector<Cell> cells;
    add_roads(cells, {"en-US", "x64", "current", 'D', "", ""}, package);
    return cells;
}

void add_faults(std::vector<Cell>& cells, const Cell& road, const std::vector<std::string>& calls) {
    Cell cell = road;
    for (const std::string& call : calls) {
        cell.fault = call;
        cells.push_back(cell);
    }
}

std::vector<Cell> only_cells(const std::vector<Cell>& cells, const std::vector<std::string>& patterns) {
    std::vector<bool> wanted(cells.size(), patterns.empty());
    for (const std::string& pattern : patterns) {
        bool any = false;
        for (std::size_t i = 0; i < cells.size(); ++i) {
            if (fits_parts(pattern, cells[i].name()))
                wanted[i] = any = true;
        }
        if (!any)
            throw std::runtime_error("no cell fits " + pattern + "; one is called " +
                                     (cells.empty() ? "nothing" : cells.front().name()));
    }
    std::vector<Cell> out;
    for (std::size_t i = 0; i < cells.size(); ++i)
        if (wanted[i])
            out.push_back(cells[i]);
    return out;
}

std::vector<Cell> shard_of(const std::vector<Cell>& cells, std::size_t number, std::size_t count) {
    std::vector<Cell> out;
    for (std::size_t i = number - 1; i < cells.size(); i += count)
        out.push_back(cells[i]);
    return out;
}

std::string machine_text(const Cell& cell, const Package& package) {
    Json machine;
    machine["clock"] = "2024-07-04T09:05:01";
    machine["system"] = cell.system;
    for (const Windows& windows : windows_versions)
        if (cell.windows == windows.name)
            machine["version"] = {
                {"major", windows.major}, {"minor", windows.minor}, {"build", windows.build}};
    for (const Language& language : languages) {
        if (cell.language != language.name)
            continue;
        machine["locale"] = language.locale;
        machine["ui_language"] = language.ui_language;
        machine["code_page"] = language.code_page;
    }
    if (cell.state == 'A' || cell.state == 'B' || cell.state == 'C') {
        const std::string version = cell.state == 'C' ? other_version(package.version) : package.version;
        machine["spooler"] = {{"drivers",
                               {{{"name", package.driver},
                                 {"version", version},
                                 {"environment", cell.system == "x86" ? "Windows NT x86" : "Windows x64"}}}}};
    }
    machine["adapters"] = {
        {{"addresses", {"10.0.0.2"}}, {"network", "scripted"}, {"searches", {answers_of(cell, package)}}}};
    // The call may not come on this road; that isn't the medium's fault.
    if (!cell.fault.empty())
        machine["faults"] = {{{"call", cell.fault}, {"nth", 1}, {"may_miss", true}}};
    return machine.dump(2) + "\n";
}

std::string script_text(const Cell& cell) {
    if (cell.road == "leave")
        return "";
    if (cell.road == "usb")
        return "press 1013\ntick 1011\npress 1\n";
    // Without USB the list is there from the start.
    std::string script = cell.state == 'A' || cell.state == 'D' ? "press 1014\n" : "";
    if (cell.road == "none")
        return script;
    if (cell.road == "typed")
        script += "press 1016\ntype 1000 10.0.0.99\npress 1\n";
    script += cell.road == "two" ? "select 1\n" : "select 0\n";
    return script + "tick 1007\npress 1015\ntick 1011\npress 1\n";
}

} // namespace rehearsal::matrix
