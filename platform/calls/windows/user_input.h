// What a user can do to the dialogs of the current run, and what there is to see. Implemented by the windows
// area. Each action goes to the topmost dialog that has the control, and posts the input messages that a
// person's hand would. A control that is hidden or greyed, or in a disabled dialog, can't be used: the result
// is then the reason, and nothing was posted; otherwise it is empty.
#pragma once

#include "calls/run/user.h"

namespace platform {

std::string press(int id);
std::string tick(int id); // nothing to do when it is ticked already
std::string untick(int id);
std::string select_row(int row);                        // in the topmost list box
std::string type_text(int id, const std::string& utf8); // replaces what the edit control holds
std::string close_dialog();                             // the topmost dialog, by its system menu
std::string press_key(unsigned virtual_key);            // VK_RETURN 13, VK_ESCAPE 27 to the topmost dialog

std::vector<DialogView> dialogs(); // every dialog that was created, the topmost last

} // namespace platform
