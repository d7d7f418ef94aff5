#include "rehearsal/pages/matrix_page.h"

#include "rehearsal/pages/page.h"

#include <algorithm>

namespace rehearsal::pages {
namespace {

using matrix::Cell;
using matrix::Ending;
using matrix::Group;
using matrix::Matrix;
using matrix::Result;

constexpr char no_fault[] = "no failing call";

bool needs_attention(Ending ending) {
    return ending < Ending::unheard;
}

Tone ending_tone(Ending ending) {
    if (needs_attention(ending))
        return Tone::bad;
    return ending == Ending::well ? Tone::good : ending == Ending::unheard ? Tone::warning : Tone::plain;
}

std::string group_id(std::size_t place) {
    return "group-" + std::to_string(place + 1);
}

std::size_t count_of(const Matrix& matrix, Ending ending) {
    return matrix.count(ending, false) + matrix.count(ending, true);
}

// What is to be looked at first, each with a link to its runs.
void put_attention(Html& html, const std::vector<Group>& groups) {
    const auto list = html.in("ul", {{"class", "attention"}});
    for (std::size_t i = 0; i < groups.size() && needs_attention(groups[i].ending); ++i) {
        const auto item = html.in("li");
        html.put("a", {{"href", "#" + group_id(i)}}, groups[i].name);
        html.put("b", {{"class", "bad"}}, matrix::meaning_of(groups[i].ending));
        html.put("span", {{"class", "count"}}, counted(groups[i].results.size(), "run"));
        html.put("p", groups[i].results.front()->verdict);
    }
}

void put_count(Html& html, const matrix::Overview::Count& count) {
    const bool good = count.good == count.all;
    const std::string text = count.all == 0 ? "\u2013"
                             : good         ? std::to_string(count.good)
                                            : std::to_string(count.good) + " of " + std::to_string(count.all);
    html.put("td", {{"class", count.all == 0 ? "number" : good ? "number good" : "number bad"}}, text);
}

void put_overview(Html& html, const Matrix& matrix) {
    const matrix::Overview overview = matrix::overview_of(matrix);
    html.put("p", "In how many languages a run ended well, by starting state and road, on each system.");
    const auto scroller = html.in("div", {{"class", "scroller"}, {"tabindex", "0"}});
    const auto table = html.in("table", {{"class", "overview"}});
    {
        const auto head = html.in("thead");
        const auto row = html.in("tr");
        html.put("th", {{"scope", "col"}}, "State and road");
        for (const std::string& column : overview.columns)
            html.put("th", {{"scope", "col"}, {"class", "number"}}, column);
    }
    const auto body = html.in("tbody");
    for (const auto& [name, counts] : overview.rows) {
        const auto row = html.in("tr");
        html.put("th", {{"scope", "row"}}, name);
        for (const matrix::Overview::Count& count : counts)
            put_count(html, count);
    }
}

void put_faults(Html& html, const Matrix& matrix) {
    html.put(
        "p",
        "How many runs had which ending when the call failed at its first coming. Failed silently: a box "
        "of success, and something is missing. Not told: no box of success or failure. Told: a box "
        "told of the failure. Harmless: a step failed, and all is there.");
    std::vector<Ending> columns;
    for (const Ending ending : matrix::endings)
        if (matrix.count(ending, true) != 0)
            columns.push_back(ending);
    const auto scroller = html.in("div", {{"class", "scroller"}, {"tabindex", "0"}});
    const auto table = html.in("table", {{"class", "overview"}});
    {
        const auto head = html.in("thead");
        const auto row = html.in("tr");
        html.put("th", {{"scope", "col"}}, "Call");
        for (const Ending ending : columns)
            html.put("th", {{"scope", "col"}, {"class", "number"}}, matrix::meaning_of(ending));
    }
    const auto body = html.in("tbody");
    for (const matrix::FaultRow& fault : matrix::faults_of(matrix)) {
        const auto row = html.in("tr");
        html.put("th", {{"scope", "row"}}, fault.call);
        for (const Ending ending : columns) {
            const std::size_t count = fault.counts[static_cast<std::size_t>(ending)];
            const std::string tone(tone_class(count == 0 ? Tone::plain : ending_tone(ending)));
            html.put("td", {{"class", "number " + tone}}, count == 0 ? "\u2013" : std::to_string(count));
        }
    }
}

void put_run(Html& html, const Matrix& matrix, const Result& result) {
    const Cell& cell = result.cell;
    const auto row = html.in("tr", {{"data-entry", ""},
                                    {"data-kind", matrix::name_of(result.ending())},
                                    {"data-language", cell.language},
                                    {"data-system", cell.system},
                                    {"data-windows", cell.windows},
                                    {"data-state", std::string_view(&cell.state, 1)},
                                    {"data-road", cell.road},
                                    {"data-call", cell.fault.empty() ? no_fault : cell.fault}});
    {
        const auto run = html.in("th", {{"scope", "row"}});
        html.put("p", cell.language + " " + cell.system + " " + cell.windows);
        html.put("p", cell.kind());
    }
    {
        const auto told = html.in("td");
        html.put("p", result.verdict);
        if (!result.box.empty())
            html.put("p", {{"class", "box-text"}}, result.box);
    }
    html.put("td", {{"class", "number"}}, std::to_string(result.exit_code));
    {
        const auto stayed = html.in("td");
        for (const std::string& thing : result.stayed)
            html.put("p", thing);
    }
    const auto again = html.in("td");
    html.put("code", matrix::repeat_command(matrix, cell));
}

void put_group(Html& html, const Matrix& matrix, const Group& group, std::size_t place) {
    const auto details =
        html.in("details", {{"class", "group"}, {"id", group_id(place)}, {"data-group", ""}});
    {
        const auto summary = html.in("summary");
        html.put("span", {{"class", "ending " + std::string(tone_class(ending_tone(group.ending)))}},
                 matrix::meaning_of(group.ending));
        html.put("code", group.name);
        html.put("span", {{"class", "count"}}, counted(group.results.size(), "run"));
        html.put("span", {{"class", "verdict"}}, group.results.front()->verdict);
    }
    const auto scroller = html.in("div", {{"class", "scroller"}, {"tabindex", "0"}});
    const auto table = html.in("table", {{"class", "runs"}});
    put_table_head(html, {"Run", "Verdict and last box", "Exit", "What stayed", "Again"});
    const auto body = html.in("tbody");
    for (const Result* const result : group.results)
        put_run(html, matrix, *result);
}

// The values of a part of all cells, in the order of the cells.
FilterList list_of(const Matrix& matrix, const char* key, const char* label,
                   std::string (*part)(const Cell&)) {
    std::vector<Cell> cells;
    for (const Result& result : matrix.results)
        cells.push_back(result.cell);
    std::sort(cells.begin(), cells.end());
    FilterList list{key, label, {}};
    for (const Cell& cell : cells)
        if (std::find(list.values.begin(), list.values.end(), part(cell)) == list.values.end())
            list.values.push_back(part(cell));
    return list;
}

void put_runs(Html& html, const Matrix& matrix, const std::vector<Group>& groups) {
    std::vector<FilterChoice> choices;
    for (const Ending ending : matrix::endings)
        if (const std::size_t count = count_of(matrix, ending); count != 0)
            choices.push_back({matrix::name_of(ending), matrix::meaning_of(ending), count});
    put_filters(
        html, "run-list", choices,
        {list_of(matrix, "language", "Language", [](const Cell& cell) { return cell.language; }),
         list_of(matrix, "system", "System", [](const Cell& cell) { return cell.system; }),
         list_of(matrix, "windows", "Windows", [](const Cell& cell) { return cell.windows; }),
         list_of(matrix, "state", "State", [](const Cell& cell) { return std::string(1, cell.state); }),
         list_of(matrix, "road", "Road", [](const Cell& cell) { return cell.road; }),
         list_of(matrix, "call", "Call",
                 [](const Cell& cell) { return cell.fault.empty() ? std::string(no_fault) : cell.fault; })});
    const auto list = html.in("div", {{"id", "run-list"}});
    for (std::size_t i = 0; i < groups.size(); ++i)
        put_group(html, matrix, groups[i], i);
}

} // namespace

std::string matrix_page(const Matrix& matrix) {
    const std::vector<Group> groups = matrix::groups_of(matrix);
    const bool silent = count_of(matrix, Ending::silent) != 0;
    const bool faults = matrix.faults != "none" || !matrix::faults_of(matrix).empty();
    Page page;
    page.tool = "trk matrix";
    page.title = matrix.medium;
    page.tone = !matrix.passed() ? Tone::bad : silent ? Tone::warning : Tone::good;
    page.result = matrix::summary_of(matrix);
    page.facts = {{"Driver", matrix.driver + " " + matrix.version},
                  {"Failing calls", matrix.faults},
                  {"Part of the runs", [&] {
                       std::string names;
                       for (const std::string& pattern : matrix.only)
                           names += (names.empty() ? "" : ", ") + pattern;
                       return names;
                   }()}};
    if (!groups.empty() && needs_attention(groups.front().ending))
        page.sections.push_back(
            {"attention", "To be looked at first", [&](Html& html) { put_attention(html, groups); }});
    page.sections.push_back({"table", "The table", [&](Html& html) { put_overview(html, matrix); }});
    if (faults)
        page.sections.push_back({"faults", "Failing calls", [&](Html& html) { put_faults(html, matrix); }});
    page.sections.push_back({"runs", "All runs", [&](Html& html) { put_runs(html, matrix, groups); }});
    return page_text(page);
}

} // namespace rehearsal::pages
