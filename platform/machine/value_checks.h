// What no machine can have, whatever its type: each check is called with a value behind its reading, and
// complains at its place. The rules are those of the platform's documentation.
#pragma once

#include "machine/json_fields.h"
#include "machine/machine.h"

#include <set>

namespace platform {

// Absolute, of fewer than 260 characters, without a backslash at its end: "C:\Windows".
void check_absolute_path(const JsonPlace& place, const std::u16string& path);
// The same on drive C, the only one that a machine has beside the medium's.
void check_path_on_c(const JsonPlace& place, const std::u16string& path);
void check_file_name(const JsonPlace& place, const std::u16string& name);

// A language as LOCALE_SABBREVLANGNAME abbreviates it, and a LANGID.
void check_locale(const JsonPlace& place, const std::u16string& abbreviation);
void check_language(const JsonPlace& place, std::uint16_t language);

// The system that a driver or monitor is for, as the spooler calls it.
void check_environment(const JsonPlace& place, const std::u16string& environment);
void check_port_number(const JsonPlace& place, std::uint32_t number);
void check_protocol(const JsonPlace& place, std::uint32_t protocol);
void check_block_size(const JsonPlace& place, std::uint32_t size); // of a port's configuration, 0 for none

void check_string_ids(const JsonPlace& place, const std::vector<std::uint32_t>& ids);
void check_variables(const JsonPlace& place, const std::map<std::u16string, std::u16string>& variables);
void check_registry_keys(const JsonPlace& place, const Registry& registry);
void check_phases(const JsonPlace& place, const std::vector<ServicePhase>& phases);

// Records are told apart by their name, and those that have one by their environment.
void check_name(const JsonPlace& place, const std::u16string& name, const std::u16string& environment,
                std::set<std::u16string>& known);

template<class T>
void check_names(const JsonPlace& place, const std::vector<T>& list) {
    std::set<std::u16string> known;
    for (std::size_t index = 0; index < list.size(); ++index) {
        std::u16string environment;
        if constexpr (requires { list[index].environment; })
            environment = list[index].environment;
        check_name(place.at(std::to_string(index), place.value[index]), list[index].name, environment, known);
    }
}

} // namespace platform
