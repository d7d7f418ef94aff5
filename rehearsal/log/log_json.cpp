// The reading of an install log as JSON.
#include "rehearsal/log/log_views.h"

#include <nlohmann/json.hpp>

namespace rehearsal::logs {
namespace {

using nlohmann::ordered_json;

ordered_json error_as_json(const NamedError& error) {
    return {{"code", error.code},
            {"name", error.name},
            {"shown", shown_error(error)},
            {"meaning", error.meaning}};
}

ordered_json step_as_json(const Step& step) {
    ordered_json json{{"line", step.number},
                      {"text", step.text},
                      {"weight", weight_name(step.weight)},
                      {"area", area_name(step.line->area)},
                      {"meaning", step.meaning},
                      {"cause", step.line->cause},
                      {"remedy", step.remedy}};
    if (step.error)
        json["error"] = error_as_json(*step.error);
    return json;
}

ordered_json line_as_json(const ReadLine& line) {
    ordered_json json{{"line", line.number}, {"text", line.text}, {"known", line.known != nullptr}};
    if (line.known != nullptr) {
        json["weight"] = weight_name(line.known->weight);
        json["meaning"] = line.known->meaning;
    }
    return json;
}

template<class Item>
ordered_json list_as_json(const std::vector<Item>& items, ordered_json (*convert)(const Item&)) {
    ordered_json list = ordered_json::array();
    for (const Item& item : items)
        list.push_back(convert(item));
    return list;
}

ordered_json printer_as_json(const FoundPrinter& printer) {
    return {{"address", printer.address}, {"name", printer.name}, {"typed", printer.typed}};
}

ordered_json leftover_as_json(const Leftover& leftover) {
    return {{"kind", leftover.kind}, {"what", leftover.what}};
}

ordered_json text_or_null(const std::string& text) {
    return text.empty() ? ordered_json(nullptr) : ordered_json(text);
}

ordered_json driver_as_json(const Run& run) {
    if (run.driver.empty())
        return nullptr;
    ordered_json json{{"name", run.driver}, {"version", run.version}, {"model", run.model}};
    json["usb"] = run.has_usb < 0 ? ordered_json(nullptr) : ordered_json(run.has_usb != 0);
    json["inf"] = text_or_null(run.inf);
    json["installed_version"] = text_or_null(run.installed_version);
    return json;
}

ordered_json run_as_json(const Run& run, bool explain) {
    ordered_json json;
    json["whole"] = run.begins;
    json["date"] = text_or_null(run.date);
    json["program_bits"] = run.bits == 0 ? ordered_json(nullptr) : ordered_json(run.bits);
    json["language"] = run.language < 0 ? ordered_json(nullptr) : ordered_json(run.language);
    json["language_from_settings"] = run.language_from_setting;
    json["medium"] = text_or_null(run.medium);
    json["driver"] = driver_as_json(run);
    json["state"] = text_or_null(run.state == 0 ? std::string() : std::string(1, run.state));
    json["searched"] = run.searched;
    json["printers"] = list_as_json(run.printers, printer_as_json);
    json["road"] = text_or_null(run.road);
    json["chosen"] = text_or_null(run.chosen);
    json["failed_steps"] = list_as_json(run.steps, step_as_json);
    json["notices"] = list_as_json(run.notices, step_as_json);
    json["left_on_machine"] = list_as_json(run.leftovers, leftover_as_json);
    json["verdict"] = verdict_name(run.verdict);
    json["good"] = is_good(run.verdict);
    json["reason"] = run.reason;
    if (explain)
        json["lines"] = list_as_json(run.lines, line_as_json);
    return json;
}

} // namespace

std::string reading_as_json(const Reading& reading, const std::string& file, bool explain) {
    ordered_json json{{"schema", "trk-log-1"}, {"file", file}, {"cut", reading.cut}};
    json["runs"] = ordered_json::array();
    for (const Run& run : reading.runs)
        json["runs"].push_back(run_as_json(run, explain));
    return json.dump(2, ' ', false, ordered_json::error_handler_t::replace) + "\n";
}

} // namespace rehearsal::logs
