#include "rehearsal/log/lines.h"

#include "rehearsal/log/line_tables.h"

#include <vector>

namespace rehearsal::logs {
namespace {

std::vector<Line> join_tables() {
    std::vector<Line> all;
    for (const auto part : {lines_of_setup(), lines_of_install(), lines_of_library()})
        all.insert(all.end(), part.begin(), part.end());
    return all;
}

// A quick look at the format's first literal, which spares most lines the whole comparison.
bool may_begin_with(std::string_view pattern, std::string_view text) {
    while (!pattern.empty() && pattern.back() == ' ')
        pattern.remove_suffix(1);
    const std::string_view literal = pattern.substr(0, std::min(pattern.find('%'), pattern.size()));
    return text.starts_with(literal.substr(0, literal.find_last_not_of(' ') + 1));
}

std::string cell(std::string_view text) {
    std::string out;
    for (const char c : text) {
        if (c == '|')
            out += '\\';
        out += c;
    }
    return out.empty() ? " " : out;
}

std::string row(const Line& line) {
    const std::string shown = line.bare ? "*(the text alone)*" : "`" + cell(line.pattern) + "`";
    const std::string weight = line.weight == Weight::plain ? "" : weight_name(line.weight);
    return "| " + shown + " | " + cell(weight) + " | " + cell(line.meaning) + " | " + cell(line.cause) +
           " | " + cell(line.remedy) + " |\n";
}

} // namespace

std::span<const Line> lines() {
    static const std::vector<Line> all = join_tables();
    return all;
}

const char* area_name(Area area) {
    switch (area) {
    case Area::start:
        return "start of a run";
    case Area::package:
        return "driver package and starting state";
    case Area::connection:
        return "connection and printer list";
    case Area::search:
        return "network search";
    case Area::terms:
        return "terms";
    case Area::install:
        return "install";
    case Area::files:
        return "program files and shortcuts";
    case Area::driver:
        return "driver";
    case Area::port:
        return "port";
    case Area::queue:
        return "queue and label sizes";
    case Area::library:
        return "removal and the library's other operations";
    }
    return "";
}

const char* weight_name(Weight weight) {
    switch (weight) {
    case Weight::plain:
        return "plain";
    case Weight::notice:
        return "notice";
    case Weight::failed:
        return "failed step";
    case Weight::stopped:
        return "ends the run";
    }
    return "";
}

const Line* find_line(std::string_view text, bool in_search, Fields& fields) {
    for (const Line& line : lines())
        if (!line.bare && (!in_search || line.area == Area::search || line.role == Role::banner) &&
            may_begin_with(line.pattern, text) && match_pattern(line.pattern, text, fields))
            return &line;
    fields.clear();
    return nullptr;
}

const Line& bare_line(Role role) {
    for (const Line& line : lines())
        if (line.bare && line.role == role)
            return line;
    static constexpr Line unknown{"%s", Area::start, Weight::plain, ""};
    return unknown;
}

std::string lines_as_markdown() {
    std::string page;
    const Area* last = nullptr;
    for (const Line& line : lines()) {
        if (last == nullptr || *last != line.area) {
            page += std::string(last == nullptr ? "" : "\n") + "### " + area_name(line.area) + "\n\n";
            page += "| Line | | Meaning | Cause | Remedy |\n|---|---|---|---|---|\n";
        }
        last = &line.area;
        page += row(line);
    }
    return page;
}

} // namespace rehearsal::logs
