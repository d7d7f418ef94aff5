// Reading and writing records by one description of their fields:
//   template <class Archive> void fields(Archive& archive, Record& record) { archive("key", record.key); ...
//   }
// A type with a form of its own has json_value and from_json_value instead.
#pragma once

#include "machine/json_values.h"

#include <set>
#include <utility>

namespace platform {

class JsonReader {
public:
    explicit JsonReader(const JsonPlace& place) : place_(place) {
        if (!place.value.is_object())
            place.fail("must be an object");
    }
    template<class T>
    bool operator()(const char* key, T&& value) { // whether the key was there
        known_.insert(key);
        const auto found = place_.value.find(key);
        if (found == place_.value.end())
            return false;
        from_json_value(place_.at(key, *found), value);
        return true;
    }
    template<class T>
    void required(const char* key, T&& value) {
        if (!(*this)(key, std::forward<T>(value)))
            place_.fail(std::string("lacks \"") + key + "\"");
    }
    // Complains about keys that nobody asked for; those named here were read in some other way.
    void finish(const std::set<std::string>& also = {}) const {
        for (const auto& [key, value] : place_.value.items())
            if (!known_.contains(key) && !also.contains(key))
                place_.at(key, value).fail("unknown key");
    }

private:
    const JsonPlace& place_;
    std::set<std::string> known_;
};

class JsonWriter {
public:
    template<class T>
    void operator()(const char* key, T&& value) {
        Json written = json_value(value);
        if (!written.is_null())
            object[key] = std::move(written);
    }
    template<class T>
    void required(const char* key, T&& value) {
        (*this)(key, value);
    }
    Json object = Json::object();
};

template<class T>
concept JsonRecord = requires(T& record, JsonReader& reader) {
    fields(reader, record);
};

template<JsonRecord T>
void from_json_value(const JsonPlace& place, T& record) {
    JsonReader reader(place);
    fields(reader, record);
    reader.finish();
}

template<JsonRecord T>
Json json_value(T& record) {
    JsonWriter writer;
    fields(writer, record);
    return writer.object;
}

} // namespace platform
