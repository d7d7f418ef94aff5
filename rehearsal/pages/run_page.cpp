#include "rehearsal/pages/run_page.h"

#include "package/languages.h"
#include "rehearsal/exit_status.h"
#include "rehearsal/log/runs.h"
#include "rehearsal/machine_view.h"
#include "rehearsal/pages/dialog_drawing.h"
#include "rehearsal/pages/log_lines.h"
#include "rehearsal/pages/machine_changes.h"
#include "rehearsal/pages/page.h"
#include "rehearsal/pages/source_view.h"
#include "rehearsal/shown_text.h"

#include <algorithm>
#include <iterator>
#include <map>

namespace rehearsal::pages {
namespace {

// Names of the program's languages, and how the attribute lang has them (RFC 5646).
struct LanguageName {
    const char* tag;
    const char* name;
};
constexpr LanguageName language_names[] = {{"en", "English"}, {"en-GB", "English (United Kingdom)"},
                                           {"fr", "French"},  {"de", "German"},
                                           {"zh", "Chinese"}, {"es", "Spanish"},
                                           {"ja", "Japanese"}};
static_assert(std::size(language_names) == language_count);

const LanguageName& language_of(const Outcome& outcome) {
    return language_names[static_cast<std::size_t>(outcome.asked.language)];
}

// Writes the moments in their order.
class TimelineView {
public:
    TimelineView(Html& html, const RunShown& run)
        : html_(html), tag_(language_of(run.outcome).tag), reading_(logs::read_log(run.outcome.log)) {
        for (const logs::Run& part : reading_.runs)
            for (const logs::ReadLine& line : part.lines)
                read_.push_back(&line);
    }

    void operator()(const UserAction& action) {
        const auto item = html_.in("li", {{"class", "action"}, {"data-kind", "action"}, {"data-entry", ""}});
        html_.put("b", "User");
        html_.put("span", action.text);
    }
    void operator()(const LoggedLine& line) {
        const std::string text = shown_text(line.text);
        const auto read = std::find_if(read_.begin() + place_, read_.end(),
                                       [&](const logs::ReadLine* one) { return one->text == text; });
        if (text.empty() && read == read_.end())
            return;
        if (read != read_.end())
            place_ = read - read_.begin() + 1;
        put_log_line(html_, {text, read == read_.end() ? nullptr : (*read)->known, "log", {}, {}});
    }
    void operator()(const platform::DialogView& dialog) {
        const auto item = html_.in("li", {{"class", "dialog"}, {"data-kind", "dialog"}, {"data-entry", ""}});
        const auto old = last_.find(dialog.id);
        if (dialog.visible)
            draw_dialog(html_, dialog, old == last_.end() ? nullptr : &old->second, tag_);
        else
            html_.put("p", {{"class", "closed"}}, "Dialog " + std::to_string(dialog.id) + " is closed");
        last_[dialog.id] = dialog;
    }
    void operator()(const platform::BoxView& box) {
        const auto item = html_.in("li", {{"class", "dialog"}, {"data-kind", "box"}, {"data-entry", ""}});
        draw_box(html_, box, tag_);
    }

private:
    Html& html_;
    const std::string_view tag_;
    const logs::Reading reading_;
    std::vector<const logs::ReadLine*> read_; // without the empty lines between runs
    std::ptrdiff_t place_ = 0;                // behind the last one that was found again
    std::map<int, platform::DialogView> last_;
};

void put_timeline(Html& html, const RunShown& run) {
    put_filters(html, "moments",
                {{"action", "Actions"},
                 {"log", "Log"},
                 {"meaning", "Explanations"},
                 {"dialog", "Dialogs"},
                 {"box", "Boxes"},
                 {"unseen", "Hidden controls", 0, false}});
    const auto list = html.in("ol", {{"class", "timeline"}, {"id", "moments"}});
    TimelineView view(html, run);
    for (const Moment& moment : run.timeline)
        std::visit(view, moment);
}

void put_reasons(Html& html, const Verdict& verdict) {
    for (const auto& [title, reasons] :
         {std::pair{"Missing", &verdict.missing}, {"Failed", &verdict.complaints}}) {
        if (reasons->empty())
            continue;
        html.put("h3", title);
        const auto list = html.in("ul");
        for (const std::string& reason : *reasons)
            html.put("li", shown_text(reason));
    }
}

void put_difference(Html& html, const Outcome& outcome) {
    put_filters(html, "changes", {{"came", "New"}, {"changed", "Changed"}, {"went", "Gone"}});
    const auto changes = html.in("div", {{"id", "changes"}});
    put_machine_changes(html, outcome);
    html.put("h3", "Drive C");
    put_file_changes(html, outcome);
}

void put_medium(Html& html, const RunShown& run) {
    put_filters(html, "finding-list", severity_choices(run.findings));
    const auto list = html.in("div", {{"id", "finding-list"}});
    put_findings(html, run.medium, run.findings);
}

void add_facts(Page& page, const RunShown& run) {
    const Asked& asked = run.outcome.asked;
    page.facts = {{"Machine", run.machine.empty() ? "a fresh one" : run.machine},
                  {"Script", run.script},
                  {"Language", language_of(run.outcome).name},
                  {"Driver", asked.driver.empty() ? "" : asked.driver + " " + version_text(asked.version)},
                  {"Model", asked.model},
                  {"Road", !asked.install  ? ""
                           : asked.network ? "network, " + asked.address
                                           : "USB"},
                  {"Exit code", std::to_string(run.outcome.exit_code)}};
}

} // namespace

std::string run_page(const RunShown& run) {
    Page page;
    page.tool = "trk rehearse";
    page.title = run.medium.folder().string();
    page.tone = run.verdict.status == ended_well ? Tone::good : Tone::bad;
    page.result = run.verdict.line;
    add_facts(page, run);
    if (!run.verdict.missing.empty() || !run.verdict.complaints.empty())
        page.sections.push_back(
            {"reasons", "What is wrong", [&](Html& html) { put_reasons(html, run.verdict); }});
    page.sections.push_back({"timeline", "Timeline", [&](Html& html) { put_timeline(html, run); }});
    page.sections.push_back(
        {"machine", "Before and after", [&](Html& html) { put_difference(html, run.outcome); }});
    if (!run.findings.empty())
        page.sections.push_back(
            {"findings", "What trk check finds", [&](Html& html) { put_medium(html, run); }});
    return page_text(page);
}

} // namespace rehearsal::pages
