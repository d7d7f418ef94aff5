// A JSON text with the lines on which its values stand.
#pragma once

#include <nlohmann/json.hpp>

#include <map>
#include <stdexcept>
#include <string>
#include <string_view>

namespace platform {

using Json = nlohmann::ordered_json;

// Where something is wrong with a document.
struct JsonError : std::runtime_error {
    JsonError(unsigned line_number, const std::string& reason)
        : std::runtime_error(reason), line(line_number) {}
    unsigned line; // from 1
};

struct JsonDocument {
    Json root;
    std::map<std::string, unsigned> lines; // by path: "adapters/0/network"

    [[noreturn]] void fail(const std::string& path, const std::string& reason) const;
};

// Throws JsonError for a text that is no JSON, and for one that has a key twice in an object.
JsonDocument parse_json(std::string_view text);

} // namespace platform
