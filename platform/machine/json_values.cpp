#include "machine/json_values.h"

namespace platform {
namespace {

constexpr std::string_view digits = "0123456789abcdef";

int digit_value(char digit) {
    const char small = digit >= 'A' && digit <= 'F' ? static_cast<char>(digit + 32) : digit;
    const std::size_t place = digits.find(small);
    return place == std::string_view::npos ? -1 : static_cast<int>(place);
}

} // namespace

void JsonPlace::fail(const std::string& reason) const {
    throw JsonError(document.spot_of(value), path.empty() ? reason : path + ": " + reason);
}

void JsonPlace::fail_at_key(const std::string& reason) const {
    throw JsonError(document.spot_of_key(value), path + ": " + reason);
}

void from_json_value(const JsonPlace& place, bool& value) {
    if (!place.value.is_boolean())
        place.fail("must be true or false");
    value = place.value.get<bool>();
}

void from_json_value(const JsonPlace& place, std::string& value) {
    if (!place.value.is_string())
        place.fail("must be a text");
    value = place.value.get<std::string>();
}

void from_json_value(const JsonPlace& place, std::u16string& value) {
    std::string text;
    from_json_value(place, text);
    value = to_utf16(text);
    if (value.find(u'\0') != value.npos)
        place.fail("has a NUL in it");
}

void from_json_value(const JsonPlace& place, std::vector<std::uint8_t>& value) {
    std::string text;
    from_json_value(place, text);
    value.clear();
    if (text.size() % 2 != 0)
        place.fail("must have two hexadecimal digits for each byte");
    for (std::size_t index = 0; index < text.size(); index += 2) {
        const int high = digit_value(text[index]);
        const int low = digit_value(text[index + 1]);
        if (high < 0 || low < 0)
            place.fail("must have two hexadecimal digits for each byte");
        value.push_back(static_cast<std::uint8_t>(high * 16 + low));
    }
}

std::uint32_t number_from_json(const JsonPlace& place, std::uint32_t largest) {
    const Json& value = place.value;
    if (!value.is_number_unsigned() || value.get<std::uint64_t>() > largest)
        place.fail("must be a whole number from 0 to " + std::to_string(largest));
    return value.get<std::uint32_t>();
}

Json json_value(const std::string& value) {
    if (to_utf8(to_utf16(value)) != value)
        throw JsonError({}, "a text that is no UTF-8 can't be written");
    return value;
}

Json json_value(const std::u16string& value) {
    const std::string text = to_utf8(value);
    if (to_utf16(text) != value)
        throw JsonError({}, "\"" + text + "\" holds half a surrogate pair and can't be written");
    return text;
}

Json json_value(const std::vector<std::uint8_t>& value) {
    std::string text;
    for (const std::uint8_t byte : value) {
        text += digits[byte >> 4];
        text += digits[byte & 0xF];
    }
    return text;
}

} // namespace platform
