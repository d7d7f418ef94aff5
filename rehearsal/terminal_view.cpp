#include "rehearsal/terminal_view.h"

#include "calls/windows/user_input.h"
#include "rehearsal/shown_text.h"

#include <algorithm>
#include <sstream>

namespace rehearsal {
namespace {

// Of an agreement or another long text that can be scrolled the beginning is shown, in bytes and lines; a
// status is shown whole, as its news stand at the end.
constexpr std::size_t longest_edit = 240;
constexpr std::size_t most_edit_lines = 4;
constexpr std::size_t whole = std::string::npos;

std::string without_blanks_behind(std::string line) {
    line.erase(line.find_last_not_of(' ') + 1);
    return line;
}

// A control's text on one line, or on several that stand below each other behind a bar.
std::string fold_text(const std::string& text, std::size_t longest_text, std::size_t most_lines) {
    const bool several = text.find('\n') != std::string::npos;
    std::string out = several ? "| " : "";
    std::size_t lines = 1;
    for (std::size_t place = 0; place < text.size(); ++place) {
        const char letter = text[place];
        if (letter == '\r')
            continue;
        const bool too_long = out.size() >= longest_text && (letter & 0xC0) != 0x80;
        if (too_long || (letter == '\n' && ++lines > most_lines))
            return out + " ... (" + std::to_string(text.size()) + " bytes in all)";
        if (letter == '\n')
            out = without_blanks_behind(out) + "\n                 | ";
        else if (static_cast<unsigned char>(letter) < ' ')
            out += shown_text({&letter, 1});
        else
            out += letter;
    }
    while (!out.empty() && (out.back() == ' ' || out.back() == '|' || out.back() == '\n'))
        out.pop_back();
    return out;
}

std::string face(const platform::ControlView& control) {
    if (control.kind == "button")
        return "[ " + control.text + " ]";
    if (control.kind == "default button")
        return "[[ " + control.text + " ]]";
    if (control.kind == "check box")
        return (control.checked ? "[x] " : "[ ] ") + control.text;
    if (control.kind == "picture")
        return "(picture)";
    if (control.kind == "edit") {
        const bool one_line = control.text.find('\n') == std::string::npos;
        return (one_line ? "| " : "") + fold_text(control.text, longest_edit, most_edit_lines);
    }
    if (control.kind != "list")
        return fold_text(control.text, whole, whole);
    std::string rows = control.rows.empty() ? "(empty)" : "";
    for (std::size_t row = 0; row < control.rows.size(); ++row) {
        std::string text = control.rows[row];
        std::replace(text.begin(), text.end(), '\t', ' ');
        rows += (row == 0 ? "" : "\n                   ");
        rows += (static_cast<int>(row) == control.selected ? "> " : "  ") + std::to_string(row) + ": " +
                shown_text(text);
    }
    return rows;
}

std::string padded(std::string text, std::size_t width) {
    text.resize(std::max(text.size(), width), ' ');
    return text;
}

bool looks_alike(const platform::ControlView& a, const platform::ControlView& b) {
    return a.text == b.text && a.visible == b.visible && a.enabled == b.enabled && a.checked == b.checked &&
           a.rows == b.rows && a.selected == b.selected;
}

bool looks_alike(const platform::DialogView& a, const platform::DialogView& b) {
    return a.caption == b.caption && a.visible == b.visible && a.enabled == b.enabled &&
           std::equal(a.controls.begin(), a.controls.end(), b.controls.begin(), b.controls.end(),
                      [](const auto& x, const auto& y) { return looks_alike(x, y); });
}

// Whether the same controls can be seen and used: the rest then needn't be drawn again.
bool same_shape(const platform::DialogView& a, const platform::DialogView& b) {
    return a.caption == b.caption && a.visible && b.visible &&
           std::equal(
               a.controls.begin(), a.controls.end(), b.controls.begin(), b.controls.end(),
               [](const auto& x, const auto& y) { return x.visible == y.visible && x.enabled == y.enabled; });
}

const platform::ControlView* find(const platform::DialogView* dialog, int id) {
    if (dialog == nullptr)
        return nullptr;
    for (const platform::ControlView& control : dialog->controls)
        if (control.id == id)
            return &control;
    return nullptr;
}

std::string hidden_controls(const std::vector<platform::ControlView>& controls) {
    std::string line;
    for (const platform::ControlView& control : controls) {
        if (control.visible)
            continue;
        line += line.empty() ? "    hidden: " : ", ";
        line += std::to_string(control.id) + " " + (control.text.empty() ? control.kind : control.text);
        line += control.enabled ? "" : " (greyed)";
    }
    return line.empty() ? line : line + "\n";
}

} // namespace

std::string draw_dialog(const platform::DialogView& dialog, const platform::DialogView* before) {
    std::ostringstream out;
    out << "\n  == Dialog " << dialog.id << ": " << dialog.caption << (dialog.enabled ? "" : "  (disabled)")
        << " ==\n";
    if (!dialog.visible) {
        out << "     (closed)\n";
        return out.str();
    }
    std::vector<platform::ControlView> controls = dialog.controls;
    std::stable_sort(controls.begin(), controls.end(), [](const auto& a, const auto& b) {
        constexpr int line_height = 8; // what stands this close to each other reads as one line
        return std::pair(a.top / line_height, a.left) < std::pair(b.top / line_height, b.left);
    });
    const bool changes_only = before != nullptr && same_shape(*before, dialog);
    for (const platform::ControlView& control : controls) {
        const platform::ControlView* const old = find(before, control.id);
        const bool changed = before != nullptr && (old == nullptr || !looks_alike(*old, control));
        if (!control.visible || (changes_only && !changed))
            continue;
        const std::string line = (changed ? "   * " : "     ") + padded(std::to_string(control.id), 5) +
                                 padded(control.enabled ? "" : "greyed", 7) + face(control);
        out << without_blanks_behind(line) << "\n";
    }
    out << (changes_only ? "     ...\n" : hidden_controls(dialog.controls));
    return out.str();
}

TerminalView::~TerminalView() {
    end();
}

void TerminalView::end() {
    if (!log_line_.empty())
        end_log_line();
}

void TerminalView::action(const std::string& shown) {
    const std::lock_guard lock(mutex_);
    timeline_.emplace_back(UserAction{shown});
    if (!quiet_)
        out_ << "\n  user: " << shown_text(shown) << "\n" << std::flush;
}

void TerminalView::box(const platform::BoxView& box) {
    look();
    const std::lock_guard lock(mutex_);
    timeline_.emplace_back(box);
    if (quiet_)
        return;
    constexpr std::uint32_t exclamation = 0x30;
    const bool warning = (box.flags & 0xF0) == exclamation;
    out_ << "\n  " << (warning ? "!! Warning box" : "## Message box") << ": " << shown_text(box.caption)
         << "\n";
    std::istringstream lines(box.text);
    for (std::string line; std::getline(lines, line);)
        out_ << "     " << shown_text(line) << "\n";
    out_ << "     [ OK ]\n" << std::flush;
}

void TerminalView::look() {
    const std::lock_guard lock(mutex_);
    print_log();
    print_dialogs();
    out_ << std::flush;
}

void TerminalView::look_at_log() {
    const std::lock_guard lock(mutex_);
    print_log();
    out_ << std::flush;
}

// The program writes some lines in pieces; only whole ones are shown, so that nothing comes in between.
void TerminalView::print_log() {
    for (const char letter : log.take()) {
        if (letter == '\n')
            end_log_line();
        else if (letter != '\r')
            log_line_ += letter;
    }
}

void TerminalView::end_log_line() {
    timeline_.emplace_back(LoggedLine{log_line_});
    if (!quiet_)
        out_ << without_blanks_behind("  log | " + shown_text(log_line_)) << "\n";
    log_line_.clear();
}

void TerminalView::print_dialogs() {
    for (const platform::DialogView& dialog : platform::dialogs()) {
        const auto known = last_.find(dialog.id);
        if (known == last_.end() ? !dialog.visible : looks_alike(known->second, dialog))
            continue;
        if (!quiet_)
            out_ << draw_dialog(dialog, known == last_.end() ? nullptr : &known->second);
        timeline_.emplace_back(dialog);
        last_[dialog.id] = dialog;
    }
}

} // namespace rehearsal
