#include "rehearsal/profiles.h"

#include "machine/machine_json.h"
#include "rehearsal/machine_view.h"
#include "rehearsal/medium_driver.h"
#include "rehearsal/shown_text.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <map>
#include <stdexcept>
#include <string_view>

// profiles.json: "every" has the keys of all machines, "profiles" a list of name, line and the machine's own
// keys, which take the place of those. "${driver}" and the like stand for what the medium has. Its bytes are
// in profiles_file.cpp.
extern "C" {
extern const char trk_profiles[];
extern const char trk_profiles_end[];
}

namespace rehearsal {
namespace {

using nlohmann::ordered_json;
using Values = std::map<std::string, std::string>;

const ordered_json& all_profiles() {
    static const ordered_json all = ordered_json::parse(
        std::string_view(trk_profiles, static_cast<std::size_t>(trk_profiles_end - trk_profiles)));
    return all;
}

Values values_of(const std::filesystem::path& medium) {
    MediumDriver driver{"Label Driver", "Label", "", 0x0001'0000'0000'0000, false};
    if (const auto found = read_medium_driver(check::Medium(medium)))
        driver = *found;
    std::string queue = driver.model;
    std::replace(queue.begin(), queue.end(), '_', ' ');
    // The first and the last version have no neighbour on one side.
    const std::uint64_t older = driver.version == 0 ? 0 : driver.version - 1;
    const std::uint64_t newer = driver.version == UINT64_MAX ? UINT64_MAX : driver.version + 1;
    return {{"${driver}", driver.name},
            {"${model}", driver.model},
            {"${queue}", queue},
            {"${version}", version_text(driver.version)},
            {"${older}", version_text(older)},
            {"${newer}", version_text(newer)}};
}

void fill_in(ordered_json& json, const Values& values) {
    if (json.is_structured()) {
        for (ordered_json& part : json)
            fill_in(part, values);
    } else if (json.is_string()) {
        auto& text = json.get_ref<std::string&>();
        for (const auto& [name, value] : values)
            if (const std::size_t place = text.find(name); place != text.npos)
                text.replace(place, name.size(), value);
    }
}

} // namespace

std::vector<Profile> profiles() {
    std::vector<Profile> all;
    for (const ordered_json& profile : all_profiles()["profiles"])
        all.push_back({profile["name"], profile["what"]});
    return all;
}

platform::Machine profile_machine(const std::string& name, const std::filesystem::path& medium) {
    std::vector<std::string> names;
    for (const ordered_json& profile : all_profiles()["profiles"]) {
        names.push_back(profile["name"]);
        if (names.back() != name)
            continue;
        ordered_json machine = all_profiles()["every"];
        machine.update(profile["machine"]);
        fill_in(machine, values_of(medium));
        return platform::parse_machine(machine.dump(), "profile " + name);
    }
    throw std::runtime_error("there is no profile \"" + name + "\"" + did_you_mean(name, names) +
                             "; trk profiles lists them");
}

} // namespace rehearsal
