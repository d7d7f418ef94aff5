#include "acceptance/pilot/record.h"

#include <nlohmann/json.hpp>

namespace pilot {
namespace {

using nlohmann::ordered_json;

ordered_json form(const Control& control) {
    ordered_json out = {{"id", control.id},
                        {"kind", control.kind},
                        {"text", control.text},
                        {"visible", control.visible},
                        {"enabled", control.enabled}};
    if (control.kind == "check box")
        out["checked"] = control.checked;
    if (control.kind == "list") {
        out["rows"] = control.rows;
        out["selected"] = control.selected;
    }
    return out;
}

ordered_json form(const Dialog& dialog) {
    ordered_json controls = ordered_json::array();
    for (const Control& control : dialog.controls)
        controls.push_back(form(control));
    return {{"caption", dialog.caption},
            {"visible", dialog.visible},
            {"enabled", dialog.enabled},
            {"controls", std::move(controls)}};
}

} // namespace

std::string record_text(const Scene& scene, const Ending& ending) {
    ordered_json dialogs = ordered_json::array(), boxes = ordered_json::array();
    for (const Dialog& dialog : scene.dialogs())
        dialogs.push_back(form(dialog));
    for (const Box& box : scene.boxes())
        boxes.push_back({{"text", box.text}, {"caption", box.caption}, {"icon", box.icon}});
    const ordered_json record = {{"exit_code", ending.exit_code},
                                 {"timed_out", ending.timed_out},
                                 {"script_problem", ending.script_problem},
                                 {"dialogs", std::move(dialogs)},
                                 {"boxes", std::move(boxes)}};
    return record.dump(1, ' ', false, ordered_json::error_handler_t::replace) + "\n";
}

} // namespace pilot
