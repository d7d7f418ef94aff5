#include "rehearsal/action_script.h"

#include <charconv>
#include <fstream>
#include <utility>

namespace rehearsal {
namespace {

constexpr char blanks[] = " \t\r";

struct Form {
    const char* word;
    Verb verb;
    bool takes_number;
    bool takes_text;
};

constexpr Form forms[] = {
    {"press", Verb::press, true, false},  {"select", Verb::select, true, false},
    {"tick", Verb::tick, true, false},    {"untick", Verb::untick, true, false},
    {"type", Verb::type, true, true},     {"key", Verb::key, false, true},
    {"close", Verb::close, false, false},
};

std::string trimmed(const std::string& text) {
    const std::size_t first = text.find_first_not_of(blanks);
    if (first == std::string::npos)
        return {};
    return text.substr(first, text.find_last_not_of(blanks) - first + 1);
}

// Cuts the first word off the text.
std::string take_word(std::string& text) {
    const std::size_t end = text.find_first_of(blanks);
    const std::string word = text.substr(0, end);
    text = end == std::string::npos ? std::string{} : trimmed(text.substr(end));
    return word;
}

int parse_number(const std::string& word, const std::string& verb) {
    int number = 0;
    const auto [end, error] = std::from_chars(word.data(), word.data() + word.size(), number);
    if (error != std::errc{} || end != word.data() + word.size() || number < 0)
        throw ScriptError(verb + " needs a number, not \"" + word + "\"");
    return number;
}

int parse_key(const std::string& name) {
    constexpr int enter_key = 13;
    constexpr int escape_key = 27;
    if (name == "enter")
        return enter_key;
    if (name == "escape")
        return escape_key;
    throw ScriptError("key needs enter or escape, not \"" + name + "\"");
}

} // namespace

bool parse_action(const std::string& line, Action& action) {
    std::string rest = trimmed(line);
    if (rest.empty() || rest.front() == '#')
        return false;
    action = {};
    action.shown = rest;
    const std::string word = take_word(rest);
    for (const Form& form : forms) {
        if (word != form.word)
            continue;
        action.verb = form.verb;
        if (form.takes_number)
            action.number = parse_number(take_word(rest), word);
        if (form.verb == Verb::key)
            action.number = parse_key(take_word(rest));
        else if (form.takes_text)
            action.text = std::exchange(rest, {});
        const bool comment = !rest.empty() && rest.front() == '#';
        if (!rest.empty() && !comment)
            throw ScriptError("\"" + rest + "\" is too much behind " + word);
        return true;
    }
    throw ScriptError("\"" + word +
                      "\" is no action; there are press, select, tick, untick, type, key, close");
}

std::vector<Action> read_script(const std::filesystem::path& file) {
    std::ifstream stream(file);
    if (!stream || std::filesystem::is_directory(file))
        throw ScriptError(file.string() + ": can't be read");
    std::vector<Action> actions;
    std::string line;
    for (std::size_t number = 1; std::getline(stream, line); ++number) {
        Action action;
        try {
            if (!parse_action(line, action))
                continue;
        } catch (const ScriptError& error) {
            throw ScriptError(file.string() + ":" + std::to_string(number) + ": " + error.what());
        }
        action.line = number;
        actions.push_back(action);
    }
    return actions;
}

} // namespace rehearsal
