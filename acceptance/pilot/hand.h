// Does a script's action to the dialogs that are seen. Everything is posted: what an action sets off may keep
// the program's thread in a loop of its own.
#pragma once

#include "acceptance/pilot/scene.h"
#include "rehearsal/action_script.h"

#include <string>

namespace pilot {

// Empty when it could be done, else the reason. A control that is hidden or greyed, or in a disabled dialog,
// can't be used; the topmost shown dialog that has the control counts.
std::string perform(const rehearsal::Action& action, const Scene& scene);

// Answers a message box by its OK.
void answer(const Box& box);

} // namespace pilot
