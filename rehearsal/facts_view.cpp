// The facts of a medium for people and for programs.
#include "rehearsal/exit_status.h"
#include "rehearsal/facts.h"
#include "rehearsal/shown_text.h"

#include <nlohmann/json.hpp>

#include <cstdio>
#include <iostream>
#include <stdexcept>

namespace rehearsal {
namespace {

using nlohmann::ordered_json;

// Rows with a label in front of the first of a kind.
class FactRows {
public:
    void add(const std::string& label, const std::string& text) {
        if (text.empty())
            return;
        char begin[24];
        std::snprintf(begin, sizeof begin, "%-15s ", label == last_ ? "" : label.c_str());
        last_ = label;
        out_ += begin + shown_text(text) + "\n";
    }
    std::string take() { return std::move(out_); }

private:
    std::string last_;
    std::string out_;
};

std::string model_text(const ModelFact& model) {
    return model.driver + " = " + model.section +
           (model.hardware_id.empty() ? "" : ", " + model.hardware_id) + " (" + model.environment +
           (model.installed ? ")" : "; not the one that the setup installs)");
}

ordered_json models_as_json(const MediumFacts& facts) {
    ordered_json list = ordered_json::array();
    for (const ModelFact& model : facts.models)
        list.push_back({{"environment", model.environment},
                        {"driver", model.driver},
                        {"section", model.section},
                        {"hardware_id", model.hardware_id},
                        {"installed", model.installed}});
    return list;
}

ordered_json shortcuts_as_json(const MediumFacts& facts) {
    ordered_json list = ordered_json::array();
    for (const ShortcutFact& shortcut : facts.shortcuts)
        list.push_back({{"file", shortcut.file}, {"target", shortcut.target}});
    return list;
}

} // namespace

std::string facts_as_text(const MediumFacts& facts) {
    FactRows rows;
    rows.add("driver", facts.driver);
    rows.add("version", facts.version);
    rows.add("inf", facts.inf);
    rows.add("search model", facts.model);
    rows.add("roads", facts.usb ? "network and USB" : "network");
    for (const ModelFact& model : facts.models)
        rows.add("models", model_text(model));
    if (!facts.queue.empty())
        rows.add("queue", facts.queue + ", or with a number from 2 on behind it where that is taken; " +
                              facts.processor + ", " + facts.datatype + ", " +
                              std::to_string(facts.label_sizes) + " label sizes");
    if (!facts.port.empty())
        rows.add("port", facts.port + " (" + facts.monitor + ", TCP " + std::to_string(facts.tcp_port) + ")");
    rows.add("driver package", facts.package);
    for (const std::string& folder : facts.folders)
        rows.add("folders", folder);
    for (const std::string& file : facts.files)
        rows.add("files", file);
    for (const ShortcutFact& shortcut : facts.shortcuts)
        rows.add("shortcuts", shortcut.file + " -> " + shortcut.target);
    rows.add("log", facts.log);
    return rows.take();
}

std::string facts_as_json(const MediumFacts& facts) {
    ordered_json json{{"schema", "trk-facts-1"}};
    json["driver"] = {{"name", facts.driver}, {"version", facts.version}, {"inf", facts.inf}};
    json["search_model"] = facts.model;
    json["usb"] = facts.usb;
    json["models"] = models_as_json(facts);
    json["queue"] = facts.queue.empty() ? ordered_json(nullptr)
                                        : ordered_json{{"name", facts.queue},
                                                       {"name_when_taken", facts.queue + " <number from 2>"},
                                                       {"processor", facts.processor},
                                                       {"datatype", facts.datatype},
                                                       {"label_sizes", facts.label_sizes}};
    json["port"] =
        facts.port.empty()
            ? ordered_json(nullptr)
            : ordered_json{{"name", facts.port}, {"monitor", facts.monitor}, {"tcp_port", facts.tcp_port}};
    json["driver_package"] = facts.package;
    json["folders"] = facts.folders;
    json["files"] = facts.files;
    json["shortcuts"] = shortcuts_as_json(facts);
    json["log"] = facts.log;
    json["failures"] = facts.failures;
    return json.dump(2, ' ', false, ordered_json::error_handler_t::replace) + "\n";
}

int show_facts(const FactsOptions& options) {
    try {
        const MediumFacts facts = collect_facts(options.medium);
        std::cout << (options.json ? facts_as_json(facts) : facts_as_text(facts));
        if (facts.failures.empty())
            return ended_well;
        std::cerr << "trk: an installation from " << options.medium.string() << " fails:\n";
        for (const std::string& failure : facts.failures)
            std::cerr << "trk:   " << shown_text(failure) << "\n";
        return ended_badly;
    } catch (const std::runtime_error& error) {
        std::cerr << "trk: " << options.medium.string() << ": " << error.what() << "\n";
        return wrong_usage;
    }
}

} // namespace rehearsal
