#include "rehearsal/report.h"

#include "machine/machine_json.h"
#include "machine/text.h"
#include "rehearsal/machine_view.h"

#include <nlohmann/json.hpp>

namespace rehearsal {
namespace {

using nlohmann::ordered_json;

ordered_json control_json(const platform::ControlView& control) {
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

ordered_json dialogs_json(const Outcome& outcome) {
    ordered_json out = ordered_json::array();
    for (const platform::DialogView& dialog : outcome.dialogs) {
        ordered_json controls = ordered_json::array();
        for (const platform::ControlView& control : dialog.controls)
            controls.push_back(control_json(control));
        out.push_back({{"id", dialog.id}, {"caption", dialog.caption}, {"controls", std::move(controls)}});
    }
    return out;
}

ordered_json boxes_json(const Outcome& outcome) {
    ordered_json out = ordered_json::array();
    for (const platform::BoxView& box : outcome.boxes)
        out.push_back({{"text", box.text}, {"caption", box.caption}, {"flags", box.flags}});
    return out;
}

ordered_json files_json(const Outcome& outcome) {
    ordered_json out = ordered_json::array();
    for (const auto& [path, file] : outcome.files_after) {
        if (!was_made(outcome, path))
            continue;
        ordered_json one = {{"path", path}, {"folder", file.folder}};
        if (!file.folder) {
            one["size"] = file.size;
            one["sha256"] = file.sha256;
        }
        out.push_back(std::move(one));
    }
    return out;
}

ordered_json shortcuts_json(const Outcome& outcome, const std::filesystem::path& drive_c) {
    ordered_json out = ordered_json::array();
    for (const auto& [path, link] : read_shortcuts(outcome, drive_c))
        out.push_back({{"path", path},
                       {"target", platform::to_utf8(link.target)},
                       {"working_folder", platform::to_utf8(link.working_folder)},
                       {"description", platform::to_utf8(link.description)}});
    return out;
}

} // namespace

std::string report_text(const Outcome& outcome, const Verdict& verdict,
                        const std::filesystem::path& drive_c) {
    ordered_json out;
    out["schema"] = "trk-report-1";
    out["exit_code"] = outcome.exit_code;
    out["exit_status"] = verdict.status;
    out["verdict"] = verdict.line;
    out["missing"] = verdict.missing;
    out["refusal"] = outcome.refusal;
    out["script_problem"] = outcome.problem;
    out["failures"] = find_failures(outcome);
    out["dialogs"] = dialogs_json(outcome);
    out["boxes"] = boxes_json(outcome);
    out["log"] = outcome.log;
    out["files"] = files_json(outcome);
    out["shortcuts"] = shortcuts_json(outcome, drive_c);
    // Queues with their printer data, ports and drivers are part of the machine.
    out["machine"] = ordered_json::parse(platform::machine_text(outcome.after));
    return out.dump(2, ' ', false, ordered_json::error_handler_t::replace) + "\n";
}

} // namespace rehearsal
