// Pictures of windows, and what of their texts and controls isn't to be seen on them.
#pragma once

#include "acceptance/pilot/scene.h"

#include <filesystem>
#include <string>
#include <vector>

namespace pictures {

// Saves the window's place on the screen as a bitmap; nothing may lie over it. Empty, or the reason why it
// couldn't.
std::string save_picture(HWND window, const std::filesystem::path& file);

// The faults of a dialog's looks: texts that their controls cut, and controls that overlap or leave the
// dialog.
std::vector<std::string> faults_of(const pilot::Dialog& dialog);

} // namespace pictures
