#include "rehearsal/pages/machine_changes.h"

#include "machine/machine_json.h"
#include "rehearsal/pages/page.h"

#include <nlohmann/json.hpp>

#include <algorithm>

namespace rehearsal::pages {
namespace {

using Json = nlohmann::ordered_json;

constexpr char between[] = " / ";

// How a record of a list is known again: by its name or path, else by its place.
std::string label_of(const Json& record, std::size_t place) {
    if (record.is_object())
        for (const char* key : {"name", "inf_path", "path", "description", "id"})
            if (record.contains(key) && record[key].is_string() && !record[key].empty())
                return record[key];
    return "#" + std::to_string(place + 1);
}

bool is_list_of_records(const Json& json) {
    return json.is_array() &&
           std::any_of(json.begin(), json.end(), [](const Json& one) { return one.is_structured(); });
}

// Lists of records become objects, so that all that has parts is compared by name.
Json keyed(const Json& json) {
    if (!is_list_of_records(json))
        return json;
    Json out = Json::object();
    for (std::size_t i = 0; i < json.size(); ++i) {
        std::string label = label_of(json[i], i);
        while (out.contains(label))
            label += " again";
        out[label] = json[i];
    }
    return out;
}

// A registry or printer value, which has a type beside it.
bool is_value(const Json& json) {
    return json.is_object() && json.size() == 2 && json.contains("type") && json.contains("value");
}

bool has_parts(const Json& json) {
    return (json.is_object() && !is_value(json)) || is_list_of_records(json);
}

// On one line.
std::string shown(const Json& json) {
    if (json.is_null())
        return "";
    if (is_value(json))
        return shown(json["value"]);
    if (json.is_string())
        return json.get_ref<const std::string&>().empty() ? "\"\"" : json.get<std::string>();
    if (!json.is_object())
        return json.dump(-1, ' ', false, Json::error_handler_t::replace);
    std::string out;
    for (const auto& [key, value] : json.items())
        out += (out.empty() ? "" : ", ") + key + "=" + shown(value);
    return out;
}

bool is_flat(const Json& json) {
    return !has_parts(json) || std::none_of(json.begin(), json.end(), has_parts);
}

class Comparison {
public:
    std::vector<Change> take() { return std::move(changes_); }

    void compare(const Json& before, const Json& after, const std::vector<std::string>& path) {
        if (before == after)
            return;
        constexpr std::size_t thing_parts = 3; // "spooler", "queues", and the queue's name
        const bool whole = !has_parts(before) && !has_parts(after);
        if (whole || (path.size() > thing_parts && is_flat(before) && is_flat(after)))
            return add(path, before, after);
        const Json old = has_parts(before) ? keyed(before) : Json::object();
        const Json fresh = has_parts(after) ? keyed(after) : Json::object();
        if (old.empty() && fresh.empty())
            return add(path, before, after);
        for (const auto& [key, value] : old.items())
            compare_part(value, fresh.contains(key) ? fresh[key] : Json(), path, key);
        for (const auto& [key, value] : fresh.items())
            if (!old.contains(key))
                compare_part(Json(), value, path, key);
    }

private:
    void compare_part(const Json& before, const Json& after, std::vector<std::string> path,
                      const std::string& key) {
        path.push_back(key);
        compare(before, after, path);
    }

    void add(const std::vector<std::string>& path, const Json& before, const Json& after) {
        constexpr std::size_t thing_parts = 3;
        Change change{"", "", shown(before), shown(after)};
        for (std::size_t i = 0; i < path.size(); ++i) {
            std::string& part = i < thing_parts ? change.thing : change.key;
            part += (part.empty() ? "" : between) + path[i];
        }
        if (change.before != change.after) // an empty record is like none
            changes_.push_back(std::move(change));
    }

    std::vector<Change> changes_;
};

// Who can't tell colours reads the sign.
const char* sign_of(bool was, bool is) {
    return !was ? "+" : is ? "\xC2\xB1" : "\xE2\x88\x92"; // U+00B1, U+2212
}

const char* class_of(bool was, bool is) {
    return !was ? "came" : is ? "changed" : "went";
}

void put_row(Html& html, const std::string& name, const std::string& before, const std::string& after) {
    const bool was = !before.empty(), is = !after.empty();
    const auto row =
        html.in("tr", {{"class", class_of(was, is)}, {"data-kind", class_of(was, is)}, {"data-entry", ""}});
    html.put("td", {{"class", "change-sign"}}, sign_of(was, is));
    html.put("td", name);
    html.put("td", {{"class", "before"}}, before);
    html.put("td", {{"class", "after"}}, after);
}

std::string file_text(const DriveFiles& files, const std::string& path) {
    const auto file = files.find(path);
    if (file == files.end())
        return "";
    return file->second.folder ? "folder" : counted(file->second.size, "byte");
}

} // namespace

std::vector<Change> machine_changes(const platform::Machine& before, const platform::Machine& after) {
    Comparison comparison;
    comparison.compare(Json::parse(platform::machine_text(before)),
                       Json::parse(platform::machine_text(after)), {});
    return comparison.take();
}

void put_machine_changes(Html& html, const Outcome& outcome) {
    const std::vector<Change> changes = machine_changes(outcome.before, outcome.after);
    if (changes.empty())
        return html.put("p", "The machine is as it was.");
    const auto scroller = html.in("div", {{"class", "scroller"}});
    const auto table = html.in("table", {{"class", "difference"}});
    put_table_head(html, {"", "Key", "Before", "After"});
    for (std::size_t i = 0; i < changes.size();) {
        const std::string& thing = changes[i].thing;
        const auto body = html.in("tbody");
        if (!changes[i].key.empty()) {
            const auto row = html.in("tr", {{"class", "thing"}});
            html.put("th", {{"colspan", "4"}, {"scope", "rowgroup"}}, thing);
        }
        for (const bool alone = changes[i].key.empty(); i < changes.size() && changes[i].thing == thing; ++i)
            put_row(html, alone ? thing : changes[i].key, changes[i].before, changes[i].after);
    }
}

void put_file_changes(Html& html, const Outcome& outcome) {
    std::vector<std::string> paths;
    for (const auto& [path, file] : outcome.files_before)
        if (!outcome.files_after.contains(path))
            paths.push_back(path);
    for (const auto& [path, file] : outcome.files_after)
        if (was_made(outcome, path))
            paths.push_back(path);
    std::sort(paths.begin(), paths.end());
    if (paths.empty())
        return html.put("p", "The drive is as it was.");
    const auto scroller = html.in("div", {{"class", "scroller"}});
    const auto table = html.in("table", {{"class", "difference"}});
    put_table_head(html, {"", "Path", "Before", "After"});
    const auto body = html.in("tbody");
    for (const std::string& path : paths)
        put_row(html, path, file_text(outcome.files_before, path), file_text(outcome.files_after, path));
}

} // namespace rehearsal::pages
