#include "machine/json_forms.h"

#include "machine/little_endian.h"
#include "machine/slp_agent.h"

#include <algorithm>
#include <charconv>
#include <chrono>
#include <iterator>
#include <span>
#include <string_view>

namespace platform {
namespace {

// The numbers at each 'n' of the shape, whose other characters stand for themselves; nothing for another
// text.
std::optional<std::vector<unsigned>> numbers_of(std::string_view text, std::string_view shape,
                                                unsigned largest) {
    std::vector<unsigned> numbers;
    const char* place = text.data();
    const char* end = place + text.size();
    for (const char letter : shape) {
        if (letter != 'n') {
            if (place == end || *place++ != letter)
                return std::nullopt;
            continue;
        }
        unsigned number = 0;
        const auto [after, problem] = std::from_chars(place, end, number);
        if (problem != std::errc() || number > largest)
            return std::nullopt;
        numbers.push_back(number);
        place = after;
    }
    return place == end ? std::optional(numbers) : std::nullopt;
}

std::string dotted(const std::vector<unsigned>& numbers) {
    std::string text;
    for (const unsigned number : numbers)
        text += (text.empty() ? "" : ".") + std::to_string(number);
    return text;
}

// Year, month, day, hour, minute and second, from the year on in which the platform's time begins.
bool is_time(const std::vector<unsigned>& time) {
    using namespace std::chrono;
    const year_month_day date(year(static_cast<int>(time[0])), month(time[1]), day(time[2]));
    return date.ok() && time[0] >= 1601 && time[3] < 24 && time[4] < 60 && time[5] < 60;
}

// Words that stand for the number of their place.
std::uint32_t number_of(const JsonPlace& place, std::span<const std::string_view> words,
                        std::uint32_t largest) {
    if (place.value.is_number())
        return number_from_json(place, largest);
    std::string text;
    from_json_value(place, text);
    const auto found = std::find(words.begin(), words.end(), text);
    if (found == words.end())
        place.fail("\"" + text + "\" isn't known here" +
                   did_you_mean_or_list(text, {words.begin(), words.end()}));
    return static_cast<std::uint32_t>(found - words.begin());
}

Json word_of(std::uint32_t number, std::span<const std::string_view> words) {
    return number < words.size() ? Json(std::string(words[number])) : Json(number);
}

constexpr std::string_view states[] = {"unknown", "stopped",          "start_pending", "stop_pending",
                                       "running", "continue_pending", "pause_pending", "paused"};

enum : std::uint32_t { type_sz = 1, type_expand_sz = 2, type_binary = 3, type_dword = 4 };
constexpr std::string_view types[] = {"none", "sz", "expand_sz", "binary", "dword"};

bool is_text(std::uint32_t type) {
    return type == type_sz || type == type_expand_sz;
}

std::vector<std::uint8_t> text_bytes(const std::u16string& text) {
    return utf16_bytes(text + u'\0');
}

// The readable form of a value's bytes, or nothing when only "hex" gives them back exactly.
std::optional<Json> readable(std::uint32_t type, const std::vector<std::uint8_t>& bytes) {
    if (type == type_binary)
        return json_value(bytes);
    if (type == type_dword && bytes.size() == 4)
        return ByteReader(bytes).number(4);
    if (!is_text(type) || bytes.size() < 2 || bytes.size() % 2 != 0)
        return std::nullopt;
    const std::string utf8 = to_utf8(utf16_text(std::span(bytes).first(bytes.size() - 2)));
    const bool exact = text_bytes(to_utf16(utf8)) == bytes;
    return exact ? std::optional<Json>(utf8) : std::nullopt;
}

std::vector<std::uint8_t> bytes_of(const JsonPlace& place, std::uint32_t type) {
    std::vector<std::uint8_t> bytes;
    if (is_text(type)) {
        std::string text; // with a NUL where the bytes have one
        from_json_value(place, text);
        bytes = text_bytes(to_utf16(text));
    } else if (type == type_dword) {
        append_number(bytes, static_cast<std::uint32_t>(number_from_json(place, UINT32_MAX)));
    } else {
        from_json_value(place, bytes);
    }
    return bytes;
}

// An object with one of two keys, which is read by the routine that belongs to it.
const Json* one_of(const JsonPlace& place, const char* first, const char* second) {
    const Json& object = place.value;
    const auto found = object.find(first);
    if ((found != object.end()) == object.contains(second))
        place.fail(std::string("needs either \"") + first + "\" or \"" + second + "\"");
    return found == object.end() ? nullptr : &*found;
}

struct TypeName {
    std::uint32_t& type;
};

void from_json_value(const JsonPlace& place, const TypeName& form) {
    form.type = number_of(place, types, UINT32_MAX);
}

template<class Value>
void read_typed(const JsonPlace& place, Value& value) {
    JsonReader reader(place);
    reader.required("type", TypeName{value.type});
    value.data.clear();
    if (const Json* readable_form = one_of(place, "value", "hex"))
        value.data = bytes_of(place.at("value", *readable_form), value.type);
    else
        reader("hex", value.data);
    reader.finish({"value"});
}

template<class Value>
Json write_typed(const Value& value) {
    Json object{{"type", word_of(value.type, types)}};
    if (const auto form = readable(value.type, value.data))
        object["value"] = *form;
    else
        object["hex"] = json_value(value.data);
    return object;
}

std::vector<std::uint8_t> reply_with(std::string_view attributes) {
    AttributeRequest request;
    request.xid = 0x2010; // the one that the program's requests have
    request.language = "en";
    return attribute_reply(request, attributes);
}

constexpr std::size_t longest_attribute_list = 4000 - 21; // what the program's receive buffer takes

} // namespace

void from_json_value(const JsonPlace& place, const VersionText& form) {
    std::string text;
    from_json_value(place, text);
    const auto numbers = numbers_of(text, "n.n.n.n", 0xFFFF);
    if (!numbers)
        place.fail("must be a version like \"1.2.3.4\"");
    form.version = 0;
    for (const unsigned number : *numbers)
        form.version = (form.version << 16) | number;
}

Json json_value(const VersionText& form) {
    const auto field = [&form](int shift) { return std::to_string((form.version >> shift) & 0xFFFF); };
    return field(48) + "." + field(32) + "." + field(16) + "." + field(0);
}

void from_json_value(const JsonPlace& place, const DottedAddress& form) {
    from_json_value(place, form.text);
    const auto numbers = numbers_of(form.text, "n.n.n.n", 255);
    if (!numbers || dotted(*numbers) != form.text) // 010 is octal to some and 10 to others
        place.fail("must be an address like \"10.0.0.7\"");
}

Json json_value(const DottedAddress& form) {
    return json_value(form.text);
}

void from_json_value(const JsonPlace& place, const DottedAddresses& form) {
    from_json_value(place, form.list);
    for (std::size_t index = 0; index < form.list.size(); ++index)
        from_json_value(place.at(std::to_string(index), place.value[index]), DottedAddress{form.list[index]});
}

Json json_value(const DottedAddresses& form) {
    return json_value(form.list);
}

void from_json_value(const JsonPlace& place, const ClockText& form) {
    from_json_value(place, form.text);
    if (form.text.empty())
        return;
    const auto time = numbers_of(form.text, "n-n-nTn:n:n", 9999);
    if (!time || form.text.size() != 19 || !is_time(*time))
        place.fail("must be a local time like \"2024-07-04T09:05:01\", or empty for the real one");
}

Json json_value(const ClockText& form) {
    return json_value(form.text);
}

void from_json_value(const JsonPlace& place, const SystemWord& form) {
    std::string text;
    from_json_value(place, text);
    if (text != "x64" && text != "x86")
        place.fail("must be \"x64\" or \"x86\"");
    form.system = text == "x86" ? System::x86 : System::x64;
}

Json json_value(const SystemWord& form) {
    return form.system == System::x86 ? "x86" : "x64";
}

void from_json_value(const JsonPlace& place, const CodePageNumber& form) {
    constexpr std::uint32_t known[] = {932, 936, 949, 950, 1250, 1251, 1252, 65001};
    form.number = number_from_json(place, UINT32_MAX);
    if (std::find(std::begin(known), std::end(known), form.number) == std::end(known))
        place.fail("must be 932, 936, 949, 950, 1250, 1251, 1252 or 65001");
}

Json json_value(const CodePageNumber& form) {
    return form.number;
}

void from_json_value(const JsonPlace& place, const StateName& form) {
    form.state = number_of(place, states, std::size(states) - 1);
}

Json json_value(const StateName& form) {
    return word_of(form.state, states);
}

void from_json_value(const JsonPlace& place, const NetworkWord& form) {
    std::string text;
    from_json_value(place, text);
    if (text != "real" && text != "scripted")
        place.fail("must be \"real\" or \"scripted\"");
    form.real = text == "real";
}

Json json_value(const NetworkWord& form) {
    return form.real ? "real" : "scripted";
}

void from_json_value(const JsonPlace& place, const CountFromOne& form) {
    form.number = number_from_json(place, UINT32_MAX);
    if (form.number == 0)
        place.fail("is counted from 1");
}

Json json_value(const CountFromOne& form) {
    return form.number;
}

void from_json_value(const JsonPlace& place, const OptionalNumber& form) {
    form.number = number_from_json(place, UINT32_MAX);
}

Json json_value(const OptionalNumber& form) {
    return form.number ? Json(*form.number) : Json();
}

void from_json_value(const JsonPlace& place, RegistryValue& value) {
    read_typed(place, value);
}
void from_json_value(const JsonPlace& place, PrinterDataValue& value) {
    read_typed(place, value);
}
Json json_value(const RegistryValue& value) {
    return write_typed(value);
}
Json json_value(const PrinterDataValue& value) {
    return write_typed(value);
}

void from_json_value(const JsonPlace& place, UsbDriverEntry& value) {
    from_json_value(place, value.description);
}
Json json_value(const UsbDriverEntry& value) {
    return json_value(value.description);
}

void from_json_value(const JsonPlace& place, ScriptedDatagram& value) {
    JsonReader reader(place);
    reader("from", DottedAddress{value.from});
    if (one_of(place, "text", "hex") != nullptr) {
        std::string text;
        reader("text", text);
        if (text.size() > longest_attribute_list)
            place.fail("is longer than the " + std::to_string(longest_attribute_list) + " bytes of a reply");
        value.bytes = reply_with(text);
    } else {
        reader("hex", value.bytes);
    }
    reader.finish();
}

Json json_value(const ScriptedDatagram& value) {
    Json object{{"from", json_value(value.from)}};
    const bool framed = value.bytes.size() >= 21 && value.bytes.size() - 21 <= longest_attribute_list;
    const std::string text = framed ? std::string(value.bytes.begin() + 20, value.bytes.end() - 1) : "";
    if (framed && to_utf8(to_utf16(text)) == text && reply_with(text) == value.bytes)
        object["text"] = text;
    else
        object["hex"] = json_value(value.bytes);
    return object;
}

} // namespace platform
