// Reading and writing records by one description of their fields:
//   template <class Archive> void fields(Archive& archive, Record& record) { archive("key", record.key); ... }
// A type with a form of its own has json_value and from_json_value instead.
#pragma once

#include "machine/json_document.h"
#include "machine/text.h"

#include <concepts>
#include <cstdint>
#include <limits>
#include <map>
#include <set>
#include <utility>
#include <vector>

namespace platform {

// A value of the document, and how to complain about it.
struct JsonPlace {
    const JsonDocument& document;
    const Json& value;
    std::string path;

    [[noreturn]] void fail(const std::string& reason) const { document.fail(path, reason); }
    JsonPlace at(const std::string& key, const Json& inner) const {
        return {document, inner, path.empty() ? key : path + "/" + key};
    }
};

// Plain values. Bytes are a text of hexadecimal digits.
void from_json_value(const JsonPlace& place, bool& value);
void from_json_value(const JsonPlace& place, std::string& value);
void from_json_value(const JsonPlace& place, std::u16string& value);
void from_json_value(const JsonPlace& place, std::vector<std::uint8_t>& value);
std::uint32_t number_from_json(const JsonPlace& place, std::uint32_t largest);
template <std::unsigned_integral T>
void from_json_value(const JsonPlace& place, T& value) {
    value = static_cast<T>(number_from_json(place, std::numeric_limits<T>::max()));
}
Json json_value(const std::string& value);
Json json_value(const std::u16string& value); // throws JsonError for what is no text
Json json_value(const std::vector<std::uint8_t>& value);
template <std::integral T>
Json json_value(T value) {
    return value;
}

// Lists and tables of anything; what is read replaces what was there.
template <class T>
concept ListElement = !std::same_as<T, std::uint8_t>; // a list of bytes is a text
template <class T>
void from_json_value(const JsonPlace& place, std::vector<T>& list);
template <class T>
void from_json_value(const JsonPlace& place, std::map<std::u16string, T>& table);
template <ListElement T>
Json json_value(std::vector<T>& list);
template <class T>
Json json_value(std::map<std::u16string, T>& table);

class JsonReader {
public:
    explicit JsonReader(const JsonPlace& place) : place_(place) {
        if (!place.value.is_object())
            place.fail("must be an object");
    }
    template <class T>
    bool operator()(const char* key, T&& value) { // whether the key was there
        known_.insert(key);
        const auto found = place_.value.find(key);
        if (found == place_.value.end())
            return false;
        from_json_value(place_.at(key, *found), value);
        return true;
    }
    template <class T>
    void required(const char* key, T&& value) {
        if (!(*this)(key, std::forward<T>(value)))
            place_.fail(std::string("lacks \"") + key + "\"");
    }
    // Complains about keys that nobody asked for; those named here were read in some other way.
    void finish(std::set<std::string> also = {}) const;

private:
    const JsonPlace& place_;
    std::set<std::string> known_;
};

class JsonWriter {
public:
    template <class T>
    void operator()(const char* key, T&& value) {
        Json written = json_value(value);
        if (!written.is_null())
            object[key] = std::move(written);
    }
    template <class T>
    void required(const char* key, T&& value) {
        (*this)(key, value);
    }
    Json object = Json::object();
};

template <class T>
concept JsonRecord = requires(T& record, JsonReader& reader) { fields(reader, record); };

template <JsonRecord T>
void from_json_value(const JsonPlace& place, T& record) {
    JsonReader reader(place);
    fields(reader, record);
    reader.finish();
}

template <JsonRecord T>
Json json_value(T& record) {
    JsonWriter writer;
    fields(writer, record);
    return writer.object;
}

template <class T>
void from_json_value(const JsonPlace& place, std::vector<T>& list) {
    if (!place.value.is_array())
        place.fail("must be a list");
    list.clear();
    for (const Json& element : place.value) {
        const JsonPlace inner = place.at(std::to_string(list.size()), element);
        from_json_value(inner, list.emplace_back());
    }
}

template <class T>
void from_json_value(const JsonPlace& place, std::map<std::u16string, T>& table) {
    if (!place.value.is_object())
        place.fail("must be an object");
    table.clear();
    for (const auto& [key, element] : place.value.items())
        from_json_value(place.at(key, element), table[to_utf16(key)]);
}

template <ListElement T>
Json json_value(std::vector<T>& list) {
    Json written = Json::array();
    for (T& element : list)
        written.push_back(json_value(element));
    return written;
}

template <class T>
Json json_value(std::map<std::u16string, T>& table) {
    Json written = Json::object();
    for (auto& [key, element] : table)
        written[json_value(key).template get<std::string>()] = json_value(element);
    return written;
}

} // namespace platform
