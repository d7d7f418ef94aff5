// The program's resources as the calling thread's language picks them.
#pragma once

#include "calls/run/gate.h"
#include "calls/windows/resource_file.h"

#include <cstdint>
#include <memory>
#include <string>

namespace platform {

constexpr std::uint16_t dialog_resource = 5;
constexpr std::uint16_t string_resource = 6;
constexpr std::uint16_t icon_group_resource = 14;

// The entry for the language of the calling thread: that language, its primary language alone, any entry of
// that primary language, then English (United States). Null when there is none. A resource file that can't be
// read stops the run.
const ResourceEntry* find_resource(std::uint16_t type, const ResourceName& name);

// A name argument as the calls take it: a number in the pointer's low word, or a text.
ResourceName resource_name(const char16_t* name);
std::string shown_name(const char16_t* name);

// The handle of a cursor of the system's own, by its number (32512 is the arrow).
void* system_cursor(std::uint16_t id);

// The template of that name, or null. One that is out of shape stops the run.
std::unique_ptr<DialogTemplate> find_dialog_template(const Call& call, const char16_t* name);

} // namespace platform
