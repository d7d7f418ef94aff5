// Reading and writing records by one description of their fields:
//   template <class Archive> void fields(Archive& archive, Record& record) { archive("key", record.key); ...
//   }
// A type with a form of its own has json_value and from_json_value instead.
#pragma once

#include "machine/json_values.h"
#include "machine/near_words.h"

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

namespace platform {

class JsonReader {
public:
    explicit JsonReader(const JsonPlace& place) : place_(place) {
        if (!place.value.is_object())
            place.fail("must be an object");
    }
    template<class T>
    bool operator()(const char* key, T&& value) { // whether the key was there
        known_.emplace_back(key);
        const auto found = place_.value.find(key);
        if (found == place_.value.end())
            return false;
        from_json_value(place_.at(key, *found), value);
        return true;
    }
    // The check looks at what was read, and complains at its place.
    template<class T, class Check>
    void operator()(const char* key, T&& value, Check check) {
        if ((*this)(key, value))
            check(place_.at(key, *place_.value.find(key)), value);
    }
    template<class T>
    void required(const char* key, T&& value) {
        if (!(*this)(key, std::forward<T>(value)))
            place_.fail(std::string("lacks \"") + key + "\"");
    }
    // Complains about keys that nobody asked for; those named here were read in some other way.
    void finish(const std::vector<std::string>& also = {}) {
        known_.insert(known_.end(), also.begin(), also.end());
        for (const auto& [key, value] : place_.value.items())
            if (std::find(known_.begin(), known_.end(), key) == known_.end())
                place_.at(key, value).fail_at_key("unknown key" + did_you_mean_or_list(key, known_));
    }

private:
    const JsonPlace& place_;
    std::vector<std::string> known_; // in the order in which they are asked for
};

class JsonWriter {
public:
    template<class T>
    void operator()(const char* key, T&& value) {
        Json written = json_value(value);
        if (!written.is_null())
            object[key] = std::move(written);
    }
    template<class T, class Check>
    void operator()(const char* key, T&& value, const Check&) {
        (*this)(key, value);
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
