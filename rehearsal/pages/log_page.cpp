#include "rehearsal/pages/log_page.h"

#include "rehearsal/pages/log_lines.h"
#include "rehearsal/pages/page.h"

#include <algorithm>

namespace rehearsal::pages {
namespace {

using logs::Run;
using logs::Step;

std::string line_id(std::size_t number) {
    return "line-" + std::to_string(number);
}

void put_fact(Html& html, const char* name, const std::string& fact) {
    if (fact.empty())
        return;
    const auto pair = html.in("div");
    html.put("dt", name);
    html.put("dd", fact);
}

std::string printers_of(const Run& run) {
    std::string list;
    for (const logs::FoundPrinter& printer : run.printers)
        list +=
            (list.empty() ? "" : "; ") + printer.address + " " + (printer.typed ? "(typed)" : printer.name);
    return list.empty() && run.searched ? "none found" : list;
}

void put_run_facts(Html& html, const Run& run) {
    const auto list = html.in("dl", {{"class", "facts"}});
    put_fact(html, "Program", run.bits == 0 ? "" : std::to_string(run.bits) + "-bit");
    put_fact(html, "Language", logs::language_text(run));
    put_fact(html, "Medium", run.medium);
    put_fact(html, "Driver", run.driver.empty() ? "" : run.driver + " " + run.version);
    put_fact(html, "Model", run.model);
    put_fact(html, "State", logs::state_text(run));
    put_fact(html, "Printers", printers_of(run));
    put_fact(html, "Road", run.road + (run.chosen.empty() ? "" : ", " + run.chosen));
}

void put_step(Html& html, const Step& step, Tone tone) {
    const auto item = html.in("div", {{"class", "finding " + std::string(tone_class(tone))}});
    {
        const auto line = html.in("p");
        html.put("a", {{"href", "#" + line_id(step.number)}}, "Line " + std::to_string(step.number));
        html.text(" ");
        html.put("code", step.text);
    }
    html.put("p", step.meaning);
    if (step.error)
        html.put("p", logs::shown_error(*step.error) +
                          (step.error->meaning.empty() ? "" : ": " + step.error->meaning));
    if (!step.remedy.empty())
        html.put("p", {{"class", "remedy"}}, step.remedy);
}

void put_leftovers(Html& html, const Run& run) {
    if (run.leftovers.empty())
        return;
    html.put("h3", "Left on the machine");
    const auto table = html.in("table");
    const auto body = html.in("tbody");
    for (const logs::Leftover& leftover : run.leftovers) {
        const auto row = html.in("tr");
        html.put("td", leftover.kind);
        html.put("td", leftover.what);
    }
}

std::vector<FilterChoice> line_choices(const Run& run) {
    std::vector<FilterChoice> choices{{"failed", "Failed steps"},
                                      {"notice", "Notices"},
                                      {"plain", "Ordinary lines"},
                                      {"foreign", "Other lines"}};
    for (FilterChoice& choice : choices)
        choice.count =
            static_cast<std::size_t>(std::count_if(run.lines.begin(), run.lines.end(), [&](const auto& line) {
                return kind_of(line.known) == choice.kind;
            }));
    choices.push_back({"meaning", "Explanations"});
    return choices;
}

void put_lines(Html& html, const Run& run, const std::string& list) {
    html.put("h3", "Log");
    put_filters(html, list, line_choices(run));
    const auto lines = html.in("ol", {{"class", "log"}, {"id", list}});
    for (const logs::ReadLine& line : run.lines)
        put_log_line(html, {line.text, line.known, kind_of(line.known), line_id(line.number),
                            std::to_string(line.number)});
}

Tone run_tone(const Run& run) {
    if (!logs::is_good(run.verdict))
        return Tone::bad;
    return run.verdict == logs::Verdict::installed ? Tone::good : Tone::plain;
}

void put_run(Html& html, const Run& run, const std::string& list) {
    html.put("p", {{"class", "result " + std::string(tone_class(run_tone(run)))}},
             std::string(logs::verdict_name(run.verdict)) + ". " + run.reason);
    put_run_facts(html, run);
    for (const Step& step : run.steps)
        put_step(html, step, Tone::bad);
    for (const Step& step : run.notices)
        put_step(html, step, Tone::warning);
    put_leftovers(html, run);
    put_lines(html, run, list);
}

} // namespace

std::string log_page(const logs::Reading& reading, std::size_t first, const std::string& file) {
    Page page;
    page.tool = "trk log";
    page.title = file == "-" ? "Standard input" : file;
    std::size_t bad = 0;
    for (std::size_t i = first; i < reading.runs.size(); ++i) {
        const Run& run = reading.runs[i];
        bad += logs::is_good(run.verdict) ? 0U : 1U;
        const std::string number = std::to_string(i + 1);
        const std::string date = run.begins ? run.date : "its beginning is missing";
        page.sections.push_back({"run-" + number, "Run " + number + ": " + date,
                                 [&run, number](Html& html) { put_run(html, run, "log-" + number); }});
    }
    page.tone = bad == 0 ? Tone::good : Tone::bad;
    page.result = counted(reading.runs.size() - first, "run") +
                  (bad == 0 ? ", none failed" : ", " + std::to_string(bad) + " failed") +
                  (reading.cut ? "; the file ends in the middle of a line" : "");
    return page_text(page);
}

} // namespace rehearsal::pages
