// A user's actions as text: one a line, # begins a comment. Shared by scripts and by a person at the
// terminal.
#pragma once

#include <cstddef>
#include <filesystem>
#include <stdexcept>
#include <string>
#include <vector>

namespace platform {
struct BoxView;
struct DialogView;
} // namespace platform

namespace rehearsal {

// What can be written, for whoever asks.
constexpr char action_help[] =
    "press CONTROL, select ROW, tick CONTROL, untick CONTROL, type CONTROL TEXT, key "
    "NAME, close,\n  expect box TEXT, expect queue NAME, expect text CONTROL "
    "TEXT; a control is its id or its name, a row\n  its number or a part of it; names of "
    "more than one word stand in \"quotes\"";

enum class Verb { press, select, tick, untick, type, key, close, expect_box, expect_queue, expect_text };

struct Action {
    Verb verb = Verb::close;
    int number = 0;         // control id, row, or virtual key; -1 when `name` says which
    std::string name;       // of the control or row, UTF-8
    std::string text;       // what is typed or expected, UTF-8
    std::size_t line = 0;   // in the script, from 1
    std::size_t column = 0; // where it begins in its line, in bytes from 1
    std::string shown;      // as it was written, without blanks around it

    // An expectation does nothing; it only looks.
    bool expects() const { return verb >= Verb::expect_box; }
};

// Wrong usage or a file that can't be read. From parse_action the reason alone, and where in the line it is;
// from read_script file, line, column and reason in one text.
struct ScriptError : std::runtime_error {
    explicit ScriptError(const std::string& reason, std::size_t at = 1)
        : std::runtime_error(reason), column(at) {}
    std::size_t column; // from 1
};

// The action of one line; false for an empty line or a comment. Throws ScriptError with the reason alone.
bool parse_action(const std::string& line, Action& action);

// All actions of a file. Throws ScriptError.
std::vector<Action> read_script(const std::filesystem::path& file);

// Does the action to the current run's dialogs; empty when it was possible, else the reason.
std::string perform(const Action& action);

// What an expectation may ask about.
struct Sight {
    const std::vector<platform::DialogView>& dialogs;
    const std::vector<platform::BoxView>& boxes; // all that were shown so far
    std::vector<std::string> queues;             // the machine's, by name
};

// Empty when it is as expected, else what there is instead.
std::string check_expectation(const Action& action, const Sight& sight);

} // namespace rehearsal
