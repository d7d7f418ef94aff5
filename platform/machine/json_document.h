// A JSON text, and where in it its values stand.
#pragma once

#include <nlohmann/json.hpp>

#include <stdexcept>
#include <string>
#include <string_view>

namespace platform {

using Json = nlohmann::ordered_json;

// A place in a text, both from 1. A column counts characters.
struct JsonSpot {
    unsigned line = 1;
    unsigned column = 1;
};

// Where something is wrong with a document.
struct JsonError : std::runtime_error {
    JsonError(JsonSpot where, const std::string& reason) : std::runtime_error(reason), spot(where) {}
    JsonSpot spot;
};

class JsonDocument {
public:
    Json root;
    std::string text; // that it was read from

    // Where a value of the document stands, or the key before it. Each answer reads the text once more.
    JsonSpot spot_of(const Json& value) const;
    JsonSpot spot_of_key(const Json& value) const;
};

// Throws JsonError for a text that is no JSON, that has a key twice in an object, a number that no double can
// hold, or more levels than any of our files has. The time goes by the text's length.
JsonDocument parse_json(std::string_view text);

} // namespace platform
