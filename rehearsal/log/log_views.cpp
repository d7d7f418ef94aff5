#include "rehearsal/log/log_views.h"

#include <algorithm>
#include <cstdio>

namespace rehearsal::logs {
namespace {

class RunView {
public:
    explicit RunView(const ViewOptions& options) : options_(options) {}

    void heading(const Run& run, std::size_t place, std::size_t count) {
        out_ += painted("1", "Run " + std::to_string(place) + " of " + std::to_string(count) + ": " +
                                 (run.begins ? run.date : "its beginning is missing")) +
                "\n";
    }

    void row(const char* name, const std::string& text) {
        if (text.empty())
            return;
        char label[16];
        std::snprintf(label, sizeof label, "  %-11s", name);
        out_ += label + text + "\n";
    }

    void under(const std::string& text) {
        if (!text.empty())
            out_ += std::string(15, ' ') + text + "\n";
    }

    void step(const char* name, const char* colour, const Step& step) {
        row(name, painted(colour, "line " + std::to_string(step.number) + ": " + step.text));
        under(step.meaning);
        if (step.error)
            under(shown_error(*step.error) + (step.error->meaning.empty() ? "" : ": " + step.error->meaning));
        if (!step.remedy.empty())
            under("What to do: " + step.remedy);
    }

    void explained(const ReadLine& line) {
        char label[16];
        std::snprintf(label, sizeof label, "%6zu  ", line.number);
        std::string text = label + line.text;
        constexpr std::size_t column = 62;
        text +=
            text.size() < column ? std::string(column - text.size(), ' ') : "\n" + std::string(column, ' ');
        out_ +=
            text + "| " + (line.known != nullptr ? line.known->meaning : "(not a line of the setup)") + "\n";
    }

    void blank() { out_ += "\n"; }

    std::string painted(const char* colour, const std::string& text) const {
        return options_.colour ? std::string("\x1b[") + colour + "m" + text + "\x1b[0m" : text;
    }

    std::string take() { return std::move(out_); }

private:
    const ViewOptions& options_;
    std::string out_;
};

std::string driver_text(const Run& run) {
    if (run.driver.empty())
        return "";
    return run.driver + " " + run.version + ", model " + run.model +
           (run.has_usb == 0  ? ", no USB"
            : run.has_usb > 0 ? ", network and USB"
                              : "");
}

std::string program_text(const Run& run) {
    return run.bits == 0 ? "" : std::to_string(run.bits) + "-bit";
}

std::string road_text(const Run& run) {
    return run.chosen.empty() ? run.road : run.road + ", " + run.chosen;
}

void show_facts(RunView& view, const Run& run) {
    view.row("program", program_text(run));
    view.row("language", language_text(run));
    view.row("medium", run.medium);
    view.row("driver", driver_text(run));
    view.row("state", state_text(run));
    const char* name = "printers";
    for (const FoundPrinter& printer : run.printers) {
        view.row(name, printer.address + " " + (printer.typed ? "(typed)" : printer.name));
        name = "";
    }
    if (run.searched && run.printers.empty())
        view.row(name, "none found");
    view.row("road", road_text(run));
}

void show_results(RunView& view, const Run& run) {
    for (const Step& step : run.steps)
        view.step("failed", "31", step);
    for (const Step& step : run.notices)
        view.step("notice", "33", step);
    const char* name = "left there";
    for (const Leftover& leftover : run.leftovers) {
        view.row(name, leftover.kind + ": " + leftover.what);
        name = "";
    }
    const char* colour = is_good(run.verdict) ? "32" : "31";
    view.row("verdict", view.painted(colour, verdict_name(run.verdict)) + ". " + run.reason);
}

} // namespace

std::string draw_run(const Run& run, std::size_t place, std::size_t count, const ViewOptions& options) {
    RunView view(options);
    view.heading(run, place, count);
    show_facts(view, run);
    show_results(view, run);
    if (options.explain) {
        view.blank();
        for (const ReadLine& line : run.lines)
            view.explained(line);
    }
    return view.take();
}

} // namespace rehearsal::logs
