// A user's actions as text: one a line, # begins a comment. Shared by scripts and by a person at the
// terminal.
#pragma once

#include <cstddef>
#include <filesystem>
#include <stdexcept>
#include <string>
#include <vector>

namespace rehearsal {

// What can be written, for whoever asks.
constexpr char action_help[] =
    "press ID, select ROW, tick ID, untick ID, type ID TEXT, key enter, key escape, close";

enum class Verb { press, select, tick, untick, type, key, close };

struct Action {
    Verb verb = Verb::close;
    int number = 0;       // control id, row, or virtual key
    std::string text;     // what is typed, UTF-8
    std::size_t line = 0; // in the script, from 1
    std::string shown;    // as it was written, without blanks around it
};

// Wrong usage or a file that can't be read: file, line and reason in one text.
struct ScriptError : std::runtime_error {
    using std::runtime_error::runtime_error;
};

// The action of one line; false for an empty line or a comment. Throws ScriptError with the reason alone.
bool parse_action(const std::string& line, Action& action);

// All actions of a file. Throws ScriptError.
std::vector<Action> read_script(const std::filesystem::path& file);

// Does the action to the current run's dialogs; empty when it was possible, else the reason.
std::string perform(const Action& action);

} // namespace rehearsal
