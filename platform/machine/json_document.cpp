#include "machine/json_document.h"

#include <algorithm>
#include <iterator>
#include <vector>

namespace platform {
namespace {

// Reads the text for the parser and counts the lines that were read so far.
class CountingIterator {
public:
    using iterator_category = std::input_iterator_tag;
    using value_type = char;
    using difference_type = std::ptrdiff_t;
    using pointer = const char*;
    using reference = const char&;

    CountingIterator(const char* place, const char** reached) : place_(place), reached_(reached) {}
    reference operator*() const { return *place_; }
    CountingIterator& operator++() {
        *reached_ = ++place_;
        return *this;
    }
    bool operator==(const CountingIterator& other) const { return place_ == other.place_; }
    bool operator!=(const CountingIterator& other) const { return place_ != other.place_; }

private:
    const char* place_;
    const char** reached_;
};

unsigned line_of(const char* begin, const char* place) {
    return 1 + static_cast<unsigned>(std::count(begin, place, '\n'));
}

// Follows the parser's events, and notes the line of each value under its path.
class PlaceKeeper {
public:
    explicit PlaceKeeper(std::map<std::string, unsigned>& lines) : lines_(lines) {}

    void on_event(Json::parse_event_t event, const Json& parsed, unsigned line) {
        using Event = Json::parse_event_t;
        switch (event) {
        case Event::key:
            levels_.back().key = parsed.get<std::string>();
            if (!lines_.emplace(path(), line).second)
                throw JsonError(line, path() + ": stands here a second time");
            break;
        case Event::object_start:
        case Event::array_start:
            begin_value(line);
            levels_.push_back({event == Event::array_start, 0, {}});
            break;
        case Event::object_end:
        case Event::array_end:
            levels_.pop_back();
            break;
        case Event::value:
            begin_value(line);
            break;
        }
    }

private:
    struct Level {
        bool array;
        unsigned next; // index of the next element
        std::string key;
    };

    void begin_value(unsigned line) {
        if (levels_.empty() || !levels_.back().array)
            return; // a member's line is its key's
        levels_.back().key = std::to_string(levels_.back().next++);
        lines_.emplace(path(), line);
    }

    std::string path() const {
        std::string text;
        for (const Level& level : levels_)
            text += (text.empty() ? "" : "/") + level.key;
        return text;
    }

    std::map<std::string, unsigned>& lines_;
    std::vector<Level> levels_;
};

// The parser's own message names line and column once more, and the rule of its grammar; the rest says
// enough.
std::string short_reason(const std::string& message) {
    const std::size_t start = message.find(": ", message.find("parse error at"));
    return start == std::string::npos ? message : message.substr(start + 2);
}

} // namespace

void JsonDocument::fail(const std::string& path, const std::string& reason) const {
    const auto found = lines.find(path);
    throw JsonError(found == lines.end() ? 1 : found->second, path.empty() ? reason : path + ": " + reason);
}

JsonDocument parse_json(std::string_view text) {
    JsonDocument document;
    PlaceKeeper keeper(document.lines);
    const char* begin = text.data();
    const char* end = begin + text.size();
    const char* reached = begin;
    const auto follow = [&](int, Json::parse_event_t event, Json& parsed) {
        // The parser may have read one character too many, the one that ended a number.
        keeper.on_event(event, parsed, line_of(begin, reached == begin ? begin : reached - 1));
        return true;
    };
    try {
        document.root =
            Json::parse(CountingIterator(begin, &reached), CountingIterator(end, &reached), follow);
    } catch (const Json::parse_error& error) {
        throw JsonError(line_of(begin, begin + std::min(error.byte, text.size())),
                        short_reason(error.what()));
    }
    return document;
}

} // namespace platform
