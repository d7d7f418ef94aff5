#include "machine/printer_data.h"

#include "machine/text.h"

#include <algorithm>

namespace platform {
namespace {

bool plain_key(std::u16string_view key) {
    return !key.empty() && key.front() != u'\\' && key.back() != u'\\' && key.find(u"\\\\") == key.npos;
}

// What a stored key has behind `key` and its backslash; nothing when it doesn't lie below.
std::optional<std::u16string_view> below(std::u16string_view stored, std::u16string_view key) {
    if (key.empty())
        return stored;
    if (stored.size() <= key.size() || stored[key.size()] != u'\\' ||
        !same_name(stored.substr(0, key.size()), key))
        return std::nullopt;
    return stored.substr(key.size() + 1);
}

} // namespace

std::optional<std::vector<std::u16string>> printer_sub_keys(const PrintQueue& queue,
                                                            std::u16string_view key) {
    std::vector<std::u16string> names;
    bool exists = key.empty();
    for (const auto& [stored, values] : queue.data) {
        exists = exists || same_name(stored, key);
        const auto rest = below(stored, key);
        if (!rest)
            continue;
        exists = true;
        const std::u16string name(rest->substr(0, rest->find(u'\\')));
        if (std::none_of(names.begin(), names.end(),
                         [&name](const auto& known) { return same_name(known, name); }))
            names.push_back(name);
    }
    if (!exists)
        return std::nullopt;
    return names;
}

std::uint32_t set_printer_value(PrintQueue& queue, std::u16string_view key, std::u16string_view name,
                                PrinterDataValue value) {
    if (!plain_key(key) || name.empty())
        return spooler_error::invalid_parameter;
    auto place = std::find_if(queue.data.begin(), queue.data.end(),
                              [key](const auto& entry) { return same_name(entry.first, key); });
    if (place == queue.data.end())
        place = queue.data.emplace(key, std::map<std::u16string, PrinterDataValue>()).first;
    auto& values = place->second;
    const auto known = std::find_if(values.begin(), values.end(),
                                    [name](const auto& entry) { return same_name(entry.first, name); });
    if (known == values.end())
        values.emplace(name, std::move(value));
    else
        known->second = std::move(value);
    return 0;
}

const PrinterDataValue* find_printer_value(const PrintQueue& queue, std::u16string_view key,
                                           std::u16string_view name) {
    for (const auto& [stored, values] : queue.data) {
        if (!same_name(stored, key))
            continue;
        for (const auto& [value_name, value] : values) {
            if (same_name(value_name, name))
                return &value;
        }
    }
    return nullptr;
}

bool is_text_type(std::uint32_t type) {
    return type == 1 || type == 2 || type == 7;
}

} // namespace platform
