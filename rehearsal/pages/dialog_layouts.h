// The templates and pictures that dialogs are drawn from: those that the program itself was built with.
#pragma once

#include "calls/windows/resource_file.h"

#include <cstdint>
#include <string>

namespace rehearsal::pages {

// The template of that id; null when there is none.
const platform::DialogTemplate* dialog_layout(int id);
// The template's control of that id; null when there is none.
const platform::ControlTemplate* control_layout(int dialog, int id);

// The bitmap of that id as a data URL (RFC 2397); empty when there is none.
std::string picture_url(std::uint16_t id);

} // namespace rehearsal::pages
