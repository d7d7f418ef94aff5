#include "rehearsal/action_script.h"

#include "calls/windows/user_input.h"

namespace rehearsal {

std::string perform(const Action& action) {
    switch (action.verb) {
    case Verb::press:
        return platform::press(action.number);
    case Verb::select:
        return platform::select_row(action.number);
    case Verb::tick:
        return platform::tick(action.number);
    case Verb::untick:
        return platform::untick(action.number);
    case Verb::type:
        return platform::type_text(action.number, action.text);
    case Verb::key:
        return platform::press_key(static_cast<unsigned>(action.number));
    case Verb::close:
        return platform::close_dialog();
    }
    return "unknown action";
}

} // namespace rehearsal
