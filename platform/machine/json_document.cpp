#include "machine/json_document.h"

#include <algorithm>
#include <iterator>
#include <unordered_set>
#include <utility>
#include <vector>

namespace platform {
namespace {

constexpr std::size_t most_levels = 64;

// Reads the text for the parser and tells how far it has come.
class FollowedIterator {
public:
    using iterator_category = std::input_iterator_tag;
    using value_type = char;
    using difference_type = std::ptrdiff_t;
    using pointer = const char*;
    using reference = const char&;

    FollowedIterator(const char* place, const char** reached) : place_(place), reached_(reached) {}
    reference operator*() const { return *place_; }
    FollowedIterator& operator++() {
        *reached_ = ++place_;
        return *this;
    }
    bool operator==(const FollowedIterator& other) const { return place_ == other.place_; }
    bool operator!=(const FollowedIterator& other) const { return place_ != other.place_; }

private:
    const char* place_;
    const char** reached_;
};

JsonSpot spot_at(std::string_view text, std::size_t place) {
    const std::string_view before = text.substr(0, place);
    const std::string_view line = before.substr(before.rfind('\n') + 1); // npos + 1 is 0
    JsonSpot spot;
    spot.line += static_cast<unsigned>(std::count(before.begin(), before.end(), '\n'));
    spot.column += static_cast<unsigned>(std::count_if(line.begin(), line.end(), [](char byte) {
        return (static_cast<unsigned char>(byte) & 0xC0) != 0x80; // each character once
    }));
    return spot;
}

// The parser's own message names line and column once more, and the rule of its grammar; the rest says
// enough.
std::string short_reason(const std::string& message) {
    const std::size_t start = message.find(": ", message.find("parse error at"));
    return start == std::string::npos ? message : message.substr(start + 2);
}

// What the parser's events have in common: all values come to begin_value, with the place of their first
// character.
class Events {
public:
    explicit Events(std::string_view text) : text_(text), reached_(text.data()) {}
    virtual ~Events() = default;
    Events(const Events&) = delete;
    Events& operator=(const Events&) = delete;

    bool read() {
        const char* const end = text_.data() + text_.size();
        return Json::sax_parse(FollowedIterator(text_.data(), &reached_), FollowedIterator(end, &reached_),
                               this);
    }

    bool null() { return begin_value(nullptr, word_start(4)); }
    bool boolean(bool value) { return begin_value(value, word_start(value ? 4 : 5)); }
    bool number_integer(std::int64_t value) { return begin_value(value, number_start()); }
    bool number_unsigned(std::uint64_t value) { return begin_value(value, number_start()); }
    bool number_float(double value, const std::string&) { return begin_value(value, number_start()); }
    bool string(std::string& value) { return begin_value(std::move(value), quote_start()); }
    bool binary(Json::binary_t&) { return false; } // not in texts
    bool start_object(std::size_t) { return begin_value(Json::object(), word_start(1)); }
    bool start_array(std::size_t) { return begin_value(Json::array(), word_start(1)); }
    bool end_object() { return end_value(); }
    bool end_array() { return end_value(); }
    bool key(std::string& name) { return begin_member(name, quote_start()); }
    bool parse_error(std::size_t read, const std::string& token, const Json::exception& error) {
        constexpr int number_overflow = 406;
        if (error.id == number_overflow)
            throw JsonError(spot_at(text_, number_start()), token + " is too large a number");
        throw JsonError(spot_at(text_, std::min(read - 1, text_.size())), short_reason(error.what()));
    }

protected:
    virtual bool begin_member(std::string& name, std::size_t place) = 0;
    virtual bool begin_value(Json value, std::size_t place) = 0;
    virtual bool end_value() = 0;

    const std::string_view text_;

private:
    std::size_t reached() const { return static_cast<std::size_t>(reached_ - text_.data()); }
    std::size_t word_start(std::size_t length) const { return reached() - length; }
    // The parser reads one character beyond a number, if there is one.
    std::size_t number_start() const {
        const auto in_number = [this](std::size_t place) {
            return std::string_view("+-.0123456789Ee").find(text_[place]) != std::string_view::npos;
        };
        std::size_t place = reached() - 1;
        if (!in_number(place))
            --place;
        while (place > 0 && in_number(place - 1))
            --place;
        return place;
    }
    // Back from the closing quote to the one that no backslash takes its meaning from.
    std::size_t quote_start() const {
        for (std::size_t place = reached() - 1;;) {
            place = text_.rfind('"', place - 1);
            std::size_t backslashes = 0;
            while (backslashes < place && text_[place - backslashes - 1] == '\\')
                ++backslashes;
            if (backslashes % 2 == 0)
                return place;
        }
    }

    const char* reached_;
};

// Puts the values together. The library's own way looks for each key among all before it.
class Builder : public Events {
public:
    Builder(std::string_view text, Json& root) : Events(text), root_(root) {}

private:
    struct Level {
        Json* container; // stays where it is until it is closed: its parent gets no further element before
        std::unordered_set<std::string> keys;
    };

    bool begin_member(std::string& name, std::size_t place) override {
        if (!levels_.back().keys.insert(name).second)
            throw JsonError(spot_at(text_, place), "\"" + name + "\" stands here a second time");
        key_ = std::move(name);
        return true;
    }

    bool begin_value(Json value, std::size_t place) override {
        const bool container = value.is_structured();
        if (container && levels_.size() == most_levels)
            throw JsonError(spot_at(text_, place),
                            "more than " + std::to_string(most_levels) + " levels of brackets");
        Json& added = add(std::move(value));
        if (container)
            levels_.push_back({&added, {}});
        return true;
    }

    bool end_value() override {
        levels_.pop_back();
        return true;
    }

    Json& add(Json value) {
        if (levels_.empty())
            return root_ = std::move(value);
        Json& parent = *levels_.back().container;
        if (parent.is_array())
            return parent.get_ref<Json::array_t&>().emplace_back(std::move(value));
        return parent.get_ref<Json::object_t&>().emplace_back(std::move(key_), std::move(value)).second;
    }

    Json& root_;
    std::string key_;
    std::vector<Level> levels_;
};

// Reads up to the nth value, from 1.
class Finder : public Events {
public:
    Finder(std::string_view text, std::size_t count) : Events(text), count_(count) {}
    std::size_t value_place = 0;
    std::size_t key_place = 0; // the value's own where it has no key

private:
    bool begin_member(std::string&, std::size_t place) override {
        key_place = place;
        key_waits_ = true;
        return true;
    }
    bool begin_value(Json, std::size_t place) override {
        value_place = place;
        if (!std::exchange(key_waits_, false))
            key_place = place;
        return --count_ != 0;
    }
    bool end_value() override { return true; }

    std::size_t count_;
    bool key_waits_ = false;
};

// Counts the values in their order up to the wanted one, itself included; false when it isn't there.
bool count_up_to(const Json& wanted, const Json& value, std::size_t& count) {
    ++count;
    if (&wanted == &value)
        return true;
    return value.is_structured() && std::any_of(value.begin(), value.end(), [&](const Json& inner) {
               return count_up_to(wanted, inner, count);
           });
}

JsonSpot find_spot(const JsonDocument& document, const Json& value, std::size_t Finder::*which) {
    std::size_t count = 0;
    if (!count_up_to(value, document.root, count))
        return {};
    Finder finder(document.text, count);
    finder.read();
    return spot_at(document.text, finder.*which);
}

} // namespace

JsonSpot JsonDocument::spot_of(const Json& value) const {
    return find_spot(*this, value, &Finder::value_place);
}

JsonSpot JsonDocument::spot_of_key(const Json& value) const {
    return find_spot(*this, value, &Finder::key_place);
}

JsonDocument parse_json(std::string_view text) {
    JsonDocument document;
    document.text = text;
    Builder(document.text, document.root).read();
    return document;
}

} // namespace platform
