#include "rehearsal/action_script.h"

#include "rehearsal/shown_text.h"

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <charconv>
#include <cstring>
#include <fstream>

namespace rehearsal {
namespace {

constexpr char blanks[] = " \t\r";

// What a verb wants behind it.
struct Form {
    const char* word;
    Verb verb;
    enum { nothing, key_name, one, one_and_text, text } operands;
};

constexpr Form forms[] = {
    {"press", Verb::press, Form::one},        {"select", Verb::select, Form::one},
    {"tick", Verb::tick, Form::one},          {"untick", Verb::untick, Form::one},
    {"type", Verb::type, Form::one_and_text}, {"key", Verb::key, Form::key_name},
    {"close", Verb::close, Form::nothing},
};
constexpr Form expectations[] = {
    {"box", Verb::expect_box, Form::text},
    {"queue", Verb::expect_queue, Form::text},
    {"text", Verb::expect_text, Form::one_and_text},
};

// A line that is read from left to right.
struct Reader {
    const std::string& line;
    std::size_t place = 0;

    // From 1, in characters of UTF-8.
    std::size_t column() const {
        return 1 + static_cast<std::size_t>(std::count_if(line.begin(),
                                                          line.begin() + static_cast<std::ptrdiff_t>(place),
                                                          [](char byte) { return (byte & 0xC0) != 0x80; }));
    }
    bool ended() const { return place == line.size() || line[place] == '#'; }
    void skip_blanks() {
        while (place < line.size() && std::strchr(blanks, line[place]) != nullptr)
            ++place;
    }
};

struct Word {
    std::string text;
    bool quoted = false;
    std::size_t column = 1;
};

std::string take_quoted(Reader& reader) {
    const std::size_t begin = reader.column();
    std::string text;
    for (++reader.place; reader.place < reader.line.size(); ++reader.place) {
        const char letter = reader.line[reader.place];
        const bool escape = letter == '\\' && reader.place + 1 < reader.line.size() &&
                            std::strchr("\"\\", reader.line[reader.place + 1]) != nullptr;
        if (letter == '"') {
            ++reader.place;
            return text;
        }
        text += escape ? reader.line[++reader.place] : letter;
    }
    throw ScriptError("the quote isn't closed", begin);
}

// The next word, or what stands in quotes; the blanks behind it go too.
Word take_word(Reader& reader) {
    Word word;
    word.column = reader.column();
    word.quoted = reader.place < reader.line.size() && reader.line[reader.place] == '"';
    if (word.quoted) {
        word.text = take_quoted(reader);
    } else {
        const std::size_t end = std::min(reader.line.find_first_of(blanks, reader.place), reader.line.size());
        word.text = reader.line.substr(reader.place, end - reader.place);
        reader.place = end;
    }
    reader.skip_blanks();
    return word;
}

// A number is an id or a row; anything else is a name.
void take_operand(Reader& reader, const std::string& verb, Action& action) {
    const bool missing = reader.ended();
    const Word word = missing ? Word{} : take_word(reader);
    if (word.text.empty())
        throw ScriptError(verb + (action.verb == Verb::select ? " needs a row's number or a part of it"
                                                              : " needs a control's id or name"),
                          reader.column());
    int number = 0;
    const char* const end = word.text.data() + word.text.size();
    const auto [stop, error] = std::from_chars(word.text.data(), end, number);
    if (!word.quoted && stop == end && error == std::errc{} && number >= 0) {
        action.number = number;
    } else if (!word.quoted &&
               (word.text.front() == '-' || std::isdigit(static_cast<unsigned char>(word.text.front())))) {
        throw ScriptError("\"" + word.text + "\" is no id; a name that begins so stands in quotes",
                          word.column);
    } else {
        action.number = -1;
        action.name = word.text;
    }
}

// To the line's end, a # included; or what stands in quotes.
std::string take_text(Reader& reader) {
    if (reader.place < reader.line.size() && reader.line[reader.place] == '"')
        return take_word(reader).text;
    std::string text = reader.line.substr(reader.place);
    reader.place = reader.line.size();
    text.erase(text.find_last_not_of(blanks) + 1);
    return text;
}

int take_key(Reader& reader) {
    constexpr struct {
        const char* name;
        int virtual_key;
    } keys[] = {{"enter", 0x0D}, {"escape", 0x1B}, {"tab", 0x09}, {"home", 0x24}, {"end", 0x23},
                {"left", 0x25},  {"right", 0x27},  {"up", 0x26},  {"down", 0x28}};
    const Word word = take_word(reader);
    for (const auto& [name, virtual_key] : keys)
        if (word.text == name)
            return virtual_key;
    throw ScriptError("key needs enter, escape, tab, home, end, left, right, up or down, not \"" + word.text +
                          "\"",
                      word.column);
}

template<std::size_t count>
const Form& find_form(const Form (&all)[count], const Word& word, const std::string& what) {
    std::vector<std::string> words;
    std::string list;
    for (const Form& form : all) {
        if (word.text == form.word)
            return form;
        words.emplace_back(form.word);
        list += (list.empty() ? "" : ", ") + words.back();
    }
    throw ScriptError("\"" + word.text + "\" is no " + what + did_you_mean(word.text, words) +
                          "; there are " + list + (what == "action" ? ", expect" : ""),
                      word.column);
}

void take_operands(Reader& reader, const Form& form, Action& action) {
    action.verb = form.verb;
    if (form.operands == Form::one || form.operands == Form::one_and_text)
        take_operand(reader, form.word, action);
    if (form.operands == Form::text || form.operands == Form::one_and_text)
        action.text = take_text(reader);
    if (form.operands == Form::key_name)
        action.number = take_key(reader);
    if (action.expects() && action.text.empty())
        throw ScriptError("nothing is expected; a text belongs here", reader.column());
    if (!reader.ended())
        throw ScriptError("\"" + reader.line.substr(reader.place) + "\" is too much behind " + form.word +
                              "; a name of several words stands in quotes",
                          reader.column());
}

} // namespace

bool parse_action(const std::string& line, Action& action) {
    Reader reader{line};
    reader.skip_blanks();
    if (reader.ended())
        return false;
    action = {};
    action.column = reader.column();
    action.shown = line.substr(reader.place, line.find_last_not_of(blanks) + 1 - reader.place);
    Word word = take_word(reader);
    if (word.text == "expect") {
        word = take_word(reader);
        take_operands(reader, find_form(expectations, word, "expectation"), action);
    } else {
        take_operands(reader, find_form(forms, word, "action"), action);
    }
    return true;
}

std::vector<Action> read_script(const std::filesystem::path& file) {
    std::ifstream stream(file);
    if (!stream || std::filesystem::is_directory(file))
        throw ScriptError(file.string() +
                          ": can't be read: " + (stream ? "it is a folder" : std::strerror(errno)));
    std::vector<Action> actions;
    std::string line;
    for (std::size_t number = 1; std::getline(stream, line); ++number) {
        Action action;
        try {
            if (!parse_action(line, action))
                continue;
        } catch (const ScriptError& error) {
            throw ScriptError(file.string() + ":" + std::to_string(number) + ":" +
                              std::to_string(error.column) + ": " + shown_text(error.what()));
        }
        action.line = number;
        actions.push_back(action);
    }
    return actions;
}

} // namespace rehearsal
