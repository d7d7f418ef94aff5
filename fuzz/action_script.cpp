#include "rehearsal/action_script.h"

#include "fuzz/targets.h"

#include <sstream>

void fuzz::action_script(std::string_view input) {
    std::istringstream lines{std::string(input)};
    for (std::string line; std::getline(lines, line);) {
        rehearsal::Action action;
        try {
            rehearsal::parse_action(line, action);
        } catch (const rehearsal::ScriptError&) {
            // refused, with its reason
        }
    }
}
