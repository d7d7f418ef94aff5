// The plain values of a document, and lists and tables of anything that has json_value and from_json_value.
#pragma once

#include "machine/json_document.h"
#include "machine/text.h"

#include <concepts>
#include <cstdint>
#include <limits>
#include <map>
#include <set>
#include <string>
#include <vector>

namespace platform {

// A value of the document, and how to complain about it.
struct JsonPlace {
    const JsonDocument& document;
    const Json& value;
    std::string path;

    [[noreturn]] void fail(const std::string& reason) const;
    [[noreturn]] void fail_at_key(const std::string& reason) const; // where the value is a member
    JsonPlace at(const std::string& key, const Json& inner) const {
        return {document, inner, path.empty() ? key : path + "/" + key};
    }
};

// Plain values. Bytes are a text of hexadecimal digits. A 16-bit text has no NUL in it.
void from_json_value(const JsonPlace& place, bool& value);
void from_json_value(const JsonPlace& place, std::string& value);
void from_json_value(const JsonPlace& place, std::u16string& value);
void from_json_value(const JsonPlace& place, std::vector<std::uint8_t>& value);
std::uint32_t number_from_json(const JsonPlace& place, std::uint32_t largest);
template<std::unsigned_integral T>
void from_json_value(const JsonPlace& place, T& value) {
    value = static_cast<T>(number_from_json(place, std::numeric_limits<T>::max()));
}
Json json_value(const std::string& value);
Json json_value(const std::u16string& value); // throws JsonError for what is no text
Json json_value(const std::vector<std::uint8_t>& value);
template<std::integral T>
Json json_value(T value) {
    return value;
}

// Lists and tables of anything; what is read replaces what was there. Two keys of a table differ in more
// than case.
template<class T>
concept ListElement = !std::same_as<T, std::uint8_t>; // a list of bytes is a text
template<class T>
void from_json_value(const JsonPlace& place, std::vector<T>& list);
template<class T>
void from_json_value(const JsonPlace& place, std::map<std::u16string, T>& table);
template<ListElement T>
Json json_value(std::vector<T>& list);
template<class T>
Json json_value(std::map<std::u16string, T>& table);

template<class T>
void from_json_value(const JsonPlace& place, std::vector<T>& list) {
    if (!place.value.is_array())
        place.fail("must be a list");
    list.clear();
    for (const Json& element : place.value) {
        const JsonPlace inner = place.at(std::to_string(list.size()), element);
        from_json_value(inner, list.emplace_back());
    }
}

template<class T>
void from_json_value(const JsonPlace& place, std::map<std::u16string, T>& table) {
    if (!place.value.is_object())
        place.fail("must be an object");
    table.clear();
    std::set<std::u16string> known;
    for (const auto& [key, element] : place.value.items()) {
        const JsonPlace inner = place.at(key, element);
        const std::u16string name = to_utf16(key);
        if (!known.insert(upper_case(name)).second)
            inner.fail_at_key("differs from another key in case alone");
        if (name.find(u'\0') != name.npos)
            inner.fail_at_key("has a NUL in it");
        from_json_value(inner, table[name]);
    }
}

template<ListElement T>
Json json_value(std::vector<T>& list) {
    Json written = Json::array();
    for (T& element : list)
        written.push_back(json_value(element));
    return written;
}

template<class T>
Json json_value(std::map<std::u16string, T>& table) {
    Json written = Json::object();
    for (auto& [key, element] : table)
        written.get_ref<Json::object_t&>().emplace_back(json_value(key).template get<std::string>(),
                                                        json_value(element));
    return written;
}

} // namespace platform
